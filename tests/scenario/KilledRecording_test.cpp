// A client that is killed while it records: what was recorded before stays whole and replays, and
// the next recording goes on behind it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "EmulatorFixture.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "ZetNorvEmul.h"

namespace {

constexpr int kExchanges = 6;

constexpr const char* kScript =
    "<Scripts><MessageChar value=\"12\"><Composant name=\"all\" size=\"2000\" compare=\"1\"/>"
    "</MessageChar></Scripts>";

// Longer than what a system writes at once for certain.
std::string requestText(int step) { return std::to_string(step) + std::string(1000, 'q'); }
std::string answerText(int step) { return std::to_string(step) + std::string(1500, 'a'); }

int linesIn(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

class KilledRecordingTest : public EmulatorFixture {
 protected:
  KilledRecordingTest() {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
    mode("SAVE");
  }

  static void record() {
    for (int step = 1; step <= kExchanges; ++step) {
      send(request(12, requestText(step)));
      receive(answerText(step), step);
    }
  }

  std::string read(const std::string& path) const { return exists(path) ? readBytes(path) : ""; }

  // Whether the index holds whole lines only, each of a file with the bytes of its step.
  void expectWhole(const std::string& index, const std::string& prefix, bool answers) const {
    const std::string text = read(scenario(index));
    EXPECT_TRUE(text.empty() || text.back() == '\n') << text;
    std::string expected;
    for (int step = 1; step <= linesIn(text); ++step) {
      const std::string name = prefix + "12_" + std::to_string(step - 1) + ".txt";
      expected += "<12><" + name + ">" + (answers ? "<" + std::to_string(step) + ">" : "") + "\n";
      EXPECT_EQ(readBytes(reference(name)),
                answers ? answerText(step) : request(12, requestText(step)));
    }
    EXPECT_EQ(text, expected);
  }

  // Replays what the indexes tell of, without a finding.
  void expectReplay(int requests, int answers) {
    resetEmulator();
    mode("REPLAY");
    for (int step = 1; step <= requests; ++step) {
      EXPECT_EQ(send(request(12, requestText(step))), S_OK);
      if (step > answers) continue;
      const Received received = receive("live");
      EXPECT_EQ(received.bytes, answerText(step));
      EXPECT_EQ(received.status, step);
    }
    const std::string log = read(scratch.file("error.log"));
    EXPECT_EQ(log.find("Problem"), std::string::npos) << log;
    EXPECT_FALSE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
  }

  // Records on behind what is there: lines are added, and none is changed.
  void expectToGoOn() {
    const std::string before = read(scenario("Scenario.txt"));
    resetEmulator();
    mode("SAVE");
    EXPECT_EQ(send(request(12, "further")), S_OK);
    EXPECT_EQ(receive("answer").result, S_OK);
    const std::string after = readBytes(scenario("Scenario.txt"));
    ASSERT_EQ(after.substr(0, before.size()), before);
    const std::string line = after.substr(before.size());
    const std::string name = line.substr(5, line.size() - 7);
    EXPECT_EQ(readBytes(reference(name)), request(12, "further")) << line;
  }
};

TEST_F(KilledRecordingTest, LosesTheExchangeInFlightAtMostAtEveryCallOfTheSystem) {
  testing::FLAGS_gtest_death_test_style = "fast";
  bool killed = true;
  int call = 0;
  while (killed && !HasFailure()) {
    ++call;
    std::filesystem::remove_all(scratch.file("in/case1.rec"));
    std::filesystem::remove(scratch.file("error.log"));
    killed = false;
    // The child records until its call; the assertion accepts both ends, and notes which it was.
    EXPECT_EXIT(
        {
          FaultyFileSystem files;
          files.killAtCall(call);
          record();
          std::_Exit(0);
        },
        [&killed](int status) {
          killed = testing::ExitedWithCode(FaultyFileSystem::kKilled)(status);
          return killed || testing::ExitedWithCode(0)(status);
        },
        "");
    const int requests = linesIn(read(scenario("Scenario.txt")));
    const int answers = linesIn(read(scenario("Scenario2.txt")));
    EXPECT_TRUE(answers == requests || answers == requests - 1) << "killed at call " << call;
    EXPECT_TRUE(killed || requests == kExchanges);
    expectWhole("Scenario.txt", "save", false);
    expectWhole("Scenario2.txt", "rep", true);
    expectReplay(requests, answers);
    expectToGoOn();
  }
  EXPECT_GT(call, 10 * kExchanges);
}

}  // namespace
