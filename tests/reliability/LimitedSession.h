// A small recording, behind which a client records on, or which it replays, while the system denies
// it something; and what holds whatever is denied.
#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "FaultedSession.h"
#include "ZetNorvEmul.h"

namespace limits_test {

using namespace fault_test;
namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

inline const std::vector<Exchange> kEarlier = {{kOpen, 1, 1}, {kSave, 1, 2}, {kNavigate, 1, 3}};
inline const std::vector<Exchange> kDenied = {
    {kOpen, 2, 4}, {kSave, 2, 5}, {kNavigate, 2, 6}, {kOpen, 3, 7}, {kCommit, 1, 8}};
inline constexpr Exchange kLater = {kOpen, 4, 9};

inline constexpr int kSnapshotBytes = 60;
inline constexpr int kHostOperation = 77;
inline constexpr int kLiveStatus = 99;
inline constexpr const char* kLiveAnswer = "the server's own";
inline constexpr const char* kHostBytes = "an answer that the host records";

inline constexpr const char* kRequestFailed = "Problem in ZetNorvEmul::preWensnd with save";
inline const Texts kRequestCauses = {"Problem in ZetNorvEmul::save with file.open",
                                     "Problem in ZetNorvEmul::save with mod.save",
                                     "Problem in ZetNorvEmul::save with file.puts"};
inline const Texts kAnswerCauses = {"Problem with KelFOpen (cf. SaveAnswer)!",
                                    "Problem with KelFPuts (Cf. SaveAnswer)!"};
inline const Texts kHostCauses = {"Problem in ZetNorvEmul::saveAnswer with KelFOpen!",
                                  "Problem with KelFPuts!"};
inline const Texts kSnapshotCauses = {"Problem in ZetNorvToolBox::KavFirst with file.write",
                                      "Problem in ZetNorvToolBox::KavFirst with file.open",
                                      "Problem in ZetNorvToolBox::KavFirst with file.puts"};
inline const Texts kFileCauses = {"Problem with KelFOpen w!", "Problem with KelFWrite!"};
inline const Texts kObjectCauses = {"buildDB : Problem with KelFOpen!",
                                    "buildDB : Problem with KelFPuts!"};
inline const Texts kCheckCauses = {"Problem in ZetNorvEmul::preWensnd with KelFOpen!",
                                   "runNorvLike: buildData != S_OK", "runNorvLike: load != S_OK"};
inline const Texts kLogCauses = {"Problem with KelFOpen writeLogFile!",
                                 "Problem with KelFPuts writeLogFile!",
                                 "Problem in ZetNorvToolBox::writeLog with KelFOpen",
                                 "Problem in ZetNorvToolBox::writeLog with file.puts"};
inline constexpr const char* kNoAnswerIndex = "Problem in ZetNorvEmul::postWensnd with KelFOpen!";
inline constexpr const char* kNoAnswerFile = "ZetNorvEmul: error load file2";

enum class Kind { kRequest, kAnswer, kSnapshot, kHostAnswer };

struct Step {
  Kind kind;
  Exchange exchange;
};

// What came of one step.
struct Outcome {
  long result = S_OK;
  int status = 0;
  std::string bytes;  // what the client holds afterwards
  Texts lines;        // of the library's trace

