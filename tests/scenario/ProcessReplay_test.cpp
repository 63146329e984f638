// Recording and replaying in processes of their own, by the sample client.
#include "Program.h"
#include "SessionFixture.h"

namespace {

using namespace session_test;

class ProcessReplayTest : public SessionFixture {
 protected:
  // Runs the client with these arguments and the options of one session.
  ProgramRun client(const std::string& value, const Texts& arguments, const Texts& plan) {
    mode(value);
    std::filesystem::remove(errorLog());
    Texts all{"--work", scratch.file("work"), "--document-bytes", "64"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.insert(all.end(), plan.begin(), plan.end());
    return runProgram(PDM_CLIENT, all);
  }
};

TEST_F(ProcessReplayTest, ARecordedSessionIsReplayedInAnotherProcess) {
  const std::vector<Texts> plans = {
      {},
      {"--snapshots"},
      {"--exchanges", "40", "--mix", "3", "--snapshots"},
      {"--exchanges", "40", "--mix", "4"},
  };
  for (std::size_t i = 0; i < plans.size(); ++i) {
    scenarioNamed("process" + std::to_string(i));
    const ProgramRun recorded = client("SAVE", {"--seed", "1"}, plans[i]);
    ASSERT_EQ(recorded.status, 0) << recorded.output;
    const ProgramRun replayed = client("REPLAY", {"--offline", "--seed", "2"}, plans[i]);
    EXPECT_EQ(replayed.status, 0) << replayed.output;
    EXPECT_EQ(countOf(replayed.output, "from recording  usable"),
              countOf(recorded.output, "from server     usable"));
    EXPECT_EQ(countOf(replayed.output, "snapshot"), countOf(recorded.output, "snapshot"));
    EXPECT_EQ(countOf(replayed.output, "hook failed"), 0);
    const std::string log = readBytes(errorLog());
    EXPECT_GT(sectionsIn(log), 10);
    EXPECT_EQ(findingsIn(log), Texts());
  }
}

TEST_F(ProcessReplayTest, ASecondReplayIsTheSame) {
  const Texts plan = {"--exchanges", "15", "--mix", "9", "--snapshots"};
  ASSERT_EQ(client("SAVE", {"--seed", "1"}, plan).status, 0);
  const ProgramRun first = client("REPLAY", {"--offline", "--seed", "2"}, plan);
  const std::string firstLog = readBytes(errorLog());
  const ProgramRun second = client("REPLAY", {"--offline", "--seed", "2"}, plan);
  EXPECT_EQ(first.status, 0);
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.output, first.output);
  EXPECT_TRUE(readBytes(errorLog()) == firstLog);
}

TEST_F(ProcessReplayTest, ScanLeavesTheAnswersToTheServer) {
  const Texts plan = {"--exchanges", "15", "--mix", "9", "--snapshots"};
  ASSERT_EQ(client("SAVE", {"--seed", "1"}, plan).status, 0);
  const ProgramRun scanned = client("SCAN", {"--seed", "2"}, plan);
  EXPECT_EQ(scanned.status, 0) << scanned.output;
  EXPECT_EQ(countOf(scanned.output, "from recording"), 0);
  EXPECT_EQ(countOf(scanned.output, "from server     usable"),
            15 - countOf(scanned.output, "snapshot"));
  EXPECT_EQ(findingsIn(readBytes(errorLog())), Texts());
}

TEST_F(ProcessReplayTest, WithoutARecordingThereIsNoAnswer) {
  const ProgramRun replayed = client("REPLAY", {"--offline"}, {"--exchanges", "5"});
  EXPECT_EQ(replayed.status, 1);
  EXPECT_EQ(countOf(replayed.output, "PROBLEM: no answer"), 5) << replayed.output;
}

TEST_F(ProcessReplayTest, TheDatabaseOfTheRecordingAnswersQueries) {
  ASSERT_EQ(client("SAVE", {"--seed", "1"}, {"--exchanges", "6"}).status, 0);
  const ProgramRun asked = client("REPLAY", {"--offline", "--queries"}, {"--exchanges", "6"});
  EXPECT_EQ(asked.status, 0);
  EXPECT_EQ(countOf(asked.output, "\nDocument GP-2100.KelDrawing ("), 1) << asked.output;
  EXPECT_EQ(countOf(asked.output, "  getType: KelDrawing\n"), 1) << asked.output;
  EXPECT_EQ(countOf(asked.output, "  getPartnumber: GP-2100\n"), 1) << asked.output;
  EXPECT_EQ(countOf(asked.output, "  getpathFile: GP-2100.KelDrawing\n"), 1) << asked.output;
  // Nothing is known to a run that reads another database.
  const ProgramRun scanned = client("SCAN", {"--queries"}, {"--exchanges", "6"});
  EXPECT_EQ(countOf(scanned.output, "  getType: (no answer)\n"),
            countOf(scanned.output, "  getType: "));
  EXPECT_GT(countOf(scanned.output, "  getType: "), 0);
}

}  // namespace
