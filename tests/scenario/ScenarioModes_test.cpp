// Several scenarios in one process, the modes that follow a recording, and recordings made in debug
// mode that are replayed from where their files have to lie.
#include "SessionFixture.h"
#include "ZetNorvEmul.h"

namespace {

using namespace session_test;
namespace fs = std::filesystem;

class ScenarioModesTest : public SessionFixture {
 protected:
  static constexpr int kSteps = 12;

  pdm::PlanOptions plan() const { return {.exchanges = kSteps, .mix = 21, .snapshots = true}; }

  // Debug mode with the configuration that the other mode has.
  void sessionInDebugMode(const std::string& value) {
    debugMode(value);
    writeBytes(scratch.file("cfg/xmlStruct.xml"), readBytes(PDM_CLIENT_SCRIPT));
  }

  void leaveDebugMode(const std::string& value) {
    environment.unset("ZETNORV_DEBUG");
    mode(value);
  }

  // Compares the answers with the files of a recording that lies in `directory`.
  static void expectAnswersOf(const std::string& directory, const std::vector<Replayed>& steps) {
    std::map<int, int> sent;
    int exchanges = 0;
    for (const Replayed& step : steps) {
      EXPECT_EQ(step.problem, "");
      if (step.request.empty()) continue;
      const int op = pdm::operationOf(step.request);
      const std::string file =
          "/rep" + std::to_string(op) + '_' + std::to_string(sent[op]++) + ".txt";
      EXPECT_EQ(step.sent, S_OK) << file;
      EXPECT_EQ(step.received.result, S_OK) << file;
      EXPECT_TRUE(step.received.bytes == answerFor(step.request, readBytes(directory + file)))
          << file;
      ++exchanges;
    }
    EXPECT_GT(exchanges, 5);
  }

  // How many requests were compared with their recording to the end.
  int comparisons() const {
    return trace.count("ZetNorvMod:  End of if(MsgXML)") +
           trace.count("ZetNorvMod: Msg * msgRef = Builder::builderMessage");
  }

