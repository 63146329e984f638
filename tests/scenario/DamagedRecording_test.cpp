// Recordings that were cut, emptied, moved or written over: what the hooks make of every one of
// them is predicted from the files alone, by the rules of the formats.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "ZetNorvEmul.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// What came of one step, or has to come of it.
struct Outcome {
  long sent = S_OK;
  std::string sentTrace;  // the line that tells which way the check went
  long received = S_OK;
  std::string receivedTrace;  // the same of the answer
  std::string bytes;
  int status = 0;
  bool replaced = false;

  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << "sent " << outcome.sent << " [" << outcome.sentTrace << "] received "
             << outcome.received << " [" << outcome.receivedTrace << "] status " << outcome.status
             << " replaced " << outcome.replaced << " bytes [" << outcome.bytes << ']';
}

constexpr const char* kNoRequestIndex = "Problem in ZetNorvEmul::preWensnd with KelFOpen!";
constexpr const char* kOtherOperation = "Problem in ZetNorvEmul::preWensnd with (message != _nOp)";
constexpr const char* kNoRequestFile = "runNorvLike: load != S_OK";
constexpr const char* kEmptyRequestFile = "ZetNorvMod: runNorvLike: typeMsg errone";
constexpr const char* kBrokenRequestFile = "ZetNorvMod: Builder::builderMessage msgRef PROBLEM";
constexpr const char* kChecked = " end of if microMod.getMsg... ";
constexpr const char* kNoAnswerIndex = "Problem in ZetNorvEmul::postWensnd with KelFOpen!";
constexpr const char* kNoAnswerFile = "ZetNorvEmul: error load file2";
constexpr const char* kBrokenAnswer = "Problem with XMLParse";
constexpr const char* kServed = "ZetNorvEmul: Copie des buffers";
constexpr const char* kServedAnew = "ZetNorvEmul: Copie des buffers modifies";
constexpr const char* kBadSnapshot = "Problem in ZetNorvEmul::ReplayKavFirst with size";

constexpr const char* kLiveAnswer = "live";
constexpr int kLiveStatus = 77;

// The lines as they are read: 1023 bytes at most at a time, up to a NUL.
Lines linesOf(const std::string& text) {
  Lines lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t feed = text.find('\n', at);
    const std::size_t end = feed == std::string::npos ? text.size() : feed + 1;
    const std::size_t length = std::min<std::size_t>(end - at, 1023);
    std::string line = text.substr(at, length);
    line = line.substr(0, line.find_first_of(std::string("\n\0", 2)));
    lines.push_back(line);
    at += length;
  }
  return lines;
}

// The groups in '<' and '>'; the last may lack its '>'.
std::vector<std::string> groupsOf(const std::string& line) {
  std::vector<std::string> groups;
  for (std::size_t at = line.find('<'); at != std::string::npos; at = line.find('<', at)) {
    const std::size_t end = std::min(line.find('>', at), line.size());
    groups.push_back(line.substr(at + 1, end - at - 1));
    at = end;
  }
  return groups;
}

std::string groupOf(const std::string& line, std::size_t number) {
  const auto groups = groupsOf(line);
  return number < groups.size() ? groups[number] : std::string();
}

int numberOf(const std::string& text) { return text.empty() ? -1 : std::atoi(text.c_str()); }

std::string requestXml(const std::string& name) {
  return "<Q><LogObject Identifier=\"L" + name + "\"/><Reference Identifier=\"R" + name +
         "\"/></Q>";
}

std::string answerXml(const std::string& logObject, const std::string& reference) {
  return "<A><Reference Identifier=\"" + reference + "\"/><LogObject Identifier=\"" + logObject +
         "\"/></A>";
}

// One step of the session, the same in the recording and in every replay but for the identifiers.
struct Step {
  int op;               // 999: a snapshot
  std::string payload;  // of a request without XML; of a snapshot, its block
  std::string answer;
  int status;
};

const std::vector<Step>& session() {
  static const std::vector<Step> steps = {
      {12, "ABCD", "OPENED", 3},  {319, "", xmlAnswer(answerXml("s1", "s2")), 0},
      {999, "0123456789", "", 0}, {321, "", xmlAnswer(answerXml("s3", "s4")), 21},
      {12, "EFGH", "again", -5},
  };
  return steps;
}

