#include "EmulatorFixture.h"

#include <algorithm>
#include <cstdint>
#include <set>

#include "EmulatorState.h"
#include "ZetNorvEmul.h"

namespace {

std::string littleEndian(int value) {
  const auto bits = static_cast<std::uint32_t>(value);
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>((bits >> (8 * i)) & 0xFF));
  return bytes;
}

}  // namespace

std::string request(int op, const std::string& payload) { return littleEndian(op) + payload; }

std::string xmlAnswer(const std::string& text) {
  return littleEndian(0) + littleEndian(static_cast<int>(text.size())) + text;
}

EmulatorFixture::EmulatorFixture() {
  resetEmulator();
  environment.set("KEL_DRIVE_ROOT", scratch.path().string());
  environment.set("BIX_ZET_IN", "\\in");
  environment.set("ZET_LOG_NAME", "case1");
}

EmulatorFixture::~EmulatorFixture() { resetEmulator(); }

void EmulatorFixture::resetEmulator() { ::resetEmulator(); }

void EmulatorFixture::debugMode(const std::string& value) {
  environment.set("ZETNORV_DEBUG", value);
  environment.set("App_CfgFile", scratch.file("cfg") + "/");
  environment.set("App_RefFile", scratch.file("ref") + "/");
  environment.set("App_SceFile", scratch.file("sce") + "/");
  environment.set("App_ErrFile", scratch.file("err") + "/");
}

std::string EmulatorFixture::reference(const std::string& name) const {
  return (scratch.path() / "in" / "case1.rec" / "Reference" / name).string();
}

std::string EmulatorFixture::scenario(const std::string& name) const {
  return (scratch.path() / "in" / "case1.rec" / "Scenario" / name).string();
}

std::string EmulatorFixture::debugReference(const std::string& name) const {
  return (scratch.path() / "ref" / "case1" / "Reference" / name).string();
}

std::string EmulatorFixture::debugScenario(const std::string& name) const {
  return (scratch.path() / "sce" / "case1" / "Scenario" / name).string();
}

std::string EmulatorFixture::debugLog(const std::string& name) const {
  return (scratch.path() / "err" / "case1" / "Error" / name).string();
}

long EmulatorFixture::send(const std::string& message) {
  return ZetNorvEmul::preWensnd(0, message.data(), static_cast<int>(message.size()));
}

EmulatorFixture::Received EmulatorFixture::receive(const std::string& liveAnswer, int status) {
  char* answer = new char[liveAnswer.size() + 1]();
  std::copy(liveAnswer.begin(), liveAnswer.end(), answer);
  const char* const before = answer;
  int bytes = static_cast<int>(liveAnswer.size());
  int* size = &bytes;
  int* state = &status;
  const long result = ZetNorvEmul::postWensnd(0, answer, size, state);
  Received received{result, std::string(answer, static_cast<std::size_t>(bytes)), status,
                    answer != before};
  delete[] answer;
  return received;
}

std::vector<int> EmulatorFixture::levels() const {
  std::set<int> levels;
  for (const TraceRecorder::Line& line : trace.lines()) {
    if (line.trace == "ZetNorvTrace") levels.insert(line.level);
  }
  return {levels.begin(), levels.end()};
}

std::vector<std::string> EmulatorFixture::tracedOf(const std::vector<std::string>& lines) const {
  std::vector<std::string> traced;
  for (const std::string& text : trace.texts()) {
    if (std::find(lines.begin(), lines.end(), text) != lines.end()) traced.push_back(text);
  }
  return traced;
}

std::vector<std::string> EmulatorFixture::logLines(const std::string& name) const {
  const std::string directory = scratch.file("err") + "/case1/Error";
  return {directory, "After KelCreateDirectory(Path)==KelLibSucces", directory + "\\" + name};
}

void EmulatorFixture::exchange(int op, const std::string& payload, const std::string& answer,
                               int status) {
  EXPECT_EQ(send(request(op, payload)), 0);
  EXPECT_EQ(receive(answer, status).result, 0);
}