  bool has(const std::string& line) const {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  bool hasOneOf(const Texts& causes) const {
    return std::any_of(causes.begin(), causes.end(), [&](const auto& line) { return has(line); });
  }
};

using Outcomes = std::vector<Outcome>;

inline bool anyHas(const Outcomes& outcomes, const std::string& line) {
  return std::any_of(outcomes.begin(), outcomes.end(),
                     [&](const Outcome& outcome) { return outcome.has(line); });
}

// From one process to another.
inline std::string packed(const Outcomes& outcomes) {
  std::ostringstream out;
  for (const Outcome& outcome : outcomes) {
    out << outcome.result << ' ' << outcome.status << ' ' << std::quoted(outcome.bytes) << ' '
        << outcome.lines.size();
    for (const std::string& line : outcome.lines) out << ' ' << std::quoted(line);
    out << '\n';
  }
  return out.str();
}

inline Outcomes unpacked(const std::string& text) {
  Outcomes outcomes;
  std::istringstream in(text);
  Outcome outcome;
  std::size_t lines = 0;
  while (in >> outcome.result >> outcome.status >> std::quoted(outcome.bytes) >> lines) {
    outcome.lines.resize(lines);
    for (std::string& line : outcome.lines) in >> std::quoted(line);
    outcomes.push_back(outcome);
  }
  return outcomes;
}

inline Texts linesOf(const std::string& text) {
  Texts lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class LimitedSession : public EmulatorFixture {
 protected:
  // Documents are named from the root of the drive, so that a process may enter the directory and
  // needs no right to those above it.
  LimitedSession() {
    for (const std::vector<Exchange>& exchanges : {kEarlier, kDenied}) {
      for (const Exchange& exchange : exchanges) {
        if (exchange.op != kSave) continue;
        writeBytes(document(exchange), documentBytes(exchange));
      }
    }
    environment.set("App_SceFile", "\\host/");
    environment.set("BIX_ZET_TMP", "\\tmp");
  }

  // Makes what follows, up to the end of the test, happen in debug mode.
  void debug() {
    _debugging = true;
    environment.set("App_CfgFile", "\\in/Configuration/");
    environment.set("App_RefFile", "\\ref/");
    environment.set("App_SceFile", "\\sce/");
    environment.set("App_ErrFile", "\\err/");
  }

  // The run mode of what follows.
  void runIn(const std::string& value) {
    _recording = value == "SAVE";
    environment.set(_debugging ? "ZETNORV_DEBUG" : "ZETNORV_MODE", value);
  }

  std::string file(const std::string& name) const { return scratch.file(name); }
  std::string document(const Exchange& exchange) const {
    return scratch.file("work/" + documentName(exchange));
  }
  std::string data(const std::string& name) const {
    return _debugging ? debugReference(name) : reference(name);
  }
  std::string index(const std::string& name) const {
    return _debugging ? debugScenario(name) : scenario(name);
  }
  std::string hostIndex() const { return file(_debugging ? "sce" : "host") + "/Scenario2.txt"; }

  // Whether something is recorded before anything is denied.
  void startFromNothing() { _earlier.clear(); }

  // Clears the place and records there what comes before the steps that are denied something.
  void prepare() {
    putAside();
    writeBytes(file("in/Configuration/xmlStruct.xml"), kScript);
    writeBytes(file("error.log"), "earlier\n");
    resetEmulator();
    runIn("SAVE");
    for (const Outcome& outcome : play(stepsOf(_earlier))) EXPECT_EQ(outcome.result, S_OK);
    // In debug mode, replays look for the directory's name twice.
    if (_debugging) fs::create_directory_symlink(".", data("Reference"));
    _before = recorded();
  }

  // The steps that are denied something, with `before` called before each; nothing is expected of
  // them here.
  Outcomes recordMore(const std::function<void(std::size_t step)>& before = nullptr) {
    runIn("SAVE");
    return play(deniedSteps(), before);
  }

  Outcomes replayEarlier() {
    resetEmulator();
    runIn("REPLAY");
    return play(stepsOf(_earlier));
  }

  // --- what holds ---

  // Every step is recorded whole, or told of and not there; and what was there before is the same,
  // replays, and can be added to.
  void expectRecorded(const Outcomes& outcomes) {
    const std::vector<Step> steps = deniedSteps();
    ASSERT_EQ(outcomes.size(), steps.size());
    Texts requests = added("Scenario.txt");
    Texts answers = added("Scenario2.txt");
    Texts objects = added("database.txt");
    for (std::size_t i = 0; i < steps.size(); ++i) {
      SCOPED_TRACE("step " + std::to_string(i) + " of operation " +
                   std::to_string(steps[i].exchange.op));
      expectTold(steps[i], outcomes[i]);
      expectStep(steps[i], outcomes[i], requests, answers, objects);
    }
    EXPECT_EQ(requests, Texts());
    EXPECT_EQ(answers, Texts());
    EXPECT_EQ(objects, Texts());
    expectNothingHalf();
    expectTheEarlier();
  }

  // The recording is as it was; the log has grown by whole sections.
  void expectUntouched() const {
    EXPECT_EQ(recorded(), _before);
    const std::string log = contentOf(file("error.log"));
    EXPECT_TRUE(log.starts_with("earlier\n")) << log;
    EXPECT_TRUE(log == "earlier\n" || _debugging || log.ends_with("\n## Fin buf\n")) << log;
    EXPECT_EQ(log.find("Problem"), std::string::npos) << log;
  }

  // Every step of a replay gave the recorded, or the live with the cause told.
  void expectReplayed(const Outcomes& outcomes) const {
    const std::vector<Step> steps = stepsOf(_earlier);
    ASSERT_EQ(outcomes.size(), steps.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
      SCOPED_TRACE("replayed step " + std::to_string(i));
      const Outcome& outcome = outcomes[i];
      EXPECT_TRUE(outcome.result == S_OK || outcome.result == E_FAIL);
      if (steps[i].kind == Kind::kRequest) {
        EXPECT_EQ(outcome.result == S_OK, !outcome.hasOneOf(kCheckCauses));
      } else if (steps[i].kind == Kind::kAnswer) {
        expectAnswer(steps[i].exchange, outcome);
      } else {
        EXPECT_EQ(outcome.result == S_OK, !outcome.hasOneOf(kCheckCauses));
        // A block that cannot be read is handed out as zeros.
        const bool zeros = outcome.bytes == std::string(outcome.bytes.size(), '\0');
        EXPECT_TRUE(zeros || outcome.bytes == blockOf(steps[i].exchange).substr(0, kSnapshotBytes));
      }
    }
  }

  static bool isClean(const Outcomes& outcomes) {
    return std::all_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) {
      return outcome.result == S_OK && !outcome.has(kNoAnswerIndex) &&
             std::none_of(outcome.lines.begin(), outcome.lines.end(),
                          [](const auto& line) { return line.starts_with("Problem"); });
    });
  }

