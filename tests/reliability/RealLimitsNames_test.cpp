// Names and paths that are longer than the system allows, or almost.
#include "LimitedSession.h"
#include "ZetNorvDb.h"

namespace {

using namespace limits_test;

constexpr std::size_t kName = 255;   // bytes of a name
constexpr std::size_t kPath = 4095;  // bytes of a path

const Texts kNoIndexes = {"Problem in ZetNorvEmul::save with file.open",
                          "Problem with KelFOpen (cf. SaveAnswer)!"};

class RealLimitsNamesTest : public EmulatorFixture {
 protected:
  RealLimitsNamesTest() {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
    environment.set("BIX_ZET_TMP", "\\tmp");
    mode("SAVE");
  }

  // Whether both sides of an exchange were recorded, each with its result and its cause.
  bool isRecorded(const std::string& message) {
    trace.clear();
    const long sent = send(message);
    const Received received = receive("answer", 3);
    EXPECT_EQ(received.bytes, "answer");
    EXPECT_EQ(received.status, 3);
    EXPECT_EQ(sent != S_OK, announced(trace, kRequestCauses));
    EXPECT_EQ(sent != S_OK, trace.has(kRequestFailed));
    EXPECT_EQ(received.result != S_OK, announced(trace, kAnswerCauses));
    return sent == S_OK && received.result == S_OK && !announced(trace, kFileCauses);
  }

  // Replays it: what was not recorded, is told of, and the answer stays.
  void expectReplay(const std::string& message, bool recorded) {
    resetEmulator();
    mode("REPLAY");
    trace.clear();
    EXPECT_EQ(send(message), recorded ? S_OK : E_FAIL);
    EXPECT_EQ(trace.has("Problem in ZetNorvEmul::preWensnd with KelFOpen!"), !recorded);
    const Received received = receive("live", 9);
    EXPECT_EQ(received.result, S_OK);
    EXPECT_EQ(received.bytes, recorded ? "answer" : "live");
    EXPECT_EQ(received.status, recorded ? 3 : 9);
    EXPECT_EQ(trace.has(kNoAnswerIndex), !recorded);
    resetEmulator();
    mode("SAVE");
  }

  // A path below the drive's root that has `length` bytes altogether, made of names that the system
  // allows.
  std::string pathOf(std::size_t length) const {
    const std::size_t root = scratch.path().string().size();
    std::string path;
    while (root + path.size() < length) {
      const std::size_t left = length - root - path.size();
      // A name has one byte at least, so two bytes are left for the last with its separator.
      const std::size_t most = left > 202 ? 200 : (left > 200 ? 100 : left - 1);
      path += '\\' + std::string(most, 'd');
    }
    return path;
  }

