#include "TraceRecorder.h"

#include <algorithm>

TraceRecorder::TraceRecorder() : _before(KelTrace::SetListener(this)) {}

TraceRecorder::~TraceRecorder() { KelTrace::SetListener(_before); }

void TraceRecorder::OnLine(const char* traceName, int level, const std::string& line) {
  _lines.push_back({traceName, level, line});
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
