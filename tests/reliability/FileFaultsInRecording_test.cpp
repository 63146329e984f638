// Recording while calls of the file system fail: a step that meets no fault is recorded whole, one
// that meets a fault is recorded whole or told of, and what was recorded before stays as it is.
#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "FaultSweep.h"
#include "FaultedSession.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

namespace fault_test {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr int kSnapshotBytes = 60;
constexpr int kHostOperation = 77;
constexpr const char* kNoFileLine = "ERROR: NO FILE\n";

// The steps before the faults, among them and behind them.
const std::vector<Exchange> kEarlier = {{kOpen, 1, 1}, {kSave, 1, 2}, {kNavigate, 1, 3}};
const std::vector<Exchange> kFaulted = {
    {kOpen, 2, 4}, {kSave, 2, 5}, {kNavigate, 2, 6}, {kSave, 3, 7}, {kCommit, 1, 8}};
constexpr Exchange kLater = {kOpen, 3, 9};

const Texts kRequestCauses = {"Problem in ZetNorvEmul::save with file.open",
                              "Problem in ZetNorvEmul::save with mod.save",
                              "Problem in ZetNorvEmul::save with file.puts"};
const Texts kAnswerCauses = {"Problem with KelFOpen (cf. SaveAnswer)!",
                             "Problem with KelFPuts (Cf. SaveAnswer)!"};
const Texts kHostCauses = {"Problem in ZetNorvEmul::saveAnswer with KelFOpen!",
                           "Problem with KelFPuts!"};
const Texts kFileCauses = {"Problem with KelFOpen w!", "Problem with KelFWrite!"};
const Texts kSnapshotCauses = {"Problem in ZetNorvToolBox::KavFirst with file.write",
                               "Problem in ZetNorvToolBox::KavFirst with file.open",
                               "Problem in ZetNorvToolBox::KavFirst with file.puts"};
const Texts kObjectCauses = {"buildDB : Problem with KelFOpen!",
                             "buildDB : Problem with KelFPuts!"};
const Texts kLogCauses = {"Problem in ZetNorvToolBox::writeLog with KelFOpen",
                          "Problem in ZetNorvToolBox::writeLog with file.puts"};

bool startsWith(const std::string& family, const Texts& beginnings) {
  return std::any_of(beginnings.begin(), beginnings.end(),
                     [&](const std::string& text) { return family.starts_with(text); });
}

class FaultsWhileRecording : public EmulatorFixture {
 protected:
  FaultsWhileRecording() {
    for (int number = 1; number <= 3; ++number) {
      const Exchange exchange{kSave, number, 0};
      writeBytes(folder() + documentName(exchange), documentBytes(exchange));
    }
    for (const Exchange& exchange : kEarlier) know(exchange);
    for (const Exchange& exchange : kFaulted) know(exchange);
    know(kLater);
    _known.push_back(hostAnswer());
    for (int number = 0; number < 12; ++number) {
      _known.push_back(snapshotBytes(number, kSnapshotBytes));
    }
  }

  // Records behind three exchanges and a snapshot, outside debug mode.
  void recordOrdinarily() {
    mode("SAVE");
    environment.set("App_SceFile", scratch.file("host/"));
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
  }

  // The same in debug mode.
  void recordDebugging() {
    _debugging = true;
    debugMode("SAVE");
    writeBytes(scratch.file("cfg/xmlStruct.xml"), kScript);
  }

  // Nothing was recorded before, so that every directory has to be made.
  void recordFromNothing() { _earlier.clear(); }

  // Snapshots only, behind what was recorded before.
  void recordSnapshots() { _snapshotsOnly = true; }

  void sweep(const std::vector<FaultFamily>& families, int atLeast) {
    const Sweep sweep{[this] { prepare(); },
                      [this](FaultyFileSystem& files, const std::string& family) {
                        _family = family;
                        recordFaulted(files);
                      },
                      [this](const std::string&) { checkTheWhole(); }};
    sweep.over(families, atLeast);
  }

 private:
  std::string folder() const { return scratch.file("work/"); }
  std::string root(const char* name) const { return scratch.file(name); }
  std::string hostAnswer() const { return "an answer that the host records"; }
  void know(const Exchange& exchange) {
    _known.push_back(requestOf(exchange, folder(), "recorded"));
    _known.push_back(answerOf(exchange, folder(), identifier(exchange, "recorded")));
  }