bool hasXml(int op) { return op == 319 || op == 321; }

std::string requestOf(const Step& step, const std::string& run) {
  return request(step.op, hasXml(step.op) ? requestXml(run) : step.payload);
}

// Tells from the files of a recording what a replay has to bring.
class Prediction {
 public:
  Prediction(std::string scenario, std::string reference)
      : _scenario(std::move(scenario)), _reference(std::move(reference)) {}

  std::vector<Outcome> outcomes() {
    std::vector<Outcome> all;
    for (const Step& step : session()) {
      Outcome outcome;
      ++_sent;
      if (step.op == 999) {
        snapshot(outcome);
      } else {
        check(step, outcome);
        ++_received;
        answer(step, outcome);
      }
      all.push_back(outcome);
    }
    return all;
  }

 private:
  static std::optional<std::string> content(const std::string& path) {
    std::error_code noSuchFile;
    if (!fs::is_regular_file(path, noSuchFile)) return std::nullopt;
    return readBytes(path);
  }

  void check(const Step& step, Outcome& outcome) {
    const auto index = content(_scenario + "Scenario.txt");
    outcome.sent = E_FAIL;
    outcome.sentTrace = kNoRequestIndex;
    if (!index) return;
    const Lines lines = linesOf(*index);
    std::string line;
    for (int number = 1; number <= static_cast<int>(lines.size()); ++number) {
      line = lines[static_cast<std::size_t>(number) - 1];
      const std::string op = groupOf(line, 0);
      if (number == _sent && std::string("26").compare(0, op.size(), op) == 0) ++_sent;
      if (number >= _sent) break;
    }
    compare(step, line, outcome);
  }

  void compare(const Step& step, const std::string& line, Outcome& outcome) {
    const std::string op = groupOf(line, 0);
    outcome.sent = S_OK;
    outcome.sentTrace = kOtherOperation;
    if (op.empty() || numberOf(op) != step.op) return;
    const auto recorded = content(_reference + groupOf(line, 1));
    outcome.sent = E_FAIL;
    outcome.sentTrace = kNoRequestFile;
    if (!recorded) return;
    outcome.sentTrace = kEmptyRequestFile;
    if (recorded->empty()) return;
    outcome.sentTrace = kBrokenRequestFile;
    if (hasXml(step.op) && !isWholeXml(*recorded, 4)) return;
    outcome.sent = S_OK;
    outcome.sentTrace = kChecked;
    if (hasXml(step.op)) _identifiersKnown = true;
  }

  void answer(const Step& step, Outcome& outcome) {
    outcome.bytes = kLiveAnswer;
    outcome.status = kLiveStatus;
    outcome.receivedTrace = kNoAnswerIndex;
    const auto index = content(_scenario + "Scenario2.txt");
    if (!index) return;
    const Lines lines = linesOf(*index);
    std::string line;
    for (int number = 1; number <= _received && number <= static_cast<int>(lines.size());
         ++number) {
      line = lines[static_cast<std::size_t>(number) - 1];
      if (number == _received && numberOf(groupOf(line, 0)) != step.op) ++_received;
    }
    serve(step, line, outcome);
  }

  void serve(const Step& step, const std::string& line, Outcome& outcome) const {
    const auto recorded = content(_reference + groupOf(line, 1));
    outcome.received = E_FAIL;
    outcome.receivedTrace = kNoAnswerFile;
    if (!recorded) return;
    outcome.received = S_OK;
    outcome.replaced = true;
    outcome.bytes = *recorded;
    if (groupsOf(line).size() > 2) outcome.status = numberOf(groupOf(line, 2));
    outcome.receivedTrace = kServed;
    if (!hasXml(step.op) || recorded->size() < 9 || !_identifiersKnown) return;
    outcome.receivedTrace = kBrokenAnswer;
    if (!isWholeXml(*recorded, 8)) return;
    outcome.receivedTrace = kServedAnew;
    outcome.bytes = xmlAnswer(answerXml("Lnew", "Rnew"));
  }

