// Recording: files, index lines and what happens when they cannot be written.
#include <filesystem>

#include "EmulatorFixture.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

namespace {

using Names = std::vector<std::string>;

constexpr const char* kDocuments =
    "<Answer><Document Name=\"n\" FilePath=\"%s\" Type=\"KelPart\" SourceUuid=\"u\" "
    "TimeStamp=\"t\"><Attribute Name=\"$COID\" Value=\"c\"/><Attribute Name=\"$COMPID\" "
    "Value=\"d\"/><Attribute Name=\"S_NAME\" Value=\"s\"/></Document></Answer>";

std::string documentXml(const std::string& path) {
  std::string xml = kDocuments;
  return xml.replace(xml.find("%s"), 2, path);
}

class RecordingTest : public EmulatorFixture {
 protected:
  RecordingTest() { mode("SAVE"); }

  static long saveRequest(int op, const std::string& message) {
    return ZetNorvEmul::save(op, message.data(), static_cast<int>(message.size()));
  }
  static long saveAnswer(int op, const std::string& answer, int status) {
    return ZetNorvEmul::saveAnswer(op, answer.data(), static_cast<int>(answer.size()), status);
  }
  // Makes a directory where a file is expected.
  static void block(const std::string& path) { std::filesystem::create_directories(path); }
};

TEST_F(RecordingTest, ARequestIsAFileAndALineOfTheIndex) {
  EXPECT_EQ(send(request(321, "<a/>")), S_OK);
  EXPECT_EQ(readBytes(reference("save321_0.txt")), request(321, "<a/>"));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<321><save321_0.txt>\n");
  EXPECT_TRUE(trace.has("save321_0.txt"));
}

TEST_F(RecordingTest, AnAnswerIsAFileAndALineWithItsStatus) {
  send(request(321, "<a/>"));
  const Received received = receive("answer", -7);
  EXPECT_EQ(received.result, S_OK);
  EXPECT_EQ(received.bytes, "answer");
  EXPECT_EQ(received.status, -7);
  EXPECT_FALSE(received.replaced);
  EXPECT_EQ(readBytes(reference("rep321_0.txt")), "answer");
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<321><rep321_0.txt><-7>\n");
}

TEST_F(RecordingTest, InDebugModeLinesStartAfterTheLastSlashOfThePath) {
  debugMode("SAVE");
  exchange(321, "<a/>", "answer", 0);
  EXPECT_EQ(readBytes(debugScenario("Scenario.txt")), "<321><Reference\\save321_0.txt>\n");
  EXPECT_EQ(readBytes(debugScenario("Scenario2.txt")), "<321><Reference\\rep321_0.txt><0>\n");
  EXPECT_EQ(readBytes(debugReference("save321_0.txt")), request(321, "<a/>"));
  EXPECT_EQ(readBytes(debugReference("rep321_0.txt")), "answer");
  EXPECT_TRUE(trace.has("Reference\\save321_0.txt"));
}

TEST_F(RecordingTest, ASlashInTheInputRootEndsUpInTheIndexNames) {
  environment.set("BIX_ZET_IN", scratch.file("slashed"));
  exchange(12, "x", "y");
  const std::string base = scratch.file("slashed") + "/case1.rec/";
  EXPECT_EQ(readBytes(base + "Scenario/Scenario.txt"),
            "<12><slashed\\case1.rec\\Reference\\save12_0.txt>\n");
}

TEST_F(RecordingTest, RequestsOfOneOperationAreNumberedFromZero) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(send(request(321, "<a/>")), S_OK);
  EXPECT_EQ(namesIn(reference()), (Names{"save321_0.txt", "save321_1.txt", "save321_2.txt"}));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")),
            "<321><save321_0.txt>\n<321><save321_1.txt>\n<321><save321_2.txt>\n");
}

TEST_F(RecordingTest, EveryOperationAndDirectionHasNumbersOfItsOwn) {
  exchange(12, "a", "A");
  exchange(319, "b", "B");
  exchange(12, "c", "C");
  EXPECT_EQ(namesIn(reference()), (Names{"rep12_0.txt", "rep12_1.txt", "rep319_0.txt",
                                         "save12_0.txt", "save12_1.txt", "save319_0.txt"}));
  EXPECT_EQ(readBytes(reference("rep12_1.txt")), "C");
}

