// Whole sessions of many kinds: what was recorded is what a later run gets.
#include <set>

#include "SessionFixture.h"

namespace {

using namespace session_test;

constexpr int kBatches = 8;
constexpr int kSessionsInBatch = 26;

struct Generated {
  std::uint64_t recordingSeed;
  std::uint64_t replaySeed;
  pdm::PlanOptions plan;
};

// Another session for every number: mixtures of 6 to 18 steps, with and without snapshots, among
// them the beginnings of an ordinary session.
Generated generated(int number) {
  const auto n = static_cast<unsigned>(number);
  Generated made;
  made.recordingSeed = 1000 + n;
  made.replaySeed = 5'000'000 + 7 * n;
  made.plan = {.exchanges = 6 + number * 7 % 13, .mix = n, .snapshots = number % 3 != 0};
  return made;
}

class SessionReplayTest : public SessionFixture {};
class ManySessionsTest : public SessionFixture, public testing::WithParamInterface<int> {};

TEST_P(ManySessionsTest, GiveTheRecordedAnswersWithTheIdentifiersOfTheRun) {
  for (int i = 0; i < kSessionsInBatch; ++i) {
    const int number = GetParam() * kSessionsInBatch + i;
    const Generated made = generated(number);
    scenarioNamed("session" + std::to_string(number));
    record(session(made.recordingSeed, made.plan));

    mode(number % 2 == 0 ? "REPLAY" : "OLDREPLAY");
    const auto steps = replay(session(made.replaySeed, made.plan));
    EXPECT_EQ(steps.size(), static_cast<std::size_t>(made.plan.exchanges));
    expectTheRecording(steps);
    expectNoFinding(steps);
    expectNoProblem();
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Batches, ManySessionsTest, testing::Range(0, kBatches));

TEST_F(SessionReplayTest, TheManySessionsAreAllDifferent) {
  std::set<std::string> sessions;
  std::set<int> operations;
  for (int number = 0; number < kBatches * kSessionsInBatch; ++number) {
    const Generated made = generated(number);
    const pdm::Session client(session(0, made.plan));
    std::string all;
    for (int step = 1; step <= made.plan.exchanges; ++step) {
      const std::string request = client.request(step);
      operations.insert(pdm::operationOf(request));
      all += request + '\n';
    }
    sessions.insert(all);
  }
  EXPECT_EQ(sessions.size(), static_cast<std::size_t>(kBatches * kSessionsInBatch));
  EXPECT_EQ(operations, (std::set<int>{0, 12, 319, 321, 325}));
}

TEST_F(SessionReplayTest, RecordsEveryRequestByteForByte) {
  const auto options = session(3, {.exchanges = 40, .mix = 5, .snapshots = true});
  record(options);
  const pdm::Session client(options);
  std::map<int, int> sent;
  int snapshots = 0;
  for (int step = 1; step <= 40; ++step) {
    const std::string request = client.request(step);
    snapshots += request.empty() ? 1 : 0;
    if (request.empty()) continue;
    const int op = pdm::operationOf(request);
    const std::string name = "save" + std::to_string(op) + '_' + std::to_string(sent[op]++);
    EXPECT_TRUE(readBytes(recordedFile(name + ".txt")) == request) << name;
  }
  EXPECT_GT(snapshots, 0);
  EXPECT_EQ(countOf(readBytes(indexFile("Scenario.txt")), "\n"), 40);
  EXPECT_EQ(countOf(readBytes(indexFile("Scenario2.txt")), "\n"), 40 - snapshots);
}

TEST_F(SessionReplayTest, RecordsTheAnswersOfTheServerByteForByte) {
  resetEmulator();
  mode("SAVE");
  const pdm::Session client(session(3, {.exchanges = 12, .mix = 5}));
  pdm::ToyServer server(8);
  std::map<int, int> sent;
  for (int step = 1; step <= 12; ++step) {
    const std::string request = client.request(step);
    const std::string answer = server.serve(request).bytes;
    ASSERT_EQ(send(request), S_OK);
    const Received received = receive(answer);
    EXPECT_FALSE(received.replaced);
    EXPECT_EQ(received.bytes, answer);
    const int op = pdm::operationOf(request);
    const std::string name = "rep" + std::to_string(op) + '_' + std::to_string(sent[op]++);
    EXPECT_TRUE(readBytes(recordedFile(name + ".txt")) == answer) << name;
  }
}

TEST_F(SessionReplayTest, GivesTheSameASecondTime) {
  const pdm::PlanOptions plan{.exchanges = 25, .mix = 11, .snapshots = true};
  record(session(1, plan));
  mode("REPLAY");
  const auto first = replay(session(2, plan));
  const std::string firstLog = readBytes(errorLog());
  const auto second = replay(session(2, plan));
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(second[i].sent, first[i].sent) << i;
    EXPECT_TRUE(second[i].received.bytes == first[i].received.bytes) << i;
    EXPECT_EQ(second[i].received.status, first[i].received.status) << i;
  }
  EXPECT_TRUE(readBytes(errorLog()) == firstLog);
}

TEST_F(SessionReplayTest, LeavesTheRecordingAsItWas) {
  const pdm::PlanOptions plan{.exchanges = 25, .mix = 11, .snapshots = true};
  record(session(1, plan));
  const auto contents = [&] {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch.file("in"))) {
      if (entry.is_regular_file()) files[entry.path().string()] = readBytes(entry.path().string());
    }
    return files;
  };
  const auto before = contents();
  for (const char* value : {"REPLAY", "OLDREPLAY", "SCAN"}) {
    mode(value);
    replay(session(2, plan));
    EXPECT_TRUE(contents() == before) << value;
  }
}

