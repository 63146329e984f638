// Replaying and scanning while calls of the file system fail: the client gets its live answer or
// the recorded one, a failure is told of, and nothing of the recording changes.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "FaultSweep.h"
#include "FaultedSession.h"
#include "ZetNorvEmul.h"

namespace fault_test {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr int kSnapshotBytes = 60;
constexpr int kLiveStatus = 99;
constexpr const char* kLiveAnswer = "the server's own";

// A snapshot is taken behind every navigation.
const std::vector<Exchange> kSession = {{kOpen, 1, 1},     {kSave, 1, 2}, {kNavigate, 1, 3},
                                        {kOpen, 2, 4},     {kSave, 2, 5}, {kCommit, 1, 6},
                                        {kNavigate, 2, 7}, {kOpen, 3, 8}};

const Texts kCheckCauses = {"Problem in ZetNorvEmul::preWensnd with KelFOpen!",
                            "runNorvLike: buildData != S_OK", "runNorvLike: load != S_OK"};
const Texts kLogCauses = {"Problem with KelFOpen writeLogFile!",
                          "Problem with KelFPuts writeLogFile!"};
constexpr const char* kNoAnswerIndex = "Problem in ZetNorvEmul::postWensnd with KelFOpen!";
constexpr const char* kNoAnswerFile = "ZetNorvEmul: error load file2";
constexpr const char* kNoSnapshotIndex = "Problem in ZetNorvEmul::preWensnd with KelFOpen!";

int sectionsIn(const std::string& log) {
  int sections = 0;
  for (std::size_t at = log.find("\n###########   Message "); at != std::string::npos;
       at = log.find("\n###########   Message ", at + 1)) {
    ++sections;
  }
  return sections;
}

class FaultsWhileReplaying : public EmulatorFixture {
 protected:
  FaultsWhileReplaying() {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
    record();
    _recording = treeOf(scratch.file("in"));
  }

  void sweep(const char* runMode, const std::vector<FaultFamily>& families, int atLeast) {
    _mode = runMode;
    const Sweep sweep{[this] { prepare(); },
                      [this](FaultyFileSystem& files, const std::string& family) {
                        _family = family;
                        run(files);
                      },
                      [this](const std::string&) { checkTheWhole(); }};
    sweep.over(families, atLeast);
  }

 private:
  std::string folder() const { return scratch.file("work/"); }
  std::string errorLog() const { return scratch.file("error.log"); }

  void record() {
    mode("SAVE");
    for (const Exchange& exchange : kSession) {
      writeBytes(folder() + documentName(exchange), documentBytes(exchange));
      EXPECT_EQ(send(requestOf(exchange, folder(), "recorded")), S_OK);
      const std::string answer = answerOf(exchange, folder(), identifier(exchange, "recorded"));
      EXPECT_EQ(receive(answer, exchange.status).result, S_OK);
      if (exchange.op != kNavigate) continue;
      int size = kSnapshotBytes;
      int ignored = 0;
      const std::string bytes = snapshotBytes(exchange.number, size);
      EXPECT_EQ(ZetNorvEmul::SaveKavFirst(size, ignored, bytes.data()), S_OK);
    }
  }

  void prepare() {
    resetEmulator();
    mode(_mode.c_str());
    _identifier.clear();
    fs::remove(errorLog());
    // Written anew, the indexes are read anew.
    for (const char* name : {"Scenario.txt", "Scenario2.txt"}) {
      writeBytes(scenario(name), _recording.at(scenario(name)));
    }
  }

  void run(FaultyFileSystem& files) {
    for (const Exchange& exchange : kSession) {
      SCOPED_TRACE(std::to_string(exchange.op) + " number " + std::to_string(exchange.number));
      sendOne(files, exchange);
      if (_mode == "SCAN") {
        scanOne(files);
      } else {
        receiveOne(files, exchange);
      }
      if (exchange.op == kNavigate) takeSnapshot(files, exchange);
    }
  }