TEST_F(RecordingTest, ANumberThatCameFreeIsTakenNext) {
  for (int i = 0; i < 5; ++i) send(request(12, std::to_string(i)));
  std::filesystem::remove(reference("save12_1.txt"));
  std::filesystem::remove(reference("save12_3.txt"));
  send(request(12, "first gap"));
  send(request(12, "second gap"));
  send(request(12, "end"));
  EXPECT_EQ(readBytes(reference("save12_1.txt")), request(12, "first gap"));
  EXPECT_EQ(readBytes(reference("save12_3.txt")), request(12, "second gap"));
  EXPECT_EQ(readBytes(reference("save12_5.txt")), request(12, "end"));
}

TEST_F(RecordingTest, ANumberThatSomebodyElseTookIsPassedOver) {
  send(request(12, "0"));
  writeBytes(reference("save12_1.txt"), "somebody else's");
  send(request(12, "2"));
  EXPECT_EQ(readBytes(reference("save12_1.txt")), "somebody else's");
  EXPECT_EQ(readBytes(reference("save12_2.txt")), request(12, "2"));
}

TEST_F(RecordingTest, ARenamedFileFreesItsNumber) {
  for (int i = 0; i < 3; ++i) send(request(12, std::to_string(i)));
  std::filesystem::rename(reference("save12_0.txt"), reference("kept.txt"));
  send(request(12, "again"));
  EXPECT_EQ(readBytes(reference("save12_0.txt")), request(12, "again"));
}

TEST_F(RecordingTest, ADirectoryThatWasReplacedStartsAtZeroAgain) {
  for (int i = 0; i < 3; ++i) send(request(12, std::to_string(i)));
  std::filesystem::rename(scratch.file("in"), scratch.file("before"));
  send(request(12, "fresh"));
  EXPECT_EQ(namesIn(reference()), Names{"save12_0.txt"});
  std::filesystem::remove_all(scratch.file("in"));
  send(request(12, "fresher"));
  EXPECT_EQ(namesIn(reference()), Names{"save12_0.txt"});
}

TEST_F(RecordingTest, EveryScenarioHasADirectoryOfItsOwn) {
  send(request(12, "one"));
  environment.set("ZET_LOG_NAME", "case2");
  send(request(12, "two"));
  environment.set("ZET_LOG_NAME", "case1");
  send(request(12, "three"));
  EXPECT_EQ(namesIn(reference()), (Names{"save12_0.txt", "save12_1.txt"}));
  EXPECT_EQ(readBytes(scratch.file("in/case2.rec/Reference/save12_0.txt")), request(12, "two"));
}

TEST_F(RecordingTest, EveryByteIsKept) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  const std::string payload = all + "\r\n\n\r" + std::string(3, '\0');
  send(request(12, payload));
  receive(payload);
  EXPECT_EQ(readBytes(reference("save12_0.txt")), request(12, payload));
  EXPECT_EQ(readBytes(reference("rep12_0.txt")), payload);
}

TEST_F(RecordingTest, EverySizeIsKept) {
  for (const std::size_t size : {1u, 3u, 4u, 4095u, 4096u, 4097u, 65536u, 1000003u}) {
    const std::string bytes(size, 'x');
    const std::string before = std::to_string(size);
    ASSERT_EQ(saveRequest(5, bytes), S_OK);
    ASSERT_EQ(receive(bytes).result, S_OK);
  }
  EXPECT_EQ(readBytes(reference("save5_0.txt")), "x");
  EXPECT_EQ(readBytes(reference("save5_7.txt")), std::string(1000003, 'x'));
  EXPECT_EQ(readBytes(reference("rep0_7.txt")), std::string(1000003, 'x'));
}

TEST_F(RecordingTest, AMessageOfAHundredMegabytesIsKept) {
  std::string bytes(100u << 20, '\0');
  for (std::size_t i = 0; i < bytes.size(); i += 4093) bytes[i] = static_cast<char>(i);
  ASSERT_EQ(saveRequest(5, bytes), S_OK);
  EXPECT_TRUE(readBytes(reference("save5_0.txt")) == bytes);
}

TEST_F(RecordingTest, SaveNamesFileAndLineByItsOwnOperation) {
  send(request(321, "<a/>"));
  EXPECT_EQ(saveRequest(7, "direct"), S_OK);
  EXPECT_EQ(readBytes(reference("save7_0.txt")), "direct");
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<321><save321_0.txt>\n<7><save7_0.txt>\n");
}