  std::string data(const std::string& name) const {
    return _debugging ? debugReference(name) : reference(name);
  }
  std::string index(const std::string& name) const {
    return _debugging ? debugScenario(name) : scenario(name);
  }
  std::string hostIndex() const {
    return _debugging ? scratch.file("sce/Scenario2.txt") : scratch.file("host/Scenario2.txt");
  }
  // The file that an index line names.
  std::string named(const std::string& name) const {
    const std::string directory = "Reference\\";
    return data(name.starts_with(directory) ? name.substr(directory.size()) : name);
  }

  // --- what a fault may cost ---

  // Faults in looking at what is there, in reading documents and in tidying up cost no step. Where
  // nothing is there yet, a parent that cannot be found cannot be told from one that is missing.
  bool costsSteps() const {
    if (_earlier.empty() && _family.starts_with("find_directory")) return true;
    return !startsWith(_family, {"open_read", "read", "size", "stamp", "remove", "rename",
                                 "find_directory", "start_watch", "poll_watch"});
  }
  // Where what was written of a line cannot be cut off again, a piece of it stays at the end of the
  // index, and the line that is appended next is lost with it.
  bool tearsLines() const { return startsWith(_family, {"full_disk_size", "full_disk_truncate"}); }
  // Where it cannot be removed, a half file stays that no line names.
  bool leavesHalfFiles() const { return _family == "full_disk_remove"; }
  // Only where a close failed may the line be there although the step failed: what a failing close
  // means, nobody knows.
  bool lineInDoubt() const { return _family.starts_with("close"); }

  // --- one step ---

  struct Step {
    bool faulted;
    long result;
    std::string line;  // what was added to the index
  };

  template <class Work>
  Step step(FaultyFileSystem& files, const std::string& indexFile, const Work& work) {
    trace.clear();
    const int faults = files.faults();
    const std::string before = contentOf(indexFile);
    const long result = work();
    const std::string after = contentOf(indexFile);
    EXPECT_TRUE(after.starts_with(before)) << after;
    Step done{files.faults() > faults, result, after.substr(std::min(before.size(), after.size()))};
    EXPECT_TRUE(result == S_OK || result == E_FAIL);
    if (tearsLines() && result != S_OK) {
      EXPECT_TRUE(done.faulted);
      done.line.clear();
      return done;
    }
    EXPECT_TRUE(done.line.empty() || done.line.back() == '\n') << done.line;
    EXPECT_LE(std::count(done.line.begin(), done.line.end(), '\n'), 1) << done.line;
    // A step fails only where a fault may cost it, and then it has no line and tells the cause.
    if (!done.faulted || !costsSteps()) {
      EXPECT_EQ(result, S_OK);
    }
    if (result == S_OK || !lineInDoubt()) {
      EXPECT_EQ(result == S_OK, !done.line.empty());
    }
    return done;
  }

  void expectCause(const Step& done, const Texts& causes) const {
    if (done.result != S_OK) {
      EXPECT_TRUE(announced(trace, causes)) << trace.texts().size();
    }
  }

  // The name in a line that starts and ends as given.
  std::string nameIn(const std::string& line, const std::string& start, const std::string& end) {
    EXPECT_TRUE(line.starts_with(start) && line.ends_with(end)) << line;
    if (line.size() < start.size() + end.size()) return "";
    return line.substr(start.size(), line.size() - start.size() - end.size());
  }