  // Each of the lines was traced; without lines, nothing failed.
  static void expectTraced(const Outcomes& outcomes, const Texts& lines) {
    for (const std::string& line : lines) EXPECT_TRUE(anyHas(outcomes, line)) << line;
    if (!lines.empty()) return;
    EXPECT_TRUE(isClean(outcomes));
    for (const Texts& causes : {kFileCauses, kObjectCauses}) {
      for (const Outcome& outcome : outcomes) EXPECT_FALSE(outcome.hasOneOf(causes));
    }
  }

  // What was there before the steps that were denied something.
  void expectTheEarlier() {
    const Tree after = recorded();
    for (const auto& [path, bytes] : _before) {
      SCOPED_TRACE(path);
      const auto found = after.find(path);
      ASSERT_NE(found, after.end());
      EXPECT_TRUE(grows(path) ? found->second.starts_with(bytes) : found->second == bytes);
    }
    const Outcomes replayed = replayEarlier();
    EXPECT_TRUE(isClean(replayed));
    expectReplayed(replayed);
    if (!replayed.empty()) {
      EXPECT_EQ(replayed.back().bytes, blockOf(_earlier.back()).substr(0, kSnapshotBytes));
    }
    EXPECT_EQ(contentOf(file("error.log")).find("Problem"), std::string::npos);
    expectToGoOn();
  }