  // A snapshot is told by its numbers: `sent` and the trace as for a request, the size in `status`.
  void snapshot(Outcome& outcome) const {
    outcome.sent = E_FAIL;
    outcome.sentTrace = kNoRequestIndex;
    outcome.status = -99;
    const auto index = content(_scenario + "Scenario.txt");
    if (!index) return;
    const Lines lines = linesOf(*index);
    const auto number = std::min(lines.size(), static_cast<std::size_t>(_sent));
    const std::string line = number == 0 ? "" : lines[number - 1];
    const int size = numberOf(groupOf(line, 2));
    const int allocated = numberOf(groupOf(line, 3));
    outcome.status = size;
    outcome.sentTrace = kBadSnapshot;
    if (size < 0 || allocated < size) return;
    outcome.sent = S_OK;
    outcome.sentTrace.clear();
    const std::string path = groupOf(line, 1);
    const auto block = content(_reference + path.substr(path.rfind('\\') + 1));
    outcome.bytes = block.value_or("").substr(0, static_cast<std::size_t>(size));
    outcome.bytes.resize(static_cast<std::size_t>(allocated));
    outcome.replaced = true;
  }

  // The texts of this recording start and end with their root.
  static bool isWholeXml(const std::string& bytes, std::size_t header) {
    if (bytes.size() < header + 7) return false;
    const std::string start = bytes.substr(header, 3);
    const std::string end = bytes.substr(bytes.size() - 4);
    return (start == "<Q>" && end == "</Q>") || (start == "<A>" && end == "</A>");
  }

  std::string _scenario;
  std::string _reference;
  int _sent = 0;
  int _received = 0;
  bool _identifiersKnown = false;
};

class DamagedRecordingTest : public EmulatorFixture {
 protected:
  DamagedRecordingTest() {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
    environment.set("BIX_ZET_TMP", "\\tmp");
    mode("SAVE");
    for (const Step& step : session()) record(step);
    for (const char* directory : {"Scenario", "Reference"}) {
      for (const std::string& name : namesIn(scratch.file(folder(directory)))) {
        const std::string path = scratch.file(folder(directory) + name);
        if (fs::is_regular_file(path)) _recorded[path] = readBytes(path);
      }
    }
    mode("REPLAY");
  }

  // The recording's files by their paths.
  const std::map<std::string, std::string>& recorded() const { return _recorded; }
  std::string requestIndex() const { return scenario("Scenario.txt"); }
  std::string answerIndex() const { return scenario("Scenario2.txt"); }

  // Replays the recording as it lies there and compares what happens with the prediction.
  void expectPredicted(const std::string& damage) {
    Prediction prediction(scenario(), reference());
    const auto expected = prediction.outcomes();
    resetEmulator();
    fs::remove(scratch.file("error.log"));
    for (std::size_t i = 0; i < session().size(); ++i) {
      trace.clear();
      EXPECT_EQ(replay(session()[i]), expected[i]) << damage << ", step " << i + 1;
    }
  }

  // Puts everything back as it was recorded.
  void repair() {
    for (const auto& [path, bytes] : _recorded) {
      if (fs::is_directory(path)) fs::remove_all(path);
      writeBytes(path, bytes);
    }
  }