  void sendOne(FaultyFileSystem& files, const Exchange& exchange) {
    SCOPED_TRACE("request " + std::to_string(exchange.op));
    const std::string message = requestOf(exchange, folder(), "recorded");
    std::vector<char> buffer(message.begin(), message.end());
    const Step done = step(files, index("Scenario.txt"), [&] {
      return ZetNorvEmul::preWensnd(0, buffer.data(), static_cast<int>(buffer.size()));
    });
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), message);
    expectCause(done, kRequestCauses);
    if (done.result != S_OK) {
      EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with save"));
    }
    if (!done.line.empty()) {
      const std::string name = nameIn(done.line, "<" + std::to_string(exchange.op) + "><", ">\n");
      EXPECT_EQ(contentOf(named(name)), message) << done.line;
    }
    if (exchange.op == kSave && done.result == S_OK) checkDocument(exchange, done.faulted);
    checkExchangeLog("[SND]", exchange, ZetNorvEmul::_posCursPre, done.faulted);
  }

  void receiveOne(FaultyFileSystem& files, const Exchange& exchange) {
    SCOPED_TRACE("answer " + std::to_string(exchange.op));
    const std::string message = answerOf(exchange, folder(), identifier(exchange, "recorded"));
    const std::string objects = contentOf(index("database.txt"));
    Received received{};
    const Step done = step(files, index("Scenario2.txt"), [&] {
      received = receive(message, exchange.status);
      return received.result;
    });
    EXPECT_FALSE(received.replaced);
    EXPECT_EQ(received.bytes, message);
    EXPECT_EQ(received.status, exchange.status);
    expectCause(done, kAnswerCauses);
    if (!done.line.empty()) {
      const std::string name = nameIn(done.line, "<" + std::to_string(exchange.op) + "><",
                                      "><" + std::to_string(exchange.status) + ">\n");
      checkAnswerFile(named(name), message, done.faulted);
    }
    if (done.result == S_OK) checkObjects(exchange, objects, done.faulted);
    checkExchangeLog("[RCV]", exchange, ZetNorvEmul::_posCursPost, done.faulted);
  }

  // An answer's line names a whole file, or one that is not there.
  void checkAnswerFile(const std::string& path, const std::string& message, bool faulted) {
    if (exists(path)) {
      EXPECT_EQ(readBytes(path), message);
    } else {
      EXPECT_TRUE(faulted && costsSteps()) << path;
      EXPECT_TRUE(announced(trace, kFileCauses));
    }
    // The name of a file that could not be opened may be that of others that could not be either.
    _answers.emplace_back(path, message);
  }

  // A document is staged whole or not at all, and not at all only for a fault.
  void checkDocument(const Exchange& exchange, bool faulted) {
    const std::string copy = data("Kel_Files_Temp/" + documentName(exchange));
    if (exists(copy)) {
      EXPECT_EQ(readBytes(copy), documentBytes(exchange));
    } else {
      EXPECT_TRUE(faulted) << copy;
    }
    EXPECT_TRUE(trace.has("Copie des donnees: OK") || trace.has("Copie des donnees: KO"));
  }

  // The objects up to the one that met a fault have their lines. The document has one when the
  // request came to staging it, whatever became of the copy.
  void checkObjects(const Exchange& exchange, const std::string& before, bool faulted) {
    const std::string after = contentOf(index("database.txt"));
    ASSERT_TRUE(after.starts_with(before)) << after;
    const MString& staged = ZetNorvDb::_refFile;
    const bool isStaged = !staged.isNull() && staged.gchar() == folder() + documentName(exchange);
    const std::string all = objectLines(exchange, isStaged);
    const std::string added = after.substr(before.size());
    if (added == all && !announced(trace, kObjectCauses)) return;
    EXPECT_TRUE(faulted && costsSteps()) << added;
    EXPECT_TRUE(announced(trace, kObjectCauses));
    EXPECT_TRUE(all.starts_with(added)) << added;
    EXPECT_TRUE(tearsLines() || added.empty() || added.back() == '\n') << added;
  }

  // A log has whole lines only, and lacks one only for a fault that is told of.
  void checkExchangeLog(const char* direction, const Exchange& exchange, int number, bool faulted) {
    if (!_debugging) return;
    char line[80];
    std::snprintf(line, sizeof line, "%s Msg %03d  (Nb pas : %02d) \n", direction, exchange.op,
                  number);
    const std::string log = contentOf(debugLog(ZetNorvEmul::_date.gchar()));
    EXPECT_TRUE(tearsLines() || log.empty() || log.back() == '\n') << log;
    if (log.ends_with(line) && !announced(trace, kLogCauses)) return;
    EXPECT_TRUE(faulted && costsSteps()) << log;
    EXPECT_TRUE(announced(trace, kLogCauses));
  }

  void snapshot(FaultyFileSystem& files) {
    SCOPED_TRACE("snapshot");
    const int number = ZetNorvEmul::_posCursPre;
    const std::string bytes = snapshotBytes(number, kSnapshotBytes);
    std::vector<char> block(bytes.begin(), bytes.end());
    int size = kSnapshotBytes;
    int ignored = -3;
    const Step done = step(files, index("Scenario.txt"),
                           [&] { return ZetNorvEmul::SaveKavFirst(size, ignored, block.data()); });
    EXPECT_EQ(std::string(block.begin(), block.end()), bytes);
    EXPECT_EQ(size, kSnapshotBytes);
    EXPECT_EQ(ignored, -3);
    EXPECT_EQ(ZetNorvEmul::_posCursPre, number + 1);
    expectCause(done, kSnapshotCauses);
    if (done.line.empty()) return;
    const std::string file = "KavFirst" + std::to_string(number) + ".bin";
    EXPECT_NE(nameIn(done.line, "<999><", "><60><60>\n").find(file), std::string::npos);
    EXPECT_EQ(contentOf(data(file)), bytes);
  }

  // The recorder for hosts: what could not be written has no name in its line.
  void recordForHost(FaultyFileSystem& files) {
    SCOPED_TRACE("host's answer");
    const std::string message = hostAnswer();
    std::vector<char> buffer(message.begin(), message.end());
    const Step done = step(files, hostIndex(), [&] {
      return ZetNorvEmul::saveAnswer(kHostOperation, buffer.data(), static_cast<int>(buffer.size()),
                                     5);
    });
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), message);
    expectCause(done, kHostCauses);
    if (done.line == kNoFileLine) {
      EXPECT_TRUE(done.faulted && costsSteps());
      EXPECT_TRUE(announced(trace, kFileCauses));
    } else if (!done.line.empty()) {
      const std::string path = nameIn(done.line, "<77><", "><5>\n");
      const std::string name = path.substr(path.find_last_of('\\') + 1);
      EXPECT_EQ(contentOf(data(name)), message);
    }
  }

  // --- the whole run ---

  // Files are put aside rather than removed: systems that are slow to use a removed file's place
  // again would make up most of the sweep's time.
  void startAnew() {
    const std::string aside = root("aside/") + std::to_string(++_runs) + "/";
    fs::create_directories(aside + "in");
    for (const char* name : {"in/case1.rec", "ref", "sce", "err", "host"}) {
      if (exists(root(name))) {
        fs::rename(root(name), aside + name);
      }
    }
    fs::create_directories(root("host"));
  }

  void prepare() {
    startAnew();
    resetEmulator();
    _answers.clear();
    _family = "none";
    FaultyFileSystem files;
    for (const Exchange& exchange : _earlier) {
      sendOne(files, exchange);
      receiveOne(files, exchange);
    }
    if (!_earlier.empty()) snapshot(files);
    _before = recorded();
    trace.clear();
  }

  void recordFaulted(FaultyFileSystem& files) {
    if (_snapshotsOnly) {
      for (int i = 0; i < 4; ++i) snapshot(files);
      return;
    }
    for (const Exchange& exchange : kFaulted) {
      sendOne(files, exchange);
      receiveOne(files, exchange);
      if (exchange.op == kNavigate) snapshot(files);
    }
    recordForHost(files);
  }

  Tree recorded() const {
    Tree tree = treeOf(root("in/case1.rec"));
    tree.merge(treeOf(root("ref")));
    tree.merge(treeOf(root("sce")));
    return tree;
  }

  void checkTheWhole() {
    const Tree after = recorded();
    for (const auto& [path, bytes] : _before) {
      const auto found = after.find(path);
      ASSERT_NE(found, after.end()) << path;
      // Indexes and the database grow; nothing else changes.
      const bool grows = path.find("Scenario/") != std::string::npos;
      EXPECT_TRUE(grows ? found->second.starts_with(bytes) : found->second == bytes) << path;
    }
    for (const auto& [path, bytes] : _answers) {
      if (exists(path)) {
        EXPECT_EQ(readBytes(path), bytes) << path;
      }
    }
    for (const auto& [path, bytes] : after) expectNoHalfFile(path, bytes);
    recordOn();
    replayEarlier();
  }

  void expectNoHalfFile(const std::string& path, const std::string& bytes) const {
    const std::string name = fs::path(path).filename().string();
    if (leavesHalfFiles()) {
      return;
    }
    EXPECT_NE(name, ".staging");
    if (!startsWith(name, {"save", "rep", "KavFirst"})) return;
    EXPECT_NE(std::find(_known.begin(), _known.end(), bytes), _known.end()) << path;
  }

  // The next process records behind what is there.
  void recordOn() {
    SCOPED_TRACE("the next process");
    resetEmulator();
    if (tearsLines()) endTornLines();
    FaultyFileSystem files;
    sendOne(files, kLater);
    receiveOne(files, kLater);
  }

  // One exchange goes with the pieces at the ends of the indexes.
  void endTornLines() {
    send(requestOf(kLater, folder(), "recorded"));
    receive(answerOf(kLater, folder(), ""));
  }

  // What was recorded before the faults replays without a finding.
  void replayEarlier() {
    resetEmulator();
    fs::remove(root("error.log"));
    environment.set(_debugging ? "ZETNORV_DEBUG" : "ZETNORV_MODE", "REPLAY");
    // A recording made in debug mode is replayed from a directory that has the name twice.
    if (_debugging && !_earlier.empty()) fs::create_directory_symlink(".", data("Reference"));
    for (const Exchange& exchange : _earlier) {
      trace.clear();
      EXPECT_EQ(send(requestOf(exchange, folder(), "live")), S_OK);
      if (carriesIdentifiers(exchange)) {
        EXPECT_TRUE(trace.has("extractLogObject OK"));
      }
      const Received received = receive("no server", 99);
      EXPECT_EQ(received.result, S_OK);
      EXPECT_EQ(received.status, exchange.status);
      EXPECT_EQ(received.bytes, answerOf(exchange, folder(), identifier(exchange, "live")));
    }
    EXPECT_EQ(contentOf(root("error.log")).find(" - 0 "), std::string::npos);
    environment.set(_debugging ? "ZETNORV_DEBUG" : "ZETNORV_MODE", "SAVE");
  }

  bool _debugging = false;
  bool _snapshotsOnly = false;
  int _runs = 0;
  std::vector<Exchange> _earlier = kEarlier;
  std::string _family;
  Texts _known;  // all that may stand in a data file
  Tree _before;
  std::vector<std::pair<std::string, std::string>> _answers;  // the files that answers' lines name
};