 private:
  // Moves what is there elsewhere: systems that are slow to use a removed file's place again would
  // make up most of a sweep's time. The places themselves stay, as one may be a disk of its own.
  void putAside() {
    const fs::path aside = scratch.path() / "aside" / std::to_string(++_runs);
    for (const char* name : {"in", "ref", "sce", "err", "host"}) {
      fs::create_directories(file(name));
      fs::create_directories(aside / name);
      for (const auto& entry : fs::directory_iterator(file(name))) {
        fs::rename(entry.path(), aside / name / entry.path().filename());
      }
    }
  }

  static std::vector<Step> stepsOf(const std::vector<Exchange>& exchanges) {
    std::vector<Step> steps;
    for (const Exchange& exchange : exchanges) {
      steps.push_back({Kind::kRequest, exchange});
      steps.push_back({Kind::kAnswer, exchange});
      if (exchange.op == kNavigate) steps.push_back({Kind::kSnapshot, exchange});
    }
    return steps;
  }

  static std::vector<Step> deniedSteps() {
    std::vector<Step> steps = stepsOf(kDenied);
    steps.push_back({Kind::kHostAnswer, {kHostOperation, 1, 5}});
    return steps;
  }

  static std::string requestFor(const Exchange& exchange) {
    return requestOf(exchange, "\\work/", "session");
  }
  static std::string answerFor(const Exchange& exchange) {
    return answerOf(exchange, "\\work/", identifier(exchange, "session"));
  }
  static std::string blockOf(const Exchange& exchange) {
    return snapshotBytes(exchange.number, kSnapshotBytes);
  }

  Outcomes play(const std::vector<Step>& steps,
                const std::function<void(std::size_t step)>& before = nullptr) {
    const ConsoleCapture console;  // a row that is loaded, a script that is not there
    Outcomes outcomes;
    for (const Step& step : steps) {
      if (before) before(outcomes.size());
      trace.clear();
      Outcome outcome = playOne(step);
      outcome.lines = trace.texts();
      outcomes.push_back(std::move(outcome));
    }
    return outcomes;
  }

  Outcome playOne(const Step& step) const {
    switch (step.kind) {
      case Kind::kRequest:
        return {send(requestFor(step.exchange)), 0, "", {}};
      case Kind::kAnswer:
        return playAnswer(step.exchange);
      case Kind::kSnapshot:
        return _recording ? saveBlock(step.exchange) : readBlock();
      case Kind::kHostAnswer:
        break;
    }
    const std::string bytes = kHostBytes;
    return {ZetNorvEmul::saveAnswer(kHostOperation, bytes.data(), static_cast<int>(bytes.size()),
                                    step.exchange.status),
            0,
            "",
            {}};
  }

  Outcome playAnswer(const Exchange& exchange) const {
    const Received received = _recording ? receive(answerFor(exchange), exchange.status)
                                         : receive(kLiveAnswer, kLiveStatus);
    return {received.result, received.status, received.bytes, {}};
  }

  static Outcome saveBlock(const Exchange& exchange) {
    int size = kSnapshotBytes;
    int ignored = 0;
    const std::string bytes = blockOf(exchange);
    return {ZetNorvEmul::SaveKavFirst(size, ignored, bytes.data()), 0, "", {}};
  }

  static Outcome readBlock() {
    int size = 0;
    int allocated = 0;
    char* block = nullptr;
    Outcome outcome;
    outcome.result = ZetNorvEmul::ReplayKavFirst(size, allocated, block);
    if (block != nullptr) outcome.bytes.assign(block, static_cast<std::size_t>(size));
    delete[] block;
    return outcome;
  }

  Tree recorded() const {
    Tree tree = treeOf(file("in"));
    for (const char* name : {"ref", "sce", "host"}) tree.merge(treeOf(file(name)));
    return tree;
  }

  static bool grows(const std::string& path) {
    const std::string name = fs::path(path).filename().string();
    return name == "Scenario.txt" || name == "Scenario2.txt" || name == "database.txt";
  }