TEST_F(RecordingTest, NegativeOperationsAreNamedAsTheyAre) {
  EXPECT_EQ(saveRequest(-5, "x"), S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<-5><save-5_0.txt>\n");
}

TEST_F(RecordingTest, AnIndexThatIsThereIsAppendedTo) {
  writeBytes(scenario("Scenario.txt"), "<1><a>\n");
  send(request(12, "x"));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<1><a>\n<12><save12_0.txt>\n");
}

TEST_F(RecordingTest, ANullMessageWithASizeLeavesAnEmptyFileAndItsLine) {
  ZetNorvEmul::_nOp = 9;
  EXPECT_EQ(ZetNorvEmul::preWensnd(0, nullptr, 10), S_OK);
  EXPECT_EQ(readBytes(reference("save9_0.txt")), "");
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<9><save9_0.txt>\n");
}

TEST_F(RecordingTest, ARequestWithoutBytesFailsAndLeavesNoLine) {
  for (const int size : {0, -1, -2147483647 - 1}) {
    trace.clear();
    EXPECT_EQ(ZetNorvEmul::preWensnd(0, "abcd", size), E_FAIL);
    EXPECT_EQ(trace.texts(), (Names{"Probleme pour ecrire le fichier.",
                                    "Problem in ZetNorvEmul::save with mod.save",
                                    "Problem in ZetNorvEmul::preWensnd with save"}));
  }
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "");
  EXPECT_FALSE(exists(reference()));
}

TEST_F(RecordingTest, ARequestWithoutBytesIsReportedInTheDebugLog) {
  debugMode("SAVE");
  ZetNorvEmul::_nOp = 321;
  EXPECT_EQ(ZetNorvEmul::preWensnd(0, "abcd", 0), E_FAIL);
  EXPECT_EQ(readBytes(debugLog("trace.log")),
            "(save)Impossible d'ecrire le fichier de reference inputSizeBuf <= 0.\n"
            "Msg Errone 321\n");
}

TEST_F(RecordingTest, AnAnswerWithoutBytesKeepsItsLine) {
  debugMode("SAVE");
  send(request(321, "<a/>"));
  const Received received = receive("", 4);
  EXPECT_EQ(received.result, S_OK);
  EXPECT_EQ(readBytes(debugLog("trace.log")),
            "(saveAnswer)Impossible d'ecrire le fichier de reference inputSizeBuf <= 0.\n"
            "Msg Errone 321\n");
  EXPECT_EQ(readBytes(debugScenario("Scenario2.txt")), "ERROR: NO FILE\n");
  EXPECT_TRUE(trace.has("Probleme pour ecrire le fichier."));
}

TEST_F(RecordingTest, WithoutAScenarioDirectoryARequestFails) {
  environment.unset("BIX_ZET_IN");
  EXPECT_EQ(send(request(12, "x")), E_FAIL);
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 12", "Problem (App_SceFile): tselection == NULL.",
                                  "Problem in ZetNorvEmul::save with ZetNorvToolBox::getScePath",
                                  "Problem in ZetNorvEmul::preWensnd with save"}));
}

TEST_F(RecordingTest, WithoutAScenarioDirectoryAnAnswerFails) {
  environment.unset("BIX_ZET_IN");
  EXPECT_EQ(receive("x").result, E_FAIL);
  EXPECT_EQ(trace.texts(), (Names{"Problem (App_SceFile): tselection == NULL.",
                                  "#### Problem Var ZET: App_SceFile"}));
}

TEST_F(RecordingTest, AnIndexThatCannotBeOpenedFailsTheRequest) {
  block(scenario("Scenario.txt"));
  EXPECT_EQ(send(request(12, "x")), E_FAIL);
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 12", "Problem in ZetNorvEmul::save with file.open",
                                  "Problem in ZetNorvEmul::preWensnd with save"}));
  EXPECT_FALSE(exists(reference()));
}

TEST_F(RecordingTest, AnIndexThatCannotBeOpenedFailsTheAnswer) {
  block(scenario("Scenario2.txt"));
  EXPECT_EQ(receive("x").result, E_FAIL);
  EXPECT_EQ(trace.texts(), Names{"Problem with KelFOpen (cf. SaveAnswer)!"});
  EXPECT_FALSE(exists(reference()));
}

TEST_F(RecordingTest, WithoutAReferenceDirectoryARequestLeavesNoLine) {
  debugMode("SAVE");
  environment.unset("App_RefFile");
  EXPECT_EQ(send(request(12, "x")), E_FAIL);
  EXPECT_TRUE(trace.has("Problem (App_RefFile): tselection == NULL."));
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::save with mod.save"));
  EXPECT_EQ(readBytes(debugScenario("Scenario.txt")), "");
}

