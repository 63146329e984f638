// First-navigation snapshots.
#include <climits>
#include <filesystem>

#include "EmulatorFixture.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "ZetNorvEmul.h"

namespace {

class SnapshotTest : public EmulatorFixture {
 protected:
  // What the host holds after reading a snapshot back.
  struct Block {
    long result;
    int size;
    int allocated;
    std::string bytes;  // the whole buffer; empty when none was handed out
    bool handedOut;
  };

  // Saves `block`, whose last five bytes are the ones that only the file takes.
  static long save(const std::string& block) {
    int size = static_cast<int>(block.size()) - 5;
    int ignored = -99;
    return ZetNorvEmul::SaveKavFirst(size, ignored, block.data());
  }

  static Block replay() {
    Block block{0, -77, -77, "", false};
    char* data = nullptr;
    block.result = ZetNorvEmul::ReplayKavFirst(block.size, block.allocated, data);
    block.handedOut = data != nullptr;
    if (block.handedOut) block.bytes.assign(data, static_cast<std::size_t>(block.allocated));
    delete[] data;
    return block;
  }

  void index(const std::string& lines) { writeBytes(scenario("Scenario.txt"), lines); }
};

std::string blockOf(std::size_t size) {
  std::string block;
  for (std::size_t i = 0; i < size; ++i) block.push_back(static_cast<char>(i * 7));
  return block;
}

TEST_F(SnapshotTest, IsAFileOfFiveMoreBytesAndALineOfTheIndex) {
  mode("SAVE");
  for (int i = 0; i < 4; ++i) send(request(12, "x"));
  EXPECT_EQ(save(blockOf(1205)), S_OK);
  EXPECT_EQ(readBytes(reference("KavFirst4.bin")), blockOf(1205));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")),
            "<12><save12_0.txt>\n<12><save12_1.txt>\n<12><save12_2.txt>\n<12><save12_3.txt>\n"
            "<999><\\in\\case1.rec\\Reference\\KavFirst4.bin><1200><1200>\n");
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 5);
  EXPECT_EQ(ZetNorvEmul::_posKavFirst, 1);
}

TEST_F(SnapshotTest, NeedsNoRunMode) {
  EXPECT_EQ(save(blockOf(15)), S_OK);
  EXPECT_EQ(readBytes(reference("KavFirst0.bin")), blockOf(15));
}

TEST_F(SnapshotTest, IsReadBackAtItsStep) {
  mode("SAVE");
  for (int i = 0; i < 4; ++i) send(request(12, "x"));
  save(blockOf(1205));
  ZetNorvEmul::_posCursPre = 4;
  const Block block = replay();
  EXPECT_EQ(block.result, S_OK);
  EXPECT_EQ(block.size, 1200);
  EXPECT_EQ(block.allocated, 1200);
  EXPECT_EQ(block.bytes, blockOf(1200));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 5);
}

TEST_F(SnapshotTest, InDebugModeCarriesTheWholePath) {
  debugMode("SAVE");
  EXPECT_EQ(save(blockOf(25)), S_OK);
  EXPECT_EQ(readBytes(debugScenario("Scenario.txt")),
            "<999><" + scratch.file("ref") + "/case1/Reference\\KavFirst0.bin><20><20>\n");
  ZetNorvEmul::_posCursPre = 0;
  EXPECT_EQ(replay().bytes, blockOf(20));
}

TEST_F(SnapshotTest, OfNoBytesHasTheFiveBytesOnly) {
  EXPECT_EQ(save(blockOf(5)), S_OK);
  EXPECT_EQ(readBytes(reference("KavFirst0.bin")), blockOf(5));
  ZetNorvEmul::_posCursPre = 0;
  const Block block = replay();
  EXPECT_EQ(block.result, S_OK);
  EXPECT_EQ(block.allocated, 0);
  EXPECT_TRUE(block.handedOut);
}

TEST_F(SnapshotTest, SavingReplacesAFileOfThatName) {
  writeBytes(reference("KavFirst0.bin"), std::string(100, 'o'));
  save(blockOf(15));
  EXPECT_EQ(readBytes(reference("KavFirst0.bin")), blockOf(15));
}