std::vector<FaultFamily> opening() {
  return together({onceAndAlways("open", Call::kOpen), onceAndAlways("open_read", Call::kOpenRead),
                   onceAndAlways("open_write", Call::kOpenWrite),
                   onceAndAlways("open_append", Call::kOpenAppend),
                   onceAndAlways("close", Call::kClose), losingCloses()});
}

std::vector<FaultFamily> transferring() {
  return together({onceAndAlways("read", Call::kRead),
                   onceAndAlways("write", Call::kWrite),
                   onceAndAlways("size", Call::kSize),
                   {fullDisk()}});
}

std::vector<FaultFamily> inSmallPieces() {
  return together(
      {inPieces("read_in_pieces", Call::kRead), inPieces("write_in_pieces", Call::kWrite)});
}

// What is left of a write that failed can't be taken back.
std::vector<FaultFamily> tidyingUp() {
  return {fullDiskAnd("full_disk_remove", Call::kRemove),
          fullDiskAnd("full_disk_size", Call::kSize),
          fullDiskAnd("full_disk_truncate", Call::kTruncate)};
}

std::vector<FaultFamily> looking() {
  return together({onceAndAlways("make_directory", Call::kMakeDirectory),
                   onceAndAlways("find_directory", Call::kFindDirectory),
                   onceAndAlways("start_watch", Call::kStartWatch),
                   onceAndAlways("poll_watch", Call::kPollWatch),
                   onceAndAlways("stamp", Call::kStamp), onceAndAlways("rename", Call::kRename),
                   onceAndAlways("remove", Call::kRemove)});
}