TEST_F(RecordingTest, WithoutAReferenceDirectoryAnAnswerKeepsItsLine) {
  debugMode("SAVE");
  environment.unset("App_RefFile");
  EXPECT_EQ(receive("x").result, S_OK);
  EXPECT_EQ(readBytes(debugScenario("Scenario2.txt")), "ERROR: NO FILE\n");
}

TEST_F(RecordingTest, ARequestFileThatCannotBeOpenedLeavesNoLine) {
  // A directory cannot be opened for reading, so its number counts as free.
  block(reference("save12_0.txt"));
  EXPECT_EQ(send(request(12, "x")), E_FAIL);
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 12", "Problem with KelFOpen w!",
                                  "Problem in ZetNorvEmul::save with mod.save",
                                  "Problem in ZetNorvEmul::preWensnd with save"}));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "");
}

TEST_F(RecordingTest, AnAnswerFileThatCannotBeOpenedKeepsItsNameInTheLine) {
  send(request(12, "x"));
  block(reference("rep12_0.txt"));
  EXPECT_EQ(receive("y", 2).result, S_OK);
  EXPECT_TRUE(trace.has("Problem with KelFOpen w!"));
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><2>\n");
}

TEST_F(RecordingTest, AFullDiskLeavesNoRequestFileAndNoLine) {
  send(request(12, "before"));
  FaultyFileSystem files;
  files.fillDiskAtWrite(1);
  EXPECT_EQ(send(request(12, "lost")), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::save with mod.save"));
  EXPECT_EQ(namesIn(reference()), Names{"save12_0.txt"});
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<12><save12_0.txt>\n");
  EXPECT_EQ(files.openFiles(), 0);
}

TEST_F(RecordingTest, AFullDiskLeavesNoAnswerFileAndTheLineOfAnAnswerThatIsNotThere) {
  send(request(12, "x"));
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kWrite, 1);
  EXPECT_EQ(receive("lost", 3).result, S_OK);
  EXPECT_EQ(namesIn(reference()), Names{"save12_0.txt"});
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><3>\n");
}

TEST_F(RecordingTest, AFileThatFailsToOpenForReadingIsNotWrittenOver) {
  send(request(12, "earlier"));
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kOpenRead, 1, FaultyFileSystem::Times::kAlways);
  EXPECT_EQ(send(request(12, "later")), S_OK);
  EXPECT_EQ(readBytes(reference("save12_0.txt")), request(12, "earlier"));
  EXPECT_EQ(readBytes(reference("save12_1.txt")), request(12, "later"));
}

TEST_F(RecordingTest, NothingIsWrittenThroughALinkThatStandsUnderTheNextName) {
  send(request(12, "x"));
  for (const char* name : {"save12_1.txt", "rep12_0.txt"}) {
    std::filesystem::create_symlink(scratch.file("elsewhere"), reference(name));
  }
  EXPECT_EQ(send(request(12, "y")), E_FAIL);
  EXPECT_TRUE(trace.has("Problem with KelFOpen w!"));
  EXPECT_EQ(receive("lost", 3).result, S_OK);
  EXPECT_FALSE(exists(scratch.file("elsewhere")));
  writeBytes(scratch.file("elsewhere"), "of somebody else");
  // Now it is a file that is there.
  EXPECT_EQ(send(request(12, "y")), S_OK);
  EXPECT_EQ(readBytes(reference("save12_2.txt")), request(12, "y"));
  EXPECT_EQ(readBytes(scratch.file("elsewhere")), "of somebody else");
}

TEST_F(RecordingTest, TheNameOfALostAnswerIsNoOtherAnswers) {
  send(request(12, "x"));
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kWrite, 1);
  EXPECT_EQ(receive("lost", 3).result, S_OK);
  EXPECT_EQ(receive("next", 4).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><3>\n<12><rep12_1.txt><4>\n");
  EXPECT_FALSE(exists(reference("rep12_0.txt")));
  EXPECT_EQ(readBytes(reference("rep12_1.txt")), "next");
}