  bool tearsLogs() const { return _family == "full_disk_truncate" || _family == "full_disk_size"; }
  // Nothing that is looked up or written to the log decides what the client gets.
  bool costsSteps() const {
    return _family != "none" && !_family.starts_with("open_append") &&
           !_family.starts_with("write") && !_family.starts_with("full_disk") &&
           !_family.starts_with("close");
  }

  // A request's check fails for a fault that is told of, and leaves no section then.
  void sendOne(FaultyFileSystem& files, const Exchange& exchange) {
    trace.clear();
    const int faults = files.faults();
    const std::string before = contentOf(errorLog());
    const std::string message = requestOf(exchange, folder(), "live");
    std::vector<char> buffer(message.begin(), message.end());
    const long result = ZetNorvEmul::preWensnd(0, buffer.data(), static_cast<int>(buffer.size()));
    const bool faulted = files.faults() > faults;
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), message);
    EXPECT_TRUE(result == S_OK || (result == E_FAIL && faulted && costsSteps())) << result;
    if (result == S_OK) {
      EXPECT_FALSE(announced(trace, kCheckCauses));
    } else {
      EXPECT_TRUE(announced(trace, kCheckCauses));
    }
    // The identifiers are those of the last request that was checked.
    if (result == S_OK && carriesIdentifiers(exchange)) {
      _identifier = identifier(exchange, "live");
    }
    checkLog(before, result == S_OK && exchange.op != kCommit, faulted);
  }

  // The log grows by one whole section, or not at all for a fault that is told of.
  void checkLog(const std::string& before, bool checked, bool faulted) {
    const std::string after = contentOf(errorLog());
    ASSERT_TRUE(after.starts_with(before)) << after;
    const std::string added = after.substr(before.size());
    EXPECT_EQ(added.find("Problem"), std::string::npos) << added;
    const bool told = announced(trace, kLogCauses);
    EXPECT_TRUE(!told || faulted);
    if (tearsLogs() && told) return;
    if (checked && !told) {
      EXPECT_EQ(sectionsIn(added), 1);
      EXPECT_TRUE(added.ends_with("\n## Fin buf\n")) << added;
    } else if (!_family.starts_with("close")) {
      // What a failing close means, nobody knows.
      EXPECT_EQ(added, "");
    }
  }

  void scanOne(FaultyFileSystem& files) {
    const int faults = files.faults();
    const Received received = receive(kLiveAnswer, kLiveStatus);
    EXPECT_EQ(files.faults(), faults);
    EXPECT_EQ(received.result, S_OK);
    expectLive(received);
  }

  static void expectLive(const Received& received) {
    EXPECT_FALSE(received.replaced);
    EXPECT_EQ(received.bytes, kLiveAnswer);
    EXPECT_EQ(received.status, kLiveStatus);
  }

  // All of the recorded answer, or all of the live one.
  void receiveOne(FaultyFileSystem& files, const Exchange& exchange) {
    trace.clear();
    const int faults = files.faults();
    const Received received = receive(kLiveAnswer, kLiveStatus);
    const bool faulted = files.faults() > faults;
    if (received.replaced) {
      EXPECT_EQ(received.result, S_OK);
      EXPECT_EQ(received.bytes, expectedAnswer(exchange));
      EXPECT_EQ(received.status, exchange.status);
      return;
    }
    EXPECT_TRUE(faulted && costsSteps());
    expectLive(received);
    // A missing index is no failure, a missing answer is.
    EXPECT_TRUE(trace.has(received.result == S_OK ? kNoAnswerIndex : kNoAnswerFile));
  }

  // A request whose check failed hands no identifiers over: its answer has those of the request
  // before, or is as it was recorded when there was none.
  std::string expectedAnswer(const Exchange& exchange) const {
    const std::string recorded = identifier(exchange, "recorded");
    return answerOf(exchange, folder(), _identifier.empty() ? recorded : _identifier);
  }

  // All of the snapshot; where reading it fails, what was read and zeros, which is no failure.
  void takeSnapshot(FaultyFileSystem& files, const Exchange& exchange) {
    trace.clear();
    const int faults = files.faults();
    int size = -7;
    int allocated = -8;
    char* data = nullptr;
    const long result = ZetNorvEmul::ReplayKavFirst(size, allocated, data);
    const std::unique_ptr<char[]> owner(data);
    const bool faulted = files.faults() > faults;
    if (result != S_OK) {
      EXPECT_EQ(result, E_FAIL);
      EXPECT_TRUE(faulted && costsSteps());
      EXPECT_TRUE(trace.has(kNoSnapshotIndex));
      EXPECT_EQ(data, nullptr);
      EXPECT_EQ(size, -7);
      EXPECT_EQ(allocated, -8);
      return;
    }
    ASSERT_NE(data, nullptr);
    ASSERT_EQ(size, kSnapshotBytes);
    ASSERT_EQ(allocated, kSnapshotBytes);
    std::string expected = snapshotBytes(exchange.number, size).substr(0, kSnapshotBytes);
    const std::string got(data, kSnapshotBytes);
    if (faulted && costsSteps()) {
      const std::size_t read = got.find_last_not_of('\0') + 1;
      expected.replace(read, std::string::npos, kSnapshotBytes - read, '\0');
    }
    EXPECT_EQ(got, expected);
  }

  // The recording is as it was, and replays.
  void checkTheWhole() {
    EXPECT_TRUE(treeOf(scratch.file("in")) == _recording);
    prepare();
    mode("REPLAY");
    _family = "none";
    _mode.swap(_replay);
    FaultyFileSystem files;
    run(files);
    EXPECT_EQ(files.openFiles(), 0);
    _mode.swap(_replay);
  }

  ConsoleCapture _console;  // a script that cannot be read is told of there
  std::string _mode;
  std::string _replay = "REPLAY";
  std::string _family = "none";
  std::string _identifier;  // of the LogObject of the last request that was checked; empty: none
  Tree _recording;
};