 private:
  static constexpr const char* kScript = R"(<Scripts>
    <MessageChar value="12" path="">
      <Composant name="Operation" size="4" compare="1" type="I" repeat=""/>
      <Composant name="Text" size="4" compare="1" type="S" repeat=""/>
    </MessageChar>
    <MessageXML value="319" path="">
      <Composant name="Q" father="" attributs=""/>
      <Composant name="LogObject" father="Q" attributs="Identifier"/>
      <Composant name="Reference" father="Q" attributs="Identifier"/>
    </MessageXML>
    <MessageXML value="321" path="">
      <Composant name="Q" father="" attributs=""/>
      <Composant name="LogObject" father="Q" attributs="Identifier"/>
      <Composant name="Reference" father="Q" attributs="Identifier"/>
    </MessageXML>
  </Scripts>)";

  static std::string folder(const std::string& directory) {
    return "in/case1.rec/" + directory + "/";
  }

  static void record(const Step& step) {
    if (step.op != 999) {
      ASSERT_EQ(send(requestOf(step, "old")), S_OK);
      ASSERT_EQ(receive(step.answer, step.status).result, S_OK);
      return;
    }
    int size = static_cast<int>(step.payload.size());
    int notRead = 0;
    ASSERT_EQ(ZetNorvEmul::SaveKavFirst(size, notRead, (step.payload + "tail!").c_str()), S_OK);
  }

  Outcome replay(const Step& step) {
    if (step.op == 999) return replaySnapshot();
    Outcome outcome;
    outcome.sent = send(requestOf(step, "new"));
    outcome.sentTrace = tracedOf({kNoRequestIndex, kOtherOperation, kNoRequestFile,
                                  kEmptyRequestFile, kBrokenRequestFile, kChecked});
    const bool complained = trace.has("Problem in ZetNorvEmul::preWensnd with microMod.run");
    const bool failedInRun = outcome.sent != S_OK && outcome.sentTrace != kNoRequestIndex;
    EXPECT_EQ(complained, failedInRun);
    trace.clear();
    const Received received = receive(kLiveAnswer, kLiveStatus);
    outcome.received = received.result;
    outcome.bytes = received.bytes;
    outcome.status = received.status;
    outcome.replaced = received.replaced;
    outcome.receivedTrace = tracedOf({kNoAnswerIndex, kNoAnswerFile, kBrokenAnswer, kServed});
    const std::string anew = std::string(kServedAnew) + std::to_string(received.bytes.size() - 8);
    if (trace.has(anew)) outcome.receivedTrace = kServedAnew;
    return outcome;
  }

  Outcome replaySnapshot() {
    Outcome outcome;
    int size = -99;
    int allocated = -99;
    char* data = nullptr;
    outcome.sent = ZetNorvEmul::ReplayKavFirst(size, allocated, data);
    outcome.sentTrace = tracedOf({kNoRequestIndex, kBadSnapshot});
    outcome.status = size;
    outcome.replaced = data != nullptr;
    if (data != nullptr) outcome.bytes.assign(data, static_cast<std::size_t>(allocated));
    delete[] data;
    return outcome;
  }

  // The first of these lines that was traced; empty when none was.
  std::string tracedOf(const Lines& lines) const {
    for (const std::string& line : lines) {
      if (trace.has(line)) return line;
    }
    return "";
  }

  std::map<std::string, std::string> _recorded;
};

TEST_F(DamagedRecordingTest, TheWholeRecordingIsReplayed) {
  ASSERT_EQ(recorded().size(), 11u);  // two indexes, four requests and answers, a snapshot
  expectPredicted("no damage");
  Prediction prediction(scenario(), reference());
  for (const Outcome& outcome : prediction.outcomes()) {
    EXPECT_EQ(outcome.sent, S_OK);
    EXPECT_EQ(outcome.received, S_OK);
    EXPECT_TRUE(outcome.replaced);
  }
}

TEST_F(DamagedRecordingTest, EveryFileCutAtEveryByte) {
  for (const auto& [path, bytes] : recorded()) {
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      writeBytes(path, bytes.substr(0, length));
      expectPredicted(path + " cut to " + std::to_string(length));
      if (HasFailure()) return;
    }
    repair();
  }
}

TEST_F(DamagedRecordingTest, ARequestOfFieldsThatWasCutIsAFinding) {
  for (std::size_t length = 1; length <= 8; ++length) {
    writeBytes(reference("save12_0.txt"), requestOf(session()[0], "old").substr(0, length));
    fs::remove(scratch.file("error.log"));
    resetEmulator();
    EXPECT_EQ(send(requestOf(session()[0], "new")), S_OK);
    const std::string log = readBytes(scratch.file("error.log"));
    const bool found =
        log.find("\n12 - 0 Problem Problem with reference file ...\n") != std::string::npos;
    EXPECT_EQ(found, length < 8) << length << log;
  }
}

TEST_F(DamagedRecordingTest, EveryFileMissing) {
  for (const auto& [path, bytes] : recorded()) {
    fs::remove(path);
    expectPredicted(path + " removed");
    repair();
  }
}

TEST_F(DamagedRecordingTest, EveryFileReplacedByADirectory) {
  for (const auto& [path, bytes] : recorded()) {
    fs::remove(path);
    fs::create_directory(path);
    expectPredicted(path + " a directory");
    repair();
  }
}