TEST_F(RecordingTest, TheNameOfAnAnswerWhoseFileCannotBeOpenedIsNoOtherAnswers) {
  send(request(12, "x"));
  FaultyFileSystem files;
  for (const char* lost : {"lost", "lost too"}) {
    files.fail(FaultyFileSystem::Call::kOpenWrite, 1);
    EXPECT_EQ(receive(lost, 3).result, S_OK);
  }
  EXPECT_EQ(receive("next", 4).result, S_OK);
  files.fail(FaultyFileSystem::Call::kOpenWrite, 1);
  EXPECT_EQ(receive("lost again", 3).result, S_OK);
  EXPECT_EQ(receive("last", 5).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")),
            "<12><rep12_0.txt><3>\n<12><rep12_0.txt><3>\n<12><rep12_1.txt><4>\n"
            "<12><rep12_0.txt><3>\n<12><rep12_2.txt><5>\n");
  EXPECT_EQ(namesIn(reference()), (Names{"rep12_1.txt", "rep12_2.txt", "save12_0.txt"}));
  EXPECT_EQ(readBytes(reference("rep12_1.txt")), "next");
  EXPECT_EQ(readBytes(reference("rep12_2.txt")), "last");
}

TEST_F(RecordingTest, AScenarioThatIsRemovedTakesTheNamesOfItsLostAnswersAlong) {
  send(request(12, "x"));
  block(reference("rep12_0.txt"));
  EXPECT_EQ(receive("lost", 1).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><1>\n");
  std::filesystem::remove_all(scratch.file("in"));
  send(request(12, "x"));
  EXPECT_EQ(receive("recorded anew", 2).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><2>\n");
  EXPECT_EQ(readBytes(reference("rep12_0.txt")), "recorded anew");
}

TEST_F(RecordingTest, AnIndexThatCannotBeReadKeepsTheNamesOfLostAnswers) {
  send(request(12, "x"));
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kOpenWrite, 1);
  EXPECT_EQ(receive("lost", 1).result, S_OK);
  files.fail(FaultyFileSystem::Call::kOpenRead, 1, FaultyFileSystem::Times::kAlways);
  EXPECT_EQ(receive("next", 2).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><1>\n<12><rep12_1.txt><2>\n");
  EXPECT_FALSE(exists(reference("rep12_0.txt")));
}

TEST_F(RecordingTest, AnotherDriveHasNamesOfItsOwn) {
  send(request(12, "x"));
  block(reference("rep12_0.txt"));
  EXPECT_EQ(receive("lost", 1).result, S_OK);
  environment.set("KEL_DRIVE_ROOT", scratch.file("other"));
  send(request(12, "x"));
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kOpenRead, 1, FaultyFileSystem::Times::kAlways);
  EXPECT_EQ(receive("recorded", 2).result, S_OK);
  EXPECT_EQ(readBytes(scratch.file("other/in/case1.rec/Reference/rep12_0.txt")), "recorded");
}

TEST_F(RecordingTest, ALostAnswerWithoutALineKeepsNoNumber) {
  send(request(12, "x"));
  {
    FaultyFileSystem files;
    files.fillDiskAtWrite(1);
    EXPECT_EQ(receive("lost", 1).result, E_FAIL);
  }
  EXPECT_EQ(receive("next", 2).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><2>\n");
  EXPECT_EQ(readBytes(reference("rep12_0.txt")), "next");
}

TEST_F(RecordingTest, AnAnswerThatIsLostWithTheDirectoryIsNotNamedAsOneBefore) {
  send(request(12, "x"));
  EXPECT_EQ(receive("first", 1).result, S_OK);
  const std::string directory = scratch.file("in/case1.rec/Reference");
  std::filesystem::rename(directory, scratch.file("away"));
  writeBytes(directory, "in the way");
  resetEmulator();
  send(request(12, "y"));
  EXPECT_EQ(receive("lost", 2).result, S_OK);
  EXPECT_TRUE(trace.has("Problem with KelFOpen w!"));
  std::filesystem::remove(directory);
  std::filesystem::rename(scratch.file("away"), directory);
  EXPECT_EQ(receive("next", 3).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")),
            "<12><rep12_0.txt><1>\n<12><rep12_1.txt><2>\n<12><rep12_2.txt><3>\n");
  EXPECT_EQ(readBytes(reference("rep12_0.txt")), "first");
  EXPECT_FALSE(exists(reference("rep12_1.txt")));
  EXPECT_EQ(readBytes(reference("rep12_2.txt")), "next");
}

TEST_F(RecordingTest, OnlyNumbersInTheIndexKeepTheirNames) {
  writeBytes(scratch.file("in/case1.rec/Reference"), "in the way");
  writeBytes(scenario("Scenario2.txt"),
             "\nERROR: NO FILE\n<12><rep12_><0>\n<12><rep12_99999999999.txt><0>\n"
             "<12><rep12_2147483647.txt><0>\n<12><rep12_x.txt><0>\n<3><rep3_8.txt><0>\n");
  const std::string before = readBytes(scenario("Scenario2.txt"));
  send(request(12, "x"));
  EXPECT_EQ(receive("lost", 2).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), before + "<12><rep12_0.txt><2>\n");
}

TEST_F(RecordingTest, ANumberThatIsFreeAgainIsTakenBeforeOneThatALineNames) {
  send(request(12, "x"));
  EXPECT_EQ(receive("first", 1).result, S_OK);
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kOpenWrite, 1);
  EXPECT_EQ(receive("lost", 2).result, S_OK);
  std::filesystem::remove(reference("rep12_0.txt"));
  EXPECT_EQ(receive("next", 3).result, S_OK);
  EXPECT_EQ(receive("last", 4).result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")),
            "<12><rep12_0.txt><1>\n<12><rep12_1.txt><2>\n<12><rep12_0.txt><3>\n"
            "<12><rep12_2.txt><4>\n");
}

