// What checking requests and replaying answers costs.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "RawFiles.h"
#include "Recording.h"
#include "Rows.h"
#include "SideBySide.h"
#include "SizedMessages.h"
#include "XmlFloor.h"
#include "pdm-client/Messages.h"

namespace bench {

namespace {

// The run that was recorded has other identifiers and time stamps than the one that replays.
constexpr std::uint64_t kRecordedSeed = 11;
constexpr std::uint64_t kSentSeed = 12;

constexpr int kSteps = 100;
constexpr int kLongRun = 10'000;
constexpr int kEnd = 1'000;
constexpr std::size_t kUsualScript = 20;

// What the client sends, and what the server answers to it, in `steps` steps that differ.
std::vector<Exchange> exchanges(std::size_t bytes, std::uint64_t seed, int steps) {
  std::vector<Exchange> all;
  for (int step = 1; step <= steps; ++step) {
    const std::string request = sizedRequest(pdm::kSave, bytes, seed, step);
    all.push_back({request, answerTo(request, seed)});
  }
  return all;
}

// A recording, and what is sent when it is replayed. A session longer than `kSteps` repeats them.
class Replay {
 public:
  Replay(const std::string& root, std::size_t bytes, int steps, std::size_t scriptEntries)
      : _recording(root, scriptWith(scriptEntries)),
        _steps(steps),
        _sent(exchanges(bytes, kSentSeed, std::min(steps, kSteps))) {
    const auto recorded = exchanges(bytes, kRecordedSeed, std::min(steps, kSteps));
    _recording.record(steps, [&](int step) { return recorded[index(step)]; });
    Recording::settle();
    _recording.mode("REPLAY");
  }

  const Recording& recording() const { return _recording; }

  // Plays the next step; behind the last one comes the first.
  void step() {
    if (_step == _steps) rewind();
    Recording::exchange(_sent[index(++_step)]);
  }

  void rewind() {
    Recording::rewind();
    _recording.clearErrorLog();
    _step = 0;
  }

 private:
  static std::size_t index(int step) { return static_cast<std::size_t>((step - 1) % kSteps); }

  Recording _recording;
  int _steps;
  std::vector<Exchange> _sent;
  int _step = 0;
};

void replayStep(benchmark::State& state, const std::string& root, std::size_t bytes,
                const Bounds& bounds) {
  Replay replay(root, bytes, kSteps, kUsualScript);
  const auto sent = exchanges(bytes, kSentSeed, kSteps);
  const Recording& recording = replay.recording();
  XmlFloor xml;
  std::string index[2];
  std::string script;
  std::string request;
  std::string answer;
  std::size_t step = 0;
  compare(
      state, bounds, 1'000, [&] { replay.step(); },
      [&] {
        const std::string end = "321_" + std::to_string(step) + ".txt";
        readRaw(recording.scenario("Scenario.txt"), index[0]);
        readRaw(recording.scenario("Scenario2.txt"), index[1]);
        readRaw(recording.script(), script);
        readRaw(recording.reference("save" + end), request);
        readRaw(recording.reference("rep" + end), answer);
        const auto text = [](const std::string& message, std::size_t header) {
          return std::string_view(message).substr(header);
        };
        benchmark::DoNotOptimize(xml.parseAndWalk(text(sent[step].request, pdm::kRequestHeader)));
        benchmark::DoNotOptimize(xml.parseAndWalk(text(request, pdm::kRequestHeader)));
        benchmark::DoNotOptimize(xml.parseAndWalk(text(answer, pdm::kAnswerHeader)));
        step = (step + 1) % kSteps;
      });
}

void replayEnds(benchmark::State& state, const std::string& root) {
  Replay replay(root, 2'000, kLongRun, kUsualScript);
  compareEnds(state, {1.2, 1.05}, kEnd, [&](Samples& samples) {
    replay.rewind();
    for (int i = 0; i < kLongRun; ++i) samples.add(timeOf([&] { replay.step(); }));
  });
}

// The script is changed in between, so a turn is a number of steps, and the first one with a script
// does not count.
void scriptEntries(benchmark::State& state, const std::string& root, const Bounds& bounds) {
  constexpr int kTurn = 50;
  Replay replay(root, 2'000, kSteps, kUsualScript);
  const std::string scripts[2] = {scriptWith(500), scriptWith(kUsualScript)};
  Samples samples[2];
  for (Budget budget(20, 3); budget.next();) {
    for (std::size_t which = 0; which < 2; ++which) {
      replay.recording().writeScript(scripts[which]);
      Recording::settle();
      replay.step();
      for (int i = 0; i < kTurn; ++i) samples[which].add(timeOf([&] { replay.step(); }));
    }
  }
  report(state, bounds, samples[0].median(), samples[1].median());
}

std::string shown(int steps) { return std::to_string(steps); }

// The most memory that a process held which replays `steps` exchanges of the recording in `folder`.
double peakOf(const std::string& program, const std::string& folder, int steps) {
  const std::string command =
      "'" + program + "' --replay-in='" + folder + "' --steps=" + shown(steps);
  std::FILE* child = popen(command.c_str(), "r");
  double kilobytes = 0;
  const bool told = child != nullptr && std::fscanf(child, "%lf", &kilobytes) == 1;
  const bool ended = child != nullptr && pclose(child) == 0;
  return told && ended ? kilobytes * 1024 : 0;
}

void memory(benchmark::State& state, const std::string& program, const std::string& root) {
  const Replay replay(root, 2'000, kLongRun, kUsualScript);
  const double many = peakOf(program, replay.recording().folder(), kLongRun);
  const double few = peakOf(program, replay.recording().folder(), 100);
  if (many <= 0 || few <= 0) state.SkipWithError("the replaying process failed");
  report(state, {1.05, 1.0}, many, few);
}

}  // namespace

void addReplayRows(const std::string& root) {
  addRow("REPLAY step, 2 KB / files read, three messages parsed once",
         [=](benchmark::State& state) {
           replayStep(state, root, 2'000, {1.5, 1.2});
         });
  addRow("REPLAY step, 20 KB / files read, three messages parsed once",
         [=](benchmark::State& state) {
           replayStep(state, root, 20'000, {1.3, 1.1});
         });
  addRow("REPLAY, last 1,000 of 10,000 / first 1,000",
         [=](benchmark::State& state) { replayEnds(state, root); });
  addRow("REPLAY, script of 500 entries / 20 entries", [=](benchmark::State& state) {
    scriptEntries(state, root, {1.2, 1.05});
  });
}

void addMemoryRow(const std::string& program, const std::string& root) {
  addRow("Peak memory of 10,000 REPLAY steps / of 100",
         [=](benchmark::State& state) { memory(state, program, root); });
}

int replayInChild(const std::string& folder, int steps) {
  Recording::use(folder);
  setenv("ZETNORV_MODE", "REPLAY", 1);
  const auto sent = exchanges(2'000, kSentSeed, kSteps);
  for (int step = 0; step < steps; ++step) {
    Recording::exchange(sent[static_cast<std::size_t>(step % kSteps)]);
  }
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    double kilobytes = 0;
    if (std::sscanf(line.c_str(), "VmHWM: %lf kB", &kilobytes) != 1) continue;
    std::printf("%.0f\n", kilobytes);
    return 0;
  }
  return 1;
}

}  // namespace bench