  // The lines that an index has now and had not before; all of them are whole.
  Texts added(const std::string& name) const {
    const std::string path = index(name);
    const auto found = _before.find(path);
    const std::string earlier = found == _before.end() ? "" : found->second;
    const std::string now = contentOf(path);
    EXPECT_TRUE(now.starts_with(earlier)) << now;
    EXPECT_TRUE(now.empty() || now.back() == '\n') << now;
    return linesOf(now.substr(std::min(now.size(), earlier.size())));
  }

  // A step that failed tells why; one that did not tells of no failure of its own.
  static void expectTold(const Step& step, const Outcome& outcome) {
    const Texts& causes = step.kind == Kind::kRequest    ? kRequestCauses
                          : step.kind == Kind::kAnswer   ? kAnswerCauses
                          : step.kind == Kind::kSnapshot ? kSnapshotCauses
                                                         : kHostCauses;
    EXPECT_TRUE(outcome.result == S_OK || outcome.result == E_FAIL) << outcome.result;
    EXPECT_EQ(outcome.result != S_OK, outcome.hasOneOf(causes));
    if (step.kind == Kind::kRequest) {
      EXPECT_EQ(outcome.result != S_OK, outcome.has(kRequestFailed));
    }
    if (step.kind == Kind::kAnswer) {
      EXPECT_EQ(outcome.bytes, answerFor(step.exchange));
      EXPECT_EQ(outcome.status, step.exchange.status);
    }
  }

  static std::string taken(Texts& lines) {
    if (lines.empty()) {
      ADD_FAILURE() << "a line is missing";
      return "";
    }
    std::string line = lines.front();
    lines.erase(lines.begin());
    return line;
  }

  // The name in a line that starts and ends as given, without the directory.
  static std::string nameIn(const std::string& line, const std::string& start,
                            const std::string& end) {
    EXPECT_TRUE(line.starts_with(start) && line.ends_with(end)) << line;
    if (line.size() < start.size() + end.size()) return "";
    const std::string name = line.substr(start.size(), line.size() - start.size() - end.size());
    return name.substr(name.find_last_of("\\/") + 1);
  }

  void expectStep(const Step& step, const Outcome& outcome, Texts& requests, Texts& answers,
                  Texts& objects) const {
    const Exchange& exchange = step.exchange;
    if (step.kind == Kind::kHostAnswer) return expectHostAnswer(outcome);
    if (outcome.result != S_OK) return;
    const std::string operation = "<" + std::to_string(exchange.op) + "><";
    if (step.kind == Kind::kRequest) {
      EXPECT_EQ(readBytes(data(nameIn(taken(requests), operation, ">"))), requestFor(exchange));
    } else if (step.kind == Kind::kSnapshot) {
      const std::string name = nameIn(taken(requests), "<999><", "><60><60>");
      EXPECT_EQ(readBytes(data(name)), blockOf(exchange));
    } else {
      const std::string end = "><" + std::to_string(exchange.status) + ">";
      expectAnswerFile(nameIn(taken(answers), operation, end), answerFor(exchange), outcome);
      if (exchange.op == kSave) expectObjects(exchange, outcome, objects);
    }
  }

  // An answer's line names a whole file, or one that is not there.
  void expectAnswerFile(const std::string& name, const std::string& bytes,
                        const Outcome& outcome) const {
    const bool written = !outcome.hasOneOf(kFileCauses);
    EXPECT_EQ(exists(data(name)), written) << name;
    if (written) {
      EXPECT_EQ(contentOf(data(name)), bytes);
    }
  }