TEST_F(RecordingTest, AHalfAnswerThatCannotBeRemovedIsNamedByNoLine) {
  send(request(12, "x"));
  FaultyFileSystem files;
  files.limitTransfers(3);
  files.fail(FaultyFileSystem::Call::kWrite, 2);
  files.fail(FaultyFileSystem::Call::kRemove, 1);
  EXPECT_EQ(receive("lost", 3).result, S_OK);
  EXPECT_EQ(receive("next", 4).result, S_OK);
  EXPECT_EQ(readBytes(reference("rep12_0.txt")), "los");
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_1.txt><3>\n<12><rep12_2.txt><4>\n");
  EXPECT_FALSE(exists(reference("rep12_1.txt")));
  EXPECT_EQ(readBytes(reference("rep12_2.txt")), "next");
}

TEST_F(RecordingTest, AFullDiskLeavesNoHalfLine) {
  send(request(12, "before"));
  FaultyFileSystem files;
  files.fillDiskAtWrite(2);
  EXPECT_EQ(send(request(12, "without a line")), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::save with file.puts"));
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<12><save12_0.txt>\n");
  files.fillDiskAtWrite(2);
  EXPECT_EQ(receive("answer").result, E_FAIL);
  EXPECT_TRUE(trace.has("Problem with KelFPuts (Cf. SaveAnswer)!"));
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "");
}

TEST_F(RecordingTest, AFileThatCannotBeClosedIsNotRecorded) {
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kClose, 1);
  EXPECT_EQ(send(request(12, "lost")), E_FAIL);
  EXPECT_EQ(namesIn(reference()), Names{});
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "");
}

TEST_F(RecordingTest, ARequestOf321StagesItsDocument) {
  writeBytes(scratch.file("work/PN-7.KelPart"), "geometry");
  const std::string path = scratch.file("work/PN-7.KelPart");
  EXPECT_EQ(send(request(321, documentXml(path))), S_OK);
  EXPECT_EQ(readBytes(reference("Kel_Files_Temp/PN-7.KelPart")), "geometry");
  EXPECT_STREQ(ZetNorvDb::_refFile.gchar(), path.c_str());
  EXPECT_STREQ(ZetNorvDb::_copyFile.gchar(), "PN-7.KelPart");
}

TEST_F(RecordingTest, RequestsOfOtherOperationsStageNothing) {
  writeBytes(scratch.file("work/PN-7.KelPart"), "geometry");
  EXPECT_EQ(send(request(319, documentXml(scratch.file("work/PN-7.KelPart")))), S_OK);
  EXPECT_FALSE(exists(reference("Kel_Files_Temp")));
}

TEST_F(RecordingTest, ARequestOf321ThatIsNoXmlIsRecordedAllTheSame) {
  EXPECT_EQ(send(request(321, "no xml")), S_OK);
  EXPECT_EQ(readBytes(reference("save321_0.txt")), request(321, "no xml"));
  EXPECT_TRUE(trace.has("buildTemp Problem XMLParse"));
}

TEST_F(RecordingTest, AnAnswerOf321ExtendsTheDatabaseFile) {
  writeBytes(scratch.file("work/PN-7.KelPart"), "geometry");
  const std::string xml = documentXml(scratch.file("work/PN-7.KelPart"));
  send(request(321, xml));
  EXPECT_EQ(receive(xmlAnswer(xml)).result, S_OK);
  EXPECT_EQ(readBytes(scenario("database.txt")),
            "<c><d><Indefini><s><PN-7.KelPart><u><Indefini><KelPart><t>\n");
}

