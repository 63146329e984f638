// A client that is killed in the middle of a recording: what was recorded before is as if it had
// not been, replays, and the next recording goes on behind it.
#include <algorithm>
#include <map>
#include <random>

#include "../scenario/SessionFixture.h"
#include "DoomedProgram.h"
#include "FaultyFileSystem.h"

namespace {

using namespace session_test;
namespace fs = std::filesystem;

constexpr int kExchanges = 14;
constexpr int kPointsAtLeast = 500;  // of all shares together
constexpr int kShares = 8;           // tests that share the points of a sweep

int linesIn(const std::string& text) { return countOf(text, "\n"); }

class KilledHostTest : public SessionFixture, public testing::WithParamInterface<int> {
 protected:
  KilledHostTest() {
    mode("SAVE");
    EXPECT_EQ(host(0).status, 0);
    _whole = files();
    EXPECT_GT(linesIn(_whole["Scenario/Scenario.txt"]), kExchanges - 1);
  }

  // Records the session anew, until the `n`-th call of the file system or until some time after
  // `lines` steps are told of.
  DoomedRun host(int n, int lines = 0, int microseconds = 0) {
    putAside();
    mode("SAVE");
    return runDoomed(DOOMED_HOST,
                     {scratch.file("work"), std::to_string(kExchanges), std::to_string(n)}, lines,
                     microseconds);
  }

  fs::path folder() const { return scratch.file("in/case1.rec"); }

  // Every file of the recording, by its path in it.
  std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> found;
    if (!fs::exists(folder())) return found;
    for (const auto& entry : fs::recursive_directory_iterator(folder())) {
      if (!entry.is_regular_file()) continue;
      found[fs::relative(entry.path(), folder()).generic_string()] =
          readBytes(entry.path().string());
    }
    return found;
  }

  // The recording holds the first lines of the whole one, and each has its file, byte for byte.
  void expectTheBeginning(const std::map<std::string, std::string>& left) {
    for (const char* index : {"Scenario.txt", "Scenario2.txt", "database.txt"}) {
      const std::string& whole = _whole["Scenario/" + std::string(index)];
      const auto found = left.find("Scenario/" + std::string(index));
      const std::string text = found == left.end() ? "" : found->second;
      EXPECT_TRUE(whole.starts_with(text)) << index << ": " << text;
      EXPECT_TRUE(text.empty() || text.back() == '\n') << index << ": " << text;
    }
    for (const auto& [name, bytes] : left) expectFile(name, bytes, left);
    expectFilesOf("Scenario/Scenario.txt", left);
    expectFilesOf("Scenario/Scenario2.txt", left);
  }

  // Replays the steps that are recorded, without a finding.
  void expectReplay(int requests, int answers) {
    resetEmulator();
    mode("REPLAY");
    fs::remove(errorLog());
    trace.clear();
    const pdm::Session again(recorded(2));
    int answered = 0;
    for (int step = 1; step <= requests; ++step) {
      const std::string message = again.request(step);
      if (message.empty()) {
        EXPECT_EQ(
            pdm::takeSnapshot(again.plan()[static_cast<std::size_t>(step) - 1].number).problem, "");
        continue;
      }
      EXPECT_EQ(send(message), S_OK);
      if (answered++ == answers) break;
      EXPECT_TRUE(receive("live").replaced) << step;
    }
    EXPECT_EQ(findingsIn(exists(errorLog()) ? readBytes(errorLog()) : ""), Texts());
    expectNoProblem();
  }

  // Records behind what is there, which stays as it is.
  void expectToGoOn() {
    const auto before = files();
    resetEmulator();
    mode("SAVE");
    exchange(12, "further", "answer");
    auto after = files();
    for (const auto& [name, bytes] : before) {
      EXPECT_TRUE(after[name].starts_with(bytes)) << name;
      EXPECT_TRUE(name.starts_with("Scenario/") || after[name] == bytes) << name;
    }
    const std::string index = after["Scenario/Scenario.txt"];
    const std::size_t at = index.rfind("<save12_");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(after["Reference/" + index.substr(at + 1, index.find('>', at) - at - 1)],
              request(12, "further"));
  }

  // All of it, for a host that was killed. False when it was not.
  bool expectKilled(const DoomedRun& run) {
    if (!run.killed) return false;
    const auto left = files();
    expectTheBeginning(left);
    const auto textOf = [&](const char* name) {
      return left.contains(name) ? left.at(name) : std::string();
    };
    const std::string index = textOf("Scenario/Scenario.txt");
    const int requests = linesIn(index) - countOf(index, "<999>");
    const int answers = linesIn(textOf("Scenario/Scenario2.txt"));
    EXPECT_TRUE(answers == requests || answers == requests - 1) << requests << ' ' << answers;
    // What was told of is done: at most the exchange in flight is lost.
    EXPECT_GE(linesIn(index), run.lines);
    expectReplay(linesIn(index), answers);
    expectToGoOn();
    return true;
  }