TEST_F(SessionReplayTest, GivesAThousandMixedExchanges) {
  const pdm::PlanOptions plan{.exchanges = 1000, .mix = 4711, .snapshots = true};
  record(session(1, plan));
  mode("REPLAY");
  const auto steps = replay(session(2, plan));
  EXPECT_EQ(steps.size(), 1000u);
  expectTheRecording(steps);
  expectNoFinding(steps);
  expectNoProblem();
}

TEST_F(SessionReplayTest, ServesNoIdentifierOfTheRecording) {
  record(session(1, {.exchanges = 20, .mix = 2}));
  mode("REPLAY");
  std::set<std::string> recorded;
  for (const std::string& name : namesIn(recordedFile(""))) {
    if (name.rfind("rep", 0) != 0) continue;
    for (const std::string& id : identifiersIn(readBytes(recordedFile(name)), "Reference")) {
      recorded.insert(id);
    }
  }
  EXPECT_GT(recorded.size(), 5u);
  int served = 0;
  for (const Replayed& step : replay(session(2, {.exchanges = 20, .mix = 2}))) {
    for (const std::string& id : identifiersIn(step.received.bytes, "Reference")) {
      EXPECT_EQ(recorded.count(id), 0u) << id;
      ++served;
    }
  }
  EXPECT_GT(served, 5);
}

TEST_F(SessionReplayTest, ReportsTheOneRequestThatWasAltered) {
  struct Case {
    int step;
    Texts findings;
  };
  const Case cases[] = {
      {1, {"12 - 0 Problem Problem with reference file ..."}},
      {2, {"319 - 0 No Found AttributXML Type", "319 - 1 Problem Problem with reference file ..."}},
      {4, {"321 - 0 No Found AttributXML Type", "321 - 1 Problem Problem with reference file ..."}},
  };
  const pdm::PlanOptions plan{.exchanges = 8};
  record(session(1, plan));
  mode("REPLAY");
  for (const Case& c : cases) {
    pdm::SessionOptions options = session(2, plan);
    options.alteredStep = c.step;
    const auto steps = replay(options);
    EXPECT_EQ(findingsIn(readBytes(errorLog())), c.findings) << c.step;
    expectTheRecording(steps);
  }
}

}  // namespace