TEST_F(RecordingTest, AnswersOfOtherOperationsLeaveTheDatabaseFileAlone) {
  writeBytes(scratch.file("work/PN-7.KelPart"), "geometry");
  const std::string xml = documentXml(scratch.file("work/PN-7.KelPart"));
  send(request(321, xml));
  send(request(319, xml));
  EXPECT_EQ(receive(xmlAnswer(xml)).result, S_OK);
  EXPECT_FALSE(exists(scenario("database.txt")));
}

TEST_F(RecordingTest, AnAnswerOf321OfEightBytesOrFewerIsNotReadForTheDatabase) {
  send(request(321, "<a/>"));
  trace.clear();
  EXPECT_EQ(receive("12345678").result, S_OK);
  EXPECT_FALSE(trace.has("buildDB Problem XMLParse"));
  EXPECT_EQ(receive("123456789").result, S_OK);
  EXPECT_TRUE(trace.has("buildDB Problem XMLParse"));
}

TEST_F(RecordingTest, SaveAnswerWritesTheFullPathToAnIndexOfItsOwn) {
  debugMode("REPLAY");
  std::filesystem::create_directories(scratch.file("sce"));
  EXPECT_EQ(saveAnswer(77, "direct", 3), S_OK);
  EXPECT_EQ(readBytes(debugReference("rep77_0.txt")), "direct");
  EXPECT_EQ(readBytes(scratch.file("sce/Scenario2.txt")),
            "<77><" + scratch.file("ref") + "/case1/Reference\\rep77_0.txt><3>\n");
}

TEST_F(RecordingTest, SaveAnswerGluesTheIndexNameToTheVariable) {
  environment.set("App_SceFile", scratch.file("glued"));
  EXPECT_EQ(saveAnswer(77, "direct", 3), S_OK);
  EXPECT_EQ(readBytes(scratch.file("gluedScenario2.txt")),
            "<77><\\in\\case1.rec\\Reference\\rep77_0.txt><3>\n");
}

TEST_F(RecordingTest, SaveAnswerMakesNoDirectoryForItsIndex) {
  environment.set("App_SceFile", scratch.file("missing") + "/");
  EXPECT_EQ(saveAnswer(77, "direct", 3), E_FAIL);
  EXPECT_EQ(trace.texts(), Names{"Problem in ZetNorvEmul::saveAnswer with KelFOpen!"});
  EXPECT_FALSE(exists(scratch.file("missing")));
  EXPECT_FALSE(exists(reference()));
}

TEST_F(RecordingTest, SaveAnswerWithoutItsVariableFails) {
  EXPECT_EQ(saveAnswer(77, "direct", 3), E_FAIL);
  EXPECT_EQ(trace.texts(), Names{"Problem (App_SceFile): tselection == NULL."});
}

TEST_F(RecordingTest, SaveAnswerDoesNotReportAnAnswerThatCouldNotBeWritten) {
  environment.set("App_SceFile", scratch.file("x"));
  EXPECT_EQ(saveAnswer(77, "", 3), S_OK);
  block(reference("rep77_0.txt"));
  EXPECT_EQ(saveAnswer(77, "direct", 3), S_OK);
  EXPECT_EQ(readBytes(scratch.file("xScenario2.txt")), "ERROR: NO FILE\nERROR: NO FILE\n");
}

TEST_F(RecordingTest, SaveAnswerTakesTheNumberOfAnAnswerThatCouldNotBeWritten) {
  environment.set("App_SceFile", scratch.file("x"));
  block(reference("rep77_0.txt"));
  EXPECT_EQ(saveAnswer(77, "lost", 3), S_OK);
  EXPECT_EQ(saveAnswer(77, "lost as well", 3), S_OK);
  std::filesystem::remove(reference("rep77_0.txt"));
  EXPECT_EQ(saveAnswer(77, "direct", 3), S_OK);
  EXPECT_EQ(readBytes(scratch.file("xScenario2.txt")),
            "ERROR: NO FILE\nERROR: NO FILE\n<77><\\in\\case1.rec\\Reference\\rep77_0.txt><3>\n");
  EXPECT_EQ(readBytes(reference("rep77_0.txt")), "direct");
}