  static int comparable(const std::vector<Replayed>& steps) {
    int count = 0;
    for (const Replayed& step : steps) {
      const int op = pdm::operationOf(step.request);
      count += op != 0 && op != pdm::kCommit ? 1 : 0;
    }
    return count;
  }
};

TEST_F(ScenarioModesTest, ScenariosOfOneProcessAreReplayedInAnyOrder) {
  for (const unsigned number : {1u, 2u, 3u}) {
    scenarioNamed("many" + std::to_string(number));
    record(session(number, {.exchanges = 8, .mix = number}));
  }
  mode("REPLAY");
  for (const unsigned number : {3u, 1u, 2u, 1u, 3u}) {
    scenarioNamed("many" + std::to_string(number));
    const auto steps = replay(session(100 + number, {.exchanges = 8, .mix = number}));
    expectTheRecording(steps);
    expectNoFinding(steps);
    expectNoProblem();
  }
}

TEST_F(ScenarioModesTest, ScenarioRecordedBehindAnotherGetsFilesOfItsOwn) {
  resetEmulator();
  mode("SAVE");
  for (const char* name : {"first", "second", "first"}) {
    scenarioNamed(name);
    exchange(12, "open", "OPENED");
  }
  const auto recording = [&](const std::string& name) {
    return namesIn(scratch.file("in/" + name + ".rec/Reference"));
  };
  EXPECT_EQ(recording("first"),
            (Texts{"rep12_0.txt", "rep12_1.txt", "save12_0.txt", "save12_1.txt"}));
  EXPECT_EQ(recording("second"), (Texts{"rep12_0.txt", "save12_0.txt"}));
}

// The counters are the process's: whoever goes on to another scenario takes them along.
TEST_F(ScenarioModesTest, ScenarioReplayedBehindAnotherStartsAtTheCounters) {
  for (const char* name : {"first", "second"}) {
    scenarioNamed(name);
    resetEmulator();
    mode("SAVE");
    for (const char* text : {"one", "two", "three"}) exchange(12, text, std::string(name) + text);
  }
  resetEmulator();
  mode("REPLAY");
  scenarioNamed("first");
  ASSERT_EQ(send(request(12, "one")), S_OK);
  EXPECT_EQ(receive("live").bytes, "firstone");
  scenarioNamed("second");
  ASSERT_EQ(send(request(12, "two")), S_OK);
  EXPECT_EQ(receive("live").bytes, "secondtwo");
}

TEST_F(ScenarioModesTest, OldReplayAnswersAsReplayDoes) {
  record(session(1, plan()));
  mode("REPLAY");
  const auto replayed = replay(session(2, plan()));
  const std::string log = readBytes(errorLog());
  mode("OLDREPLAY");
  const auto old = replay(session(2, plan()));
  expectTheRecording(old);
  expectNoFinding(old);
  expectNoProblem();
  EXPECT_TRUE(readBytes(errorLog()) == log);
  ASSERT_EQ(old.size(), replayed.size());
  for (std::size_t i = 0; i < old.size(); ++i) {
    EXPECT_TRUE(old[i].received.bytes == replayed[i].received.bytes) << i;
  }
}

TEST_F(ScenarioModesTest, ScanChecksRequestsAndLeavesAnswersAlone) {
  record(session(1, plan()));
  mode("SCAN");
  const auto steps = replay(session(2, plan()));
  expectNoFinding(steps);
  EXPECT_EQ(comparisons(), comparable(steps));
  for (const Replayed& step : steps) {
    EXPECT_EQ(step.sent, S_OK);
    EXPECT_EQ(step.problem, "");
    if (step.request.empty()) continue;
    EXPECT_EQ(step.received.result, S_OK);
    EXPECT_FALSE(step.received.replaced);
    EXPECT_EQ(step.received.bytes, "no server");
    EXPECT_EQ(step.received.status, 7);
  }
}

TEST_F(ScenarioModesTest, ScanReportsAnAlteredRequest) {
  record(session(1, {.exchanges = 4}));
  mode("SCAN");
  pdm::SessionOptions altered = session(2, {.exchanges = 4});
  altered.alteredStep = 2;
  replay(altered);
  EXPECT_EQ(findingsIn(readBytes(errorLog())).size(), 2u);
}

class DebugRecordingTest : public ScenarioModesTest {
 protected:
  DebugRecordingTest() {
    sessionInDebugMode("SAVE");
    record(session(1, plan()));
  }
};

TEST_F(DebugRecordingTest, IsNotFoundWhereItWasRecorded) {
  sessionInDebugMode("REPLAY");
  const auto steps = replay(session(2, plan()));
  EXPECT_EQ(comparisons(), 0);
  EXPECT_EQ(trace.count("runNorvLike: load != S_OK"), comparable(steps));
  for (const Replayed& step : steps) {
    if (step.request.empty()) continue;
    EXPECT_FALSE(step.received.replaced);
    EXPECT_EQ(step.received.bytes, "no server");
  }
}

// cp -r ref/<test>/Reference ref/<test>/inner && mv ref/<test>/inner ref/<test>/Reference/Reference
TEST_F(DebugRecordingTest, IsReplayedInDebugModeFromADirectoryInItself) {
  fs::copy(debugReference(), scratch.file("ref/case1/inner"), fs::copy_options::recursive);
  fs::rename(scratch.file("ref/case1/inner"), debugReference("Reference"));
  sessionInDebugMode("REPLAY");
  const auto steps = replay(session(2, plan()));
  expectAnswersOf(debugReference("Reference"), steps);
  EXPECT_EQ(comparisons(), comparable(steps));
  EXPECT_FALSE(trace.has("Problem in ZetNorvEmul::preWensnd with microMod.run"));
  EXPECT_FALSE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
  EXPECT_FALSE(exists(errorLog()));
}

TEST_F(DebugRecordingTest, IsReplayedInDebugModeFromALinkToItself) {
  fs::create_directory_symlink(fs::path(debugReference("x")).parent_path(),
                               debugReference("Reference"));
  sessionInDebugMode("REPLAY");
  const auto steps = replay(session(2, plan()));
  expectAnswersOf(debugReference("Reference"), steps);
  EXPECT_EQ(comparisons(), comparable(steps));
}

TEST_F(DebugRecordingTest, IsReplayedOutsideDebugModeFromAReferenceInTheReference) {
  fs::create_directories(reference("Reference"));
  fs::copy(debugReference(), reference("Reference"), fs::copy_options::recursive);
  fs::create_directories(scenario());
  fs::copy(debugScenario(), scenario(), fs::copy_options::recursive);
  leaveDebugMode("REPLAY");
  const auto steps = replay(session(2, plan()));
  expectAnswersOf(reference("Reference"), steps);
  expectNoFinding(steps);
  expectNoProblem();
}

TEST_F(DebugRecordingTest, LogsOneLineForEveryHook) {
  int lines = 0;
  for (const std::string& name : namesIn(scratch.file("err/case1/Error"))) {
    if (name.find("SNDRCV.log") == std::string::npos) continue;
    const std::string log = readBytes(debugLog(name));
    EXPECT_EQ(countOf(log, "[SND] "), countOf(log, "[RCV] "));
    lines += countOf(log, "\n");
  }
  const std::string answers = readBytes(debugScenario("Scenario2.txt"));
  EXPECT_EQ(lines, 2 * countOf(answers, "\n"));
}

}  // namespace