  void expectHostAnswer(const Outcome& outcome) const {
    const Texts lines = linesOf(contentOf(hostIndex()));
    ASSERT_EQ(lines.size(), outcome.result == S_OK ? 1u : 0u);
    if (lines.empty()) return;
    if (outcome.hasOneOf(kFileCauses)) {
      EXPECT_EQ(lines[0], "ERROR: NO FILE");
    } else {
      EXPECT_EQ(contentOf(data(nameIn(lines[0], "<77><", "><5>"))), kHostBytes);
    }
  }

  // The objects up to the one that could not be written, which is told of.
  static void expectObjects(const Exchange& exchange, const Outcome& outcome, Texts& objects) {
    const bool told = outcome.hasOneOf(kObjectCauses);
    for (const std::string& line : linesOf(objectLines(exchange, true))) {
      const bool there = !objects.empty() && objects.front() == line;
      // A document whose request was not recorded is not staged, and has no line.
      const bool document = line.find("KelPart") != std::string::npos;
      EXPECT_TRUE(there || told || document) << line;
      if (!there) return;
      objects.erase(objects.begin());
    }
  }

  // Every file of the recording is the whole of something that was exchanged.
  void expectNothingHalf() const {
    std::vector<std::string> whole = {kHostBytes};
    for (const std::vector<Exchange>& exchanges : {kEarlier, kDenied}) {
      for (const Exchange& exchange : exchanges) {
        for (std::string bytes : {requestFor(exchange), answerFor(exchange), blockOf(exchange),
                                  documentBytes(exchange)}) {
          whole.push_back(std::move(bytes));
        }
      }
    }
    for (const auto& [path, bytes] : recorded()) {
      if (path.find("/Reference/") == std::string::npos) continue;
      EXPECT_NE(std::find(whole.begin(), whole.end(), bytes), whole.end()) << path;
      EXPECT_FALSE(path.ends_with("/.staging")) << path;
    }
  }

  void expectAnswer(const Exchange& exchange, const Outcome& outcome) const {
    if (outcome.result != S_OK || outcome.has(kNoAnswerIndex)) {
      EXPECT_TRUE(outcome.has(kNoAnswerIndex) || outcome.has(kNoAnswerFile));
      EXPECT_EQ(outcome.bytes, kLiveAnswer);
      EXPECT_EQ(outcome.status, kLiveStatus);
      return;
    }
    EXPECT_EQ(outcome.status, exchange.status);
    // With an identifier of a request before, where this exchange's own was not checked.
    const bool recordedOne =
        std::any_of(kEarlier.begin(), kEarlier.end(), [&](const Exchange& other) {
          return outcome.bytes == answerOf(exchange, "\\work/", identifier(other, "session"));
        });
    EXPECT_TRUE(recordedOne) << outcome.bytes;
  }

  // The next process records behind what is there.
  void expectToGoOn() {
    const std::string requests = contentOf(index("Scenario.txt"));
    const std::string answers = contentOf(index("Scenario2.txt"));
    const Tree tree = recorded();
    resetEmulator();
    runIn("SAVE");
    for (const Outcome& outcome : play(stepsOf({kLater}))) EXPECT_EQ(outcome.result, S_OK);
    const Tree after = recorded();
    for (const auto& [path, bytes] : tree) {
      if (!grows(path)) {
        EXPECT_EQ(after.at(path), bytes) << path;
      }
    }
    const std::string request = contentOf(index("Scenario.txt"));
    const std::string answer = contentOf(index("Scenario2.txt"));
    ASSERT_TRUE(request.starts_with(requests) && answer.starts_with(answers));
    const std::string sent = nameIn(request.substr(requests.size()), "<12><", ">\n");
    const std::string got = nameIn(answer.substr(answers.size()), "<12><", "><9>\n");
    EXPECT_EQ(contentOf(data(sent)), requestFor(kLater));
    EXPECT_EQ(contentOf(data(got)), answerFor(kLater));
  }

  bool _debugging = false;
  bool _recording = true;
  int _runs = 0;
  std::vector<Exchange> _earlier = kEarlier;
  Tree _before;
};

}  // namespace limits_test