 private:
  // Systems that are slow to use a removed file's place again would make up most of a sweep's time.
  void putAside() {
    const fs::path aside = scratch.path() / "aside";
    fs::create_directories(aside);
    if (fs::exists(folder())) fs::rename(folder(), aside / std::to_string(++_runs));
  }

  pdm::SessionOptions recorded(std::uint64_t seed) const {
    pdm::PlanOptions plan;
    plan.exchanges = kExchanges;
    plan.snapshots = true;
    pdm::SessionOptions options = session(seed, plan);
    options.documentBytes = 2000;
    return options;
  }

  void expectFile(const std::string& name, const std::string& bytes,
                  const std::map<std::string, std::string>& left) {
    if (name.starts_with("Scenario/")) return;
    const std::string file = name.substr(name.rfind('/') + 1);
    if (name.find("/Kel_Files_Temp/") != std::string::npos) {
      // A copy is the document as it was saved at one step; under the temporary name it may be cut.
      if (file.starts_with('.')) return;
      const std::string line = bytes.substr(0, bytes.find('\n') + 1);
      ASSERT_GE(bytes.size(), 2000u) << name;
      EXPECT_EQ(static_cast<std::size_t>(countOf(bytes, line)) * line.size(), bytes.size()) << name;
      return;
    }
    // A file without a line is what the exchange in flight left.
    if (left.contains("Scenario/Scenario.txt") && left.contains("Scenario/Scenario2.txt") &&
        (left.at("Scenario/Scenario.txt") + left.at("Scenario/Scenario2.txt")).find(file) ==
            std::string::npos) {
      ++_withoutLine;
      EXPECT_TRUE(_whole[name].starts_with(bytes)) << name;
    }
  }

  // Every line's file is the whole recording's.
  void expectFilesOf(const std::string& index, const std::map<std::string, std::string>& left) {
    if (!left.contains(index)) return;
    std::istringstream lines(left.at(index));
    for (std::string line; std::getline(lines, line);) {
      const std::size_t start = line.find('<', 1) + 1;
      std::string name = line.substr(start, line.find('>', start) - start);
      name = "Reference/" + name.substr(name.rfind('\\') + 1);
      ASSERT_TRUE(left.contains(name)) << line;
      EXPECT_TRUE(left.at(name) == _whole[name]) << name;
    }
  }

 protected:
  int _withoutLine = 0;

 private:
  std::map<std::string, std::string> _whole;
  int _runs = 0;
};

TEST_P(KilledHostTest, LosesTheExchangeInFlightAtMostAtEveryCallOfTheSystem) {
  int points = 0;
  for (int n = 1 + GetParam(); !HasFailure(); n += kShares) {
    SCOPED_TRACE("killed at call " + std::to_string(n));
    if (!expectKilled(host(n))) break;
    ++points;
  }
  RecordProperty("points", points);
  EXPECT_GE(points, (kPointsAtLeast + kShares - 1) / kShares);
  EXPECT_GT(_withoutLine, 0);
}

TEST_P(KilledHostTest, LosesTheExchangeInFlightAtMostWheneverItIsKilledFromOutside) {
  int points = 0;
  for (int lines = 1 + GetParam(); lines < kExchanges && !HasFailure(); lines += kShares) {
    SCOPED_TRACE("killed behind line " + std::to_string(lines));
    points += expectKilled(host(0, lines)) ? 1 : 0;
  }
  RecordProperty("points", points);
  EXPECT_GT(points, 0);
}

// Wherever it hits. A run that ended before the kill came is not counted.
TEST_P(KilledHostTest, LosesTheExchangeInFlightAtMostAtPointsInTime) {
  constexpr int kPoints = 20;
  std::mt19937 random(static_cast<unsigned>(GetParam()) + 1);
  int points = 0;
  for (int tries = 0; points < kPoints && tries < 20 * kPoints && !HasFailure(); ++tries) {
    const int lines = 1 + static_cast<int>(random() % (kExchanges / 2));
    const int microseconds = static_cast<int>(random() % 3000);
    SCOPED_TRACE("killed " + std::to_string(microseconds) + " us behind line " +
                 std::to_string(lines));
    points += expectKilled(host(0, lines, microseconds)) ? 1 : 0;
  }
  RecordProperty("points", points);
  EXPECT_EQ(points, kPoints);
}

INSTANTIATE_TEST_SUITE_P(Shares, KilledHostTest, testing::Range(0, kShares));

}  // namespace