TEST_F(SnapshotTest, SavingWithoutAReferenceDirectoryFailsBeforeTheStep) {
  environment.unset("BIX_ZET_IN");
  EXPECT_EQ(save(blockOf(15)), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvToolBox::KavFirst with ZetNorvToolBox::getRefPath"));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 0);
  EXPECT_EQ(ZetNorvEmul::_posKavFirst, 0);
}

TEST_F(SnapshotTest, SavingWithoutAScenarioDirectoryLeavesTheFileAndTheStep) {
  debugMode("SAVE");
  environment.unset("App_SceFile");
  EXPECT_EQ(save(blockOf(15)), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvToolBox::KavFirst with ZetNorvToolBox::getScePath"));
  EXPECT_EQ(readBytes(debugReference("KavFirst0.bin")), blockOf(15));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_EQ(ZetNorvEmul::_posKavFirst, 1);
}

TEST_F(SnapshotTest, SavingWithAnIndexThatCannotBeOpenedLeavesTheFileAndTheStep) {
  std::filesystem::create_directories(scenario("Scenario.txt"));
  EXPECT_EQ(save(blockOf(15)), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvToolBox::KavFirst with file.open"));
  EXPECT_EQ(readBytes(reference("KavFirst0.bin")), blockOf(15));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
}

TEST_F(SnapshotTest, ABlockThatCannotBeWrittenLeavesNoLineAndTakesTheStep) {
  std::filesystem::create_directories(reference("KavFirst0.bin"));
  EXPECT_EQ(save(blockOf(15)), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvToolBox::KavFirst with file.write"));
  EXPECT_FALSE(exists(scenario("Scenario.txt")));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
}

TEST_F(SnapshotTest, NullArgumentsAreRefused) {
  int size = 10;
  int other = 0;
  char* data = nullptr;
  EXPECT_EQ(ZetNorvEmul::SaveKavFirst(size, other, nullptr), E_FAIL);
  EXPECT_FALSE(exists(reference("KavFirst0.bin")));
  EXPECT_EQ(ZetNorvEmul::SaveKavFirst(nullReferenceTo<int>(), other, "0123456789abcde"), E_FAIL);
  EXPECT_EQ(ZetNorvEmul::ReplayKavFirst(nullReferenceTo<int>(), other, data), E_FAIL);
  EXPECT_EQ(ZetNorvEmul::ReplayKavFirst(size, nullReferenceTo<int>(), data), E_FAIL);
  EXPECT_EQ(ZetNorvEmul::ReplayKavFirst(size, other, nullReferenceTo<char*>()), E_FAIL);
}

TEST_F(SnapshotTest, ANegativeSizeNeverReadsTheBlock) {
  int ignored = 0;
  for (int size : {-5, -6, INT_MIN}) {
    EXPECT_EQ(ZetNorvEmul::SaveKavFirst(size, ignored, "x"), S_OK);
  }
  EXPECT_EQ(readBytes(reference("KavFirst0.bin")), "");
}

TEST_F(SnapshotTest, ReplayingWithoutAScenarioDirectoryTakesTheStep) {
  environment.unset("BIX_ZET_IN");
  const Block block = replay();
  EXPECT_EQ(block.result, E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::ReplayKavFirst with ZetNorvToolBox::getScePath"));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_EQ(block.size, -77);
}

TEST_F(SnapshotTest, ReplayingWithoutAnIndexTakesTheStep) {
  EXPECT_EQ(replay().result, E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with KelFOpen!"));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
}

TEST_F(SnapshotTest, TheOperationOfTheLineIsNotLookedAt) {
  writeBytes(scratch.file("block"), "0123456789");
  index("<12><" + scratch.file("block") + "><4><8>\n");
  const Block block = replay();
  EXPECT_EQ(block.result, S_OK);
  EXPECT_EQ(block.size, 4);
  EXPECT_EQ(block.bytes, std::string("0123\0\0\0\0", 8));
}

TEST_F(SnapshotTest, BehindTheEndTheLastLineIsTaken) {
  writeBytes(scratch.file("a"), "aaaa");
  writeBytes(scratch.file("b"), "bbbb");
  index("<999><" + scratch.file("a") + "><4><4>\n<999><" + scratch.file("b") + "><4><4>\n");
  EXPECT_EQ(replay().bytes, "aaaa");
  EXPECT_EQ(replay().bytes, "bbbb");
  EXPECT_EQ(replay().bytes, "bbbb");
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 3);
}

TEST_F(SnapshotTest, AMissingFileGivesAnEmptyBuffer) {
  index("<999><" + scratch.file("missing") + "><4><4>\n");
  const Block block = replay();
  EXPECT_EQ(block.result, S_OK);
  EXPECT_EQ(block.bytes, std::string(4, '\0'));
}

TEST_F(SnapshotTest, AShortFileGivesWhatItHas) {
  writeBytes(scratch.file("short"), "ab");
  index("<999><" + scratch.file("short") + "><4><4>\n");
  EXPECT_EQ(replay().bytes, std::string("ab\0\0", 4));
}

TEST_F(SnapshotTest, DamagedLinesHandOutTheirNumbersOnly) {
  struct {
    const char* line;
    int size;
    int allocated;
  } const cases[] = {
      {"", -1, -1},
      {"\n", -1, -1},
      {"no brackets\n", -1, -1},
      {"<999><path>\n", -1, -1},
      {"<999><path><5>\n", 5, -1},
      {"<999><path><-5><5>\n", -5, 5},
      {"<999><path><5><-5>\n", 5, -5},
      {"<999><path><6><5>\n", 6, 5},
      {"<999><path><><>\n", -1, -1},
  };
  for (const auto& c : cases) {
    ZetNorvEmul::_posCursPre = 0;
    index(c.line);
    const Block block = replay();
    EXPECT_EQ(block.result, E_FAIL) << c.line;
    EXPECT_EQ(block.size, c.size) << c.line;
    EXPECT_EQ(block.allocated, c.allocated) << c.line;
    EXPECT_FALSE(block.handedOut) << c.line;
    EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::ReplayKavFirst with size")) << c.line;
  }
}

TEST_F(SnapshotTest, ShiftsTheStepsOfTheRequestsBehindIt) {
  mode("SAVE");
  send(request(12, "before"));
  save(blockOf(15));
  send(request(12, "after"));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 3);
  EXPECT_EQ(readBytes(scenario("Scenario.txt")),
            "<12><save12_0.txt>\n"
            "<999><\\in\\case1.rec\\Reference\\KavFirst1.bin><10><10>\n"
            "<12><save12_1.txt>\n");
}

TEST_F(SnapshotTest, SavedAndReadBackSilently) {
  EXPECT_EQ(save(blockOf(15)), S_OK);
  ZetNorvEmul::_posCursPre = 0;
  EXPECT_EQ(replay().result, S_OK);
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(SnapshotTest, SavingWithoutItsLineLeavesTheFileAndTheStep) {
  FaultyFileSystem files;
  files.fillDiskAtWrite(2);
  EXPECT_EQ(save(blockOf(15)), E_FAIL);
  EXPECT_EQ(trace.texts(),
            std::vector<std::string>{"Problem in ZetNorvToolBox::KavFirst with file.puts"});
  EXPECT_EQ(levels(), std::vector<int>{2});
  EXPECT_EQ(readBytes(reference("KavFirst0.bin")), blockOf(15));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "");
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_EQ(ZetNorvEmul::_posKavFirst, 1);
}

TEST_F(SnapshotTest, FailuresAreTracedAtLevelTwo) {
  environment.unset("BIX_ZET_IN");
  save(blockOf(15));
  replay();
  environment.set("BIX_ZET_IN", "\\in");
  replay();
  std::filesystem::create_directories(scenario("Scenario.txt"));
  save(blockOf(15));
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{
                "Problem (App_SceFile): tselection == NULL.",
                "Problem in ZetNorvToolBox::KavFirst with ZetNorvToolBox::getRefPath",
                "Problem (App_SceFile): tselection == NULL.",
                "Problem in ZetNorvEmul::ReplayKavFirst with ZetNorvToolBox::getScePath",
                "Problem in ZetNorvEmul::preWensnd with KelFOpen!",
                "Problem in ZetNorvToolBox::KavFirst with file.open"}));
  EXPECT_EQ(levels(), std::vector<int>{2});
}

TEST_F(SnapshotTest, AreCountedWhenSavedOnly) {
  for (int i = 0; i < 3; ++i) save(blockOf(15));
  ZetNorvEmul::_posCursPre = 0;
  replay();
  EXPECT_EQ(ZetNorvEmul::_posKavFirst, 3);
}

}  // namespace