  std::string below(const std::string& path) const {
    std::string native = scratch.path().string() + path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
  }
};

TEST_F(RealLimitsNamesTest, AScenariosNameIsAsLongAsItsDirectorysMayBe) {
  int points = 0;
  for (const std::size_t length :
       {240u, 249u, 250u, 251u, 252u, 253u, 255u, 256u, 300u, 1000u, 4096u, 5000u, 100000u}) {
    SCOPED_TRACE(length);
    const std::string name(length, 'n');
    environment.set("ZET_LOG_NAME", name);
    const bool allowed = length + 4 <= kName;  // with ".rec"
    EXPECT_EQ(isRecorded(request(12, "fields")), allowed);
    EXPECT_EQ(announced(trace, kNoIndexes), !allowed);
    expectReplay(request(12, "fields"), allowed);
    if (allowed) {
      EXPECT_EQ(readBytes(scratch.file("in/" + name + ".rec/Scenario/Scenario.txt")),
                "<12><save12_0.txt>\n");
    }
    ++points;
  }
  RecordProperty("points", points);
  EXPECT_EQ(points, 13);
}

// Near the longest path, some of the files of a recording can be opened and others not.
TEST_F(RealLimitsNamesTest, ARecordingIsMadeOfWholeThingsUpToTheLongestPath) {
  const std::string document(1000, 'g');
  writeBytes(scratch.file("work/part1.KelPart"), document);
  const std::string message = request(321, "<a><Document FilePath=\"\\work/part1.KelPart\"/></a>");
  int whole = 0;
  int part = 0;
  int none = 0;
  for (std::size_t length = kPath - 80; length <= kPath + 8 && !HasFailure(); ++length) {
    SCOPED_TRACE(length);
    resetEmulator();
    const std::string root = pathOf(length);
    environment.set("BIX_ZET_IN", root);
    const bool recorded = isRecorded(message);
    const Tree tree = treeOf(below(root + "\\case1.rec"));
    for (const auto& [path, bytes] : tree) {
      const std::string name = fs::path(path).filename().string();
      const std::string expected = name == "Scenario.txt"    ? "<321><save321_0.txt>\n"
                                   : name == "Scenario2.txt" ? "<321><rep321_0.txt><3>\n"
                                   : name == "part1.KelPart" ? document
                                   : name == "rep321_0.txt"  ? "answer"
                                                             : message;
      // An index is there before its first line.
      if (!bytes.empty() || !name.starts_with("Scenario")) {
        EXPECT_EQ(bytes, expected) << name;
      }
      EXPECT_NE(name, ".staging");
    }
    const std::string files = below(root + "\\case1.rec/Reference/");
    EXPECT_EQ(recorded,
              tree.contains(files + "save321_0.txt") && tree.contains(files + "rep321_0.txt"));
    (recorded ? whole : tree.empty() ? none : part) += 1;
  }
  RecordProperty("points", whole + part + none);
  EXPECT_GT(whole, 40);
  EXPECT_GT(part, 0);
  EXPECT_GT(none, 20);
}

TEST_F(RealLimitsNamesTest, ADocumentIsStagedUpToTheLongestName) {
  int points = 0;
  for (const std::size_t length : {200u, 250u, 254u, 255u, 256u, 300u, 4000u, 4096u, 100000u}) {
    SCOPED_TRACE(length);
    const std::string name(length, 'p');
    if (length <= kName) writeBytes(scratch.file("work/" + name), "geometry");
    EXPECT_TRUE(isRecorded(request(321, "<a><Document FilePath=\"\\work/" + name + "\"/></a>")));
    EXPECT_EQ(trace.has("Copie des donnees: OK"), length <= kName);
    EXPECT_EQ(trace.has("Copie des donnees: KO"), length > kName);
    const Texts staged = namesIn(reference("Kel_Files_Temp"));
    EXPECT_EQ(std::find(staged.begin(), staged.end(), name) != staged.end(), length <= kName);
    EXPECT_EQ(std::find(staged.begin(), staged.end(), ".staging"), staged.end());
    ++points;
  }
  RecordProperty("points", points);
  EXPECT_EQ(points, 9);
}

TEST_F(RealLimitsNamesTest, ADocumentIsStagedFromTheLongestPath) {
  int points = 0;
  for (const std::size_t length : {kPath - 1, kPath, kPath + 1, kPath + 2, 10 * kPath}) {
    SCOPED_TRACE(length);
    const std::string folder = pathOf(length - 2);  // and "/p"
    if (length <= kPath) writeBytes(below(folder) + "/p", "geometry");
    fs::remove(reference("Kel_Files_Temp/p"));
    std::string path = folder + "/p";
    EXPECT_TRUE(isRecorded(request(321, "<a><Document FilePath=\"" + path + "\"/></a>")));
    EXPECT_EQ(exists(reference("Kel_Files_Temp/p")), length <= kPath);
    EXPECT_EQ(trace.has("Copie des donnees: KO"), length > kPath);
    ++points;
  }
  EXPECT_EQ(points, 5);
}

TEST_F(RealLimitsNamesTest, ADatabaseElsewhereWithALongPathIsNone) {
  for (const std::size_t length : {kPath - 100, kPath - 13, kPath - 12, kPath, 20 * kPath}) {
    SCOPED_TRACE(length);
    resetEmulator();
    environment.set("BIX_ZET_TMP", pathOf(length));
    EXPECT_TRUE(isRecorded(request(321, "<a/>")));
    EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
  }
}

struct Root {
  const char* variable;
  Texts lines;
};

// In debug mode every tree has a root of its own, and only what lies below it suffers.
TEST_F(RealLimitsNamesTest, ARootThatIsTooLongCostsWhatLiesBelowIt) {
  const std::vector<Root> roots = {
      {"App_RefFile", {"Problem with KelFOpen w!", "Problem in ZetNorvEmul::save with mod.save"}},
      {"App_SceFile", kNoIndexes},
      {"App_ErrFile", {"Problem in ZetNorvToolBox::writeLog with KelFOpen"}},
  };
  for (const Root& root : roots) {
    for (const std::size_t length : {kPath - 5, kPath, kPath + 1, 20 * kPath}) {
      SCOPED_TRACE(root.variable + std::to_string(length));
      resetEmulator();
      debugMode("SAVE");
      environment.set(root.variable, pathOf(length) + "/");
      const bool recorded = isRecorded(request(12, "fields"));
      for (const std::string& line : root.lines) EXPECT_TRUE(trace.has(line)) << line;
      EXPECT_EQ(recorded, std::string(root.variable) == "App_ErrFile");
    }
  }
}

TEST_F(RealLimitsNamesTest, AScriptWithALongPathIsNone) {
  const ConsoleCapture console;
  EXPECT_TRUE(isRecorded(request(12, "fields")));
  for (const std::size_t length : {kPath - 12, kPath, 20 * kPath}) {
    SCOPED_TRACE(length);
    resetEmulator();
    debugMode("SAVE");
    EXPECT_TRUE(isRecorded(request(12, "fields")));
    resetEmulator();
    debugMode("REPLAY");
    fs::create_directory_symlink(".", debugReference("Reference"));
    environment.set("App_CfgFile", pathOf(length) + "/");
    trace.clear();
    EXPECT_EQ(send(request(12, "fields")), E_FAIL);
    EXPECT_TRUE(trace.has("runNorvLike: buildData != S_OK"));
    EXPECT_EQ(receive("live").bytes, "answer");
    fs::remove_all(scratch.file("ref"));
    fs::remove_all(scratch.file("sce"));
  }
}

}  // namespace