TEST_F(DamagedRecordingTest, BothDirectoriesMissing) {
  for (const char* name : {"Reference", "Scenario"}) {
    fs::remove_all(scratch.file(std::string("in/case1.rec/") + name));
    expectPredicted(std::string(name) + " removed");
    repair();
  }
}

TEST_F(DamagedRecordingTest, EveryLineOfAnIndexIsSomethingElse) {
  const Lines others = {
      "",
      "no brackets at all",
      "<",
      ">",
      "<>",
      "<><>",
      "<><><>",
      "><",
      "12 save12_0.txt 0",
      "<12",
      "<12>",
      "<12><",
      "<12><>",
      "<12><save12_0.txt",
      "<12><rep12_0.txt><",
      "<12><rep12_0.txt><>",
      "<12><rep12_0.txt><9",
      "<12><<rep12_0.txt>><9>",
      "<<12>><save12_0.txt><9>",
      "<12><rep12_0.txt><9><8><7><6><5><4><3><2><1>",
      "x<12>y<rep12_0.txt>z<9>w",
      "<12><..><1>",
      "<12><../Scenario/Scenario.txt><1>",
      "<319><nothing like that><1>",
      "<321><rep12_0.txt><1>",
      "<26><save12_0.txt><1>",
      "<2><save12_0.txt><1>",
      "<999999><save12_0.txt><1>",
      "<-12><save12_0.txt><1>",
      "<2147483647><save12_0.txt><2147483647>",
      "<-2147483648><save12_0.txt><-2147483648>",
      "<319><save319_0.txt><x>",
      "<999><KavFirst2.bin><-1><-1>",
      "<999><KavFirst2.bin><11><10>",
      "<999><KavFirst2.bin><0><0>",
      "ERROR: NO FILE",
      std::string("<12>\0<rep12_0.txt><1>", 21),
      std::string("\xFF\xFE<12><rep12_0.txt><1>"),
      std::string(1023, '<'),
      std::string(1022, 'x') + "<12><rep12_0.txt><1>",
      "<" + std::string(65536, '1') + "><rep12_0.txt><1>",
      "<12><" + std::string(65536, 'n') + "><1>",
      std::string(65536, ' ') + "<12><rep12_0.txt><1>",
      std::string(65536, '>'),
  };
  for (const std::string& index : {requestIndex(), answerIndex()}) {
    const Lines lines = linesOf(recorded().at(index));
    for (std::size_t damaged = 0; damaged < lines.size(); ++damaged) {
      for (const std::string& other : others) {
        std::string text;
        for (std::size_t i = 0; i < lines.size(); ++i) {
          text += (i == damaged ? other : lines[i]) + '\n';
        }
        writeBytes(index, text);
        expectPredicted(index + ", line " + std::to_string(damaged + 1) + ": " +
                        other.substr(0, 60));
        if (HasFailure()) return;
      }
    }
    repair();
  }
}

TEST_F(DamagedRecordingTest, AnIndexOfOneLongLineWithoutAnEnd) {
  for (const std::string& index : {requestIndex(), answerIndex()}) {
    for (const std::size_t length : {1022u, 1023u, 1024u, 65536u}) {
      writeBytes(index, std::string(length, 'x'));
      expectPredicted(index + " of " + std::to_string(length) + " bytes");
    }
    repair();
  }
}

TEST_F(DamagedRecordingTest, AnIndexWithLinesInAnotherOrderTwiceOrWithout) {
  for (const std::string& index : {requestIndex(), answerIndex()}) {
    const Lines lines = linesOf(recorded().at(index));
    for (std::size_t i = 0; i < lines.size(); ++i) {
      for (const int times : {0, 2, 3}) {
        std::string text;
        for (std::size_t j = 0; j < lines.size(); ++j) {
          for (int k = j == i ? times : 1; k > 0; --k) text += lines[j] + '\n';
        }
        writeBytes(index, text);
        expectPredicted(index + ", line " + std::to_string(i + 1) + " " + std::to_string(times) +
                        " times");
      }
    }
    std::string backwards;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) backwards += *line + '\n';
    writeBytes(index, backwards);
    expectPredicted(index + " backwards");
    repair();
  }
}

}  // namespace