std::vector<FaultFamily> opening() {
  return together({onceAndAlways("open", Call::kOpen), onceAndAlways("open_read", Call::kOpenRead),
                   onceAndAlways("open_append", Call::kOpenAppend),
                   onceAndAlways("close", Call::kClose)});
}

std::vector<FaultFamily> transferring() {
  return together({onceAndAlways("read", Call::kRead),
                   onceAndAlways("size", Call::kSize),
                   onceAndAlways("stamp", Call::kStamp),
                   onceAndAlways("write", Call::kWrite),
                   {fullDisk(), fullDiskAnd("full_disk_truncate", Call::kTruncate)}});
}

std::vector<FaultFamily> readingInPieces() { return inPieces("read_in_pieces", Call::kRead); }

std::vector<FaultFamily> writingInPieces() { return inPieces("write_in_pieces", Call::kWrite); }

TEST_F(FaultsWhileReplaying, OpeningAndClosing) { sweep("REPLAY", opening(), 220); }

TEST_F(FaultsWhileReplaying, ReadingAndWriting) { sweep("REPLAY", transferring(), 170); }

TEST_F(FaultsWhileReplaying, ReadingAFewBytesAtATime) { sweep("REPLAY", readingInPieces(), 1200); }

TEST_F(FaultsWhileReplaying, WritingAFewBytesAtATime) { sweep("REPLAY", writingInPieces(), 120); }

TEST_F(FaultsWhileReplaying, OpeningAndClosingInAScan) { sweep("SCAN", opening(), 150); }

TEST_F(FaultsWhileReplaying, ReadingAndWritingInAScan) { sweep("SCAN", transferring(), 110); }

}  // namespace
}  // namespace fault_test
