#include "TraceRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

namespace {

bool startsWith(const std::string& line, std::initializer_list<const char*> beginnings) {
  return std::any_of(beginnings.begin(), beginnings.end(),
                     [&](const char* text) { return line.starts_with(text); });
}

// The level that a line of the library has: 2, but for a few.
int levelOf(const std::string& line) {
  if (startsWith(line, {"> Recopie du document ", "QueryForCoidCompid pour "})) return 4;
  return startsWith(line, {"Out ... "}) ? 1 : 2;
}

void expectLevel(int level, const std::string& line) {
  if (testing::UnitTest::GetInstance()->current_test_info() == nullptr) return;
  // The hook that receives tells it at another level than the one that sends.
  if (line == "ZetNorvEmul STOP") return;
  EXPECT_EQ(level, levelOf(line)) << line;
}

}  // namespace

TraceRecorder::TraceRecorder() : _before(KelTrace::SetListener(this)) {}

TraceRecorder::~TraceRecorder() { KelTrace::SetListener(_before); }

void TraceRecorder::OnLine(const char* traceName, int level, const std::string& line) {
  _lines.push_back({traceName, level, line});
  if (_lines.back().trace == "ZetNorvTrace") expectLevel(level, line);
}

std::vector<std::string> TraceRecorder::texts() const {
  std::vector<std::string> texts;
  for (const Line& line : _lines) {
    if (line.trace == "ZetNorvTrace") texts.push_back(line.text);
  }
  return texts;
}

int TraceRecorder::count(const std::string& text) const {
  const std::vector<std::string> all = texts();
  return static_cast<int>(std::count(all.begin(), all.end(), text));
}

std::string TraceRecorder::refusedDocument() const {
  for (const Line& line : _lines) {
    const std::size_t end = line.text.find(": line ");
    if (line.trace == "KelXML" && end != std::string::npos) return line.text.substr(0, end);
  }
  return "";
}