TEST_F(FaultsWhileRecording, OpeningAndClosing) {
  recordOrdinarily();
  sweep(opening(), 200);
}

TEST_F(FaultsWhileRecording, ReadingAndWriting) {
  recordOrdinarily();
  sweep(transferring(), 70);
}

TEST_F(FaultsWhileRecording, AFewBytesAtATime) {
  recordOrdinarily();
  sweep(inSmallPieces(), 400);
}

TEST_F(FaultsWhileRecording, DirectoriesAndNames) {
  recordOrdinarily();
  sweep(looking(), 100);
}

TEST_F(FaultsWhileRecording, TidyingUp) {
  recordOrdinarily();
  sweep(tidyingUp(), 60);
}

TEST_F(FaultsWhileRecording, FromNothing) {
  recordOrdinarily();
  recordFromNothing();
  sweep(together({opening(), transferring(), looking()}), 380);
}

TEST_F(FaultsWhileRecording, Snapshots) {
  recordOrdinarily();
  recordSnapshots();
  sweep(together({opening(), transferring(), inSmallPieces(), tidyingUp(), looking()}), 130);
}

TEST_F(FaultsWhileRecording, OpeningAndClosingInDebugMode) {
  recordDebugging();
  sweep(opening(), 280);
}

TEST_F(FaultsWhileRecording, ReadingAndWritingInDebugMode) {
  recordDebugging();
  sweep(transferring(), 110);
}

TEST_F(FaultsWhileRecording, TidyingUpInDebugMode) {
  recordDebugging();
  sweep(tidyingUp(), 120);
}

TEST_F(FaultsWhileRecording, DirectoriesAndNamesInDebugMode) {
  recordDebugging();
  sweep(looking(), 280);
}

}  // namespace
}  // namespace fault_test