TEST_F(RecordingTest, AThousandRequestsKeepTheirNumbersAndOrder) {
  std::string index;
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(saveRequest(8, std::to_string(i)), S_OK);
    index += "<8><save8_" + std::to_string(i) + ".txt>\n";
  }
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), index);
  EXPECT_EQ(readBytes(reference("save8_999.txt")), "999");
}

TEST_F(RecordingTest, TheStepsOfAnExchangeAreTracedAtLevelTwo) {
  send(request(12, "x"));
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 12", "save12_0.txt"}));
  receive("y");
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 12", "save12_0.txt"}));
  send(request(12, ""));
  receive("");
  block(reference("save12_2.txt"));
  send(request(12, "x"));
  environment.unset("BIX_ZET_IN");
  send(request(12, "x"));
  receive("y");
  EXPECT_EQ(levels(), std::vector<int>{2});
}

TEST_F(RecordingTest, ARequestWithoutBytesIsTracedBeforeItIsLogged) {
  debugMode("SAVE");
  ZetNorvEmul::_date.set("log");
  ZetNorvEmul::preWensnd(0, "abcd", 0);
  const Names log = logLines("log");
  const Names traceLog = logLines("trace.log");
  EXPECT_EQ(trace.texts(),
            (Names{"ZetNorvEmul::preWensnd0", log[0], log[1], log[2],
                   "Probleme pour ecrire le fichier.", traceLog[0], traceLog[2], traceLog[0],
                   traceLog[2], "Problem in ZetNorvEmul::save with mod.save",
                   "Problem in ZetNorvEmul::preWensnd with save"}));
}

TEST_F(RecordingTest, SaveAnswerReportsAnEmptyAnswerUnderItsOwnOperation) {
  debugMode("REPLAY");
  ZetNorvEmul::_nOp = 321;
  std::filesystem::create_directories(scratch.file("sce"));
  EXPECT_EQ(saveAnswer(77, "", 3), S_OK);
  EXPECT_EQ(readBytes(debugLog("trace.log")),
            "(saveAnswer)Impossible d'ecrire le fichier de reference inputSizeBuf <= 0.\n"
            "Msg Errone 77\n");
}

TEST_F(RecordingTest, SaveAnswerFailsWhenItsLineCannotBeWritten) {
  environment.set("App_SceFile", scratch.file("x"));
  FaultyFileSystem files;
  files.fillDiskAtWrite(2);
  EXPECT_EQ(saveAnswer(77, "direct", 3), E_FAIL);
  EXPECT_EQ(trace.texts(), Names{"Problem with KelFPuts!"});
  EXPECT_EQ(readBytes(reference("rep77_0.txt")), "direct");
  EXPECT_EQ(files.openFiles(), 0);
}

TEST_F(RecordingTest, SaveAnswerNeitherCountsAStepNorFeedsTheDatabase) {
  environment.set("App_SceFile", scratch.file("x"));
  EXPECT_EQ(saveAnswer(321, xmlAnswer("<a/>"), 3), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 0);
  EXPECT_EQ(trace.texts(), Names{});
}

TEST_F(RecordingTest, ARequestOf321ThatWasNotRecordedStagesNothing) {
  writeBytes(scratch.file("work/PN-7.KelPart"), "geometry");
  block(scenario("Scenario.txt"));
  EXPECT_EQ(send(request(321, documentXml(scratch.file("work/PN-7.KelPart")))), E_FAIL);
  EXPECT_FALSE(exists(reference("Kel_Files_Temp")));
  EXPECT_TRUE(ZetNorvDb::_copyFile.isNull());
}

TEST_F(RecordingTest, AnAnswerOf321WithoutItsLineFeedsNoDatabase) {
  ZetNorvEmul::_nOp = 321;
  block(scenario("Scenario2.txt"));
  EXPECT_EQ(receive(xmlAnswer("<a/>")).result, E_FAIL);
  EXPECT_FALSE(trace.has("ZetNorvDb: recherche Reference"));
}

TEST_F(RecordingTest, AnAnswerOf321WhoseFileCouldNotBeWrittenFeedsTheDatabaseAllTheSame) {
  ZetNorvEmul::_nOp = 321;
  block(reference("rep321_0.txt"));
  EXPECT_EQ(receive(xmlAnswer("<a/>")).result, S_OK);
  EXPECT_EQ(trace.texts(), (Names{"Problem with KelFOpen w!", "ZetNorvDb: recherche Reference",
                                  "ZetNorvDb: recherche Document"}));
}

}  // namespace
