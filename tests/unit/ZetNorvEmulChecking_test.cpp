// Checking sent messages: which line of the index a request is compared with, and what it leaves.
#include <filesystem>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "ZetNorvEmul.h"

namespace {

using Names = std::vector<std::string>;

constexpr const char* kScript =
    "<Scripts>"
    "<MessageChar value=\"12\"><Composant name=\"all\" size=\"6\" compare=\"1\"/></MessageChar>"
    "<MessageXML value=\"321\"><Composant name=\"Doc\" father=\"\" "
    "attributs=\"Name\"/></MessageXML>"
    "<MessageXML value=\"319\"><Composant name=\"Doc\" father=\"\" "
    "attributs=\"Name\"/></MessageXML>"
    "</Scripts>";

const std::string kXml =
    "<Doc Name=\"n\"><LogObject Identifier=\"l0\"/><Reference Identifier=\"r0\"/>"
    "<LogObject Identifier=\"l1,rest\"/><LogObject/></Doc>";

class CheckingTest : public EmulatorFixture {
 protected:
  CheckingTest() {
    mode("REPLAY");
    writeBytes(configuration(), kScript);
  }

  std::string configuration() const { return scratch.file("in/Configuration/xmlStruct.xml"); }
  void index(const std::string& lines) { writeBytes(scenario("Scenario.txt"), lines); }
  void recorded(const std::string& name, const std::string& bytes) {
    writeBytes(reference(name), bytes);
  }
  // The findings log, which outside debug mode lies at the root of the drive.
  std::string findings() const {
    const std::string path = scratch.file("error.log");
    return exists(path) ? readBytes(path) : "";
  }
  static int sections(const std::string& log) {
    int count = 0;
    for (std::size_t at = log.find("####"); at != std::string::npos;
         at = log.find("####", at + 20)) {
      ++count;
    }
    return count;
  }
  static std::string identifier(const ZetNorvDb_Table& table, int row, int column = 0) {
    ZetNorvDb_Record record;
    MString value;
    EXPECT_EQ(table.getRecord(row, record), S_OK);
    EXPECT_EQ(record.getData(column, value), S_OK);
    return value.isNull() ? "(null)" : value.gchar();
  }
};

TEST_F(CheckingTest, ARequestThatEqualsItsRecordingLeavesASectionWithoutFindings) {
  for (const char* value : {"REPLAY", "SCAN", "OLDREPLAY"}) {
    resetEmulator();
    std::filesystem::remove(scratch.file("error.log"));
    mode(value);
    index("<12><save12_0.txt>\n");
    recorded("save12_0.txt", request(12, "ab"));
    EXPECT_EQ(send(request(12, "ab")), S_OK) << value;
    EXPECT_EQ(findings(), "\n###########   Message 12 \n\n## Taille 6 \n## Buf:\nab\n## Fin buf\n")
        << value;
  }
}

TEST_F(CheckingTest, ADifferenceIsAFindingAndNoFailure) {
  index("<12><save12_0.txt>\n");
  recorded("save12_0.txt", request(12, "ab"));
  EXPECT_EQ(send(request(12, "aX")), S_OK);
  EXPECT_EQ(findings(),
            "\n###########   Message 12 \n\n## Taille 6 \n## Buf:\naX\n## Fin buf\n"
            "12 - 0 Problem Problem with reference file ...\n");
}

TEST_F(CheckingTest, TracesTheStepsOfARequestWithoutIdentifiers) {
  index("<325><save325_0.txt>\n");
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_EQ(trace.texts(),
            (Names{"[nOp] 325", "run.", "PelmoMod: MString spSplit", "PelmoMod: microMod run",
                   "Spe: Commit (325).", "ZetNorvEmul: Test sur l'ids0",
                   "ZetNorvEmul: Test sur l'ids0", " end of if microMod.getMsg... "}));
}

TEST_F(CheckingTest, RequestsOf321And319FillTheIdentifierTables) {
  for (const int op : {321, 319}) {
    resetEmulator();
    trace.clear();
    index("<" + std::to_string(op) + "><save.txt>\n");
    recorded("save.txt", request(op, kXml));
    EXPECT_EQ(send(request(op, kXml)), S_OK);
    ASSERT_EQ(ZetNorvEmul::_ids.getSize(), 3);
    EXPECT_EQ(identifier(ZetNorvEmul::_ids, 0), "l0");
    EXPECT_EQ(identifier(ZetNorvEmul::_ids, 0, 1), "NULL");
    EXPECT_EQ(identifier(ZetNorvEmul::_ids, 1), "l1");
    EXPECT_EQ(identifier(ZetNorvEmul::_ids, 1, 1), "rest");
    EXPECT_EQ(identifier(ZetNorvEmul::_ids, 2), "NULL");
    ASSERT_EQ(ZetNorvEmul::_idsRef.getSize(), 1);
    EXPECT_EQ(identifier(ZetNorvEmul::_idsRef, 0), "r0");
    EXPECT_TRUE(trace.has("extractLogObject OK"));
    EXPECT_TRUE(trace.has("ZetNorvEmul: Test sur l'ids3"));
    EXPECT_TRUE(trace.has("extractRefObject OK"));
    EXPECT_TRUE(trace.has("ZetNorvEmul: Test sur l'ids1"));
    EXPECT_TRUE(trace.has(" end of if microMod.getMsg... "));
  }
}

TEST_F(CheckingTest, OtherOperationsKeepTheTablesOfTheLastRequest) {
  index("<321><a>\n<12><b>\n");
  recorded("a", request(321, kXml));
  recorded("b", request(12, "ab"));
  send(request(321, kXml));
  EXPECT_EQ(send(request(12, "ab")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_ids.getSize(), 3);
  EXPECT_EQ(ZetNorvEmul::_idsRef.getSize(), 1);
}

TEST_F(CheckingTest, ARequestWithoutTagsEmptiesTheTables) {
  index("<321><a>\n<321><b>\n");
  recorded("a", request(321, kXml));
  recorded("b", request(321, "<Doc Name=\"n\"/>"));
  send(request(321, kXml));
  EXPECT_EQ(send(request(321, "<Doc Name=\"n\"/>")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_ids.getSize(), 0);
  EXPECT_EQ(ZetNorvEmul::_idsRef.getSize(), 0);
  EXPECT_TRUE(trace.has("NO LogObject Tags"));
  EXPECT_TRUE(trace.has("NO RefObject Tags"));
}

TEST_F(CheckingTest, ALineOfOperation26AtTheCursorIsPassedOverForGood) {
  index("<321><a>\n<26><b>\n<319><c>\n<325><d>\n");
  recorded("a", request(321, kXml));
  recorded("c", request(319, kXml));
  EXPECT_EQ(send(request(321, kXml)), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_EQ(send(request(319, kXml)), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 3);
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 4);
  EXPECT_FALSE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
  EXPECT_EQ(sections(findings()), 2);
}

TEST_F(CheckingTest, SeveralLinesOfOperation26ArePassedOverTogether) {
  index("<26><a>\n<26><b>\n<325><c>\n");
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 3);
  EXPECT_TRUE(trace.has("Spe: Commit (325)."));
}

TEST_F(CheckingTest, ABeginningOf26AndALineWithoutOperationArePassedOverToo) {
  for (const char* line : {"<2><x>\n", "no brackets\n", "\n", "<><x>\n"}) {
    resetEmulator();
    trace.clear();
    index(std::string(line) + "<325><c>\n");
    EXPECT_EQ(send(request(325, "")), S_OK) << line;
    EXPECT_EQ(ZetNorvEmul::_posCursPre, 2) << line;
    EXPECT_TRUE(trace.has("Spe: Commit (325).")) << line;
  }
}

TEST_F(CheckingTest, LinesOfOperation26OffTheCursorCountAsLines) {
  index("<325><a>\n<26><b>\n<325><c>\n");
  ZetNorvEmul::_posCursPre = 2;
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 3);
  EXPECT_TRUE(trace.has("Spe: Commit (325)."));
}

TEST_F(CheckingTest, AnOperationThatBeginsWith26IsARequest) {
  index("<260><a>\n");
  send(request(325, ""));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
}

TEST_F(CheckingTest, A26LineAtTheEndMovesTheCursorAndMatchesNothing) {
  index("<26><a>\n");
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 2);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
}

TEST_F(CheckingTest, SnapshotLinesKeepTheirPlace) {
  index("<999><snapshot><1><1>\n<325><c>\n");
  send(request(325, ""));
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
}

TEST_F(CheckingTest, BehindTheEndTheLastLineIsTaken) {
  index("<12><a>\n<325><b>\n");
  ZetNorvEmul::_posCursPre = 7;
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_TRUE(trace.has("Spe: Commit (325)."));
  EXPECT_EQ(send(request(12, "ab")), S_OK);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 9);
}

TEST_F(CheckingTest, AnotherOperationIsReportedAndNotCompared) {
  index("<12><save12_0.txt>\n");
  recorded("save12_0.txt", request(12, "ab"));
  EXPECT_EQ(send(request(321, kXml)), S_OK);
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 321", "run.", "PelmoMod: MString spSplit",
                                  "Problem in ZetNorvEmul::preWensnd with (message != _nOp)"}));
  EXPECT_EQ(findings(), "");
}

TEST_F(CheckingTest, AnEmptyIndexMatchesNothing) {
  index("");
  EXPECT_EQ(send(request(12, "ab")), S_OK);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
}

TEST_F(CheckingTest, WithoutAScenarioDirectoryTheRequestFails) {
  environment.unset("BIX_ZET_IN");
  EXPECT_EQ(send(request(12, "ab")), E_FAIL);
  EXPECT_EQ(trace.texts(),
            (Names{"[nOp] 12", "run.", "Problem (App_SceFile): tselection == NULL.",
                   "Problem in ZetNorvEmul::preWensnd with ZetNorvToolBox::getScePath"}));
}

TEST_F(CheckingTest, WithoutAnIndexTheRequestFails) {
  EXPECT_EQ(send(request(12, "ab")), E_FAIL);
  EXPECT_EQ(trace.texts(),
            (Names{"[nOp] 12", "run.", "Problem in ZetNorvEmul::preWensnd with KelFOpen!"}));
  std::filesystem::create_directories(scenario("Scenario.txt"));
  EXPECT_EQ(send(request(12, "ab")), E_FAIL);
}

TEST_F(CheckingTest, WithoutAReferenceDirectoryTheRequestFails) {
  debugMode("REPLAY");
  environment.unset("App_RefFile");
  writeBytes(debugScenario("Scenario.txt"), "<12><a>\n");
  EXPECT_EQ(send(request(12, "ab")), E_FAIL);
  EXPECT_TRUE(trace.has("Problem (App_RefFile): tselection == NULL."));
}

TEST_F(CheckingTest, AFailedComparisonFailsTheRequestAndLeavesNoSection) {
  index("<12><missing.txt>\n");
  EXPECT_EQ(send(request(12, "ab")), E_FAIL);
  EXPECT_TRUE(trace.has("runNorvLike: load != S_OK"));
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with microMod.run"));
  EXPECT_FALSE(trace.has(" end of if microMod.getMsg... "));
  EXPECT_EQ(findings(), "");
}

TEST_F(CheckingTest, ARequestOfFourBytesCannotBeParsed) {
  // Its recording can, so the comparison is the step that fails.
  index("<321><a>\n");
  recorded("a", request(321, kXml));
  EXPECT_EQ(send(request(321, "")), E_FAIL);
  EXPECT_TRUE(trace.has("Out ... XMLParse"));
  EXPECT_EQ(findings(), "");
}

TEST_F(CheckingTest, InDebugModeTheReferenceDirectoryStandsTwiceInThePath) {
  debugMode("REPLAY");
  writeBytes(scratch.file("cfg/xmlStruct.xml"), kScript);
  writeBytes(debugScenario("Scenario.txt"), "<12><Reference\\save12_0.txt>\n");
  writeBytes(debugReference("save12_0.txt"), request(12, "ab"));
  EXPECT_EQ(send(request(12, "ab")), E_FAIL);
  EXPECT_TRUE(trace.has("runNorvLike: load != S_OK"));
  writeBytes(debugReference("Reference/save12_0.txt"), request(12, "ab"));
  ZetNorvEmul::_posCursPre = 0;
  EXPECT_EQ(send(request(12, "ab")), S_OK);
}

TEST_F(CheckingTest, AnEditedIndexCountsFromTheNextRequestOn) {
  index("<12><a>\n<12><b>\n");
  recorded("a", request(12, "ab"));
  send(request(12, "ab"));
  index("<12><a>\n<325><b>\n");
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_TRUE(trace.has("Spe: Commit (325)."));
}

TEST_F(CheckingTest, ALongLineCountsAsSeveral) {
  // 2,100 bytes are read in three pieces, so the next line is the fourth.
  index("<325><" + std::string(2092, 'x') + ">\n<325><b>\n");
  ZetNorvEmul::_posCursPre = 3;
  EXPECT_EQ(send(request(325, "")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 4);
  EXPECT_TRUE(trace.has("Spe: Commit (325)."));
}

TEST_F(CheckingTest, AnIndexCutAtEveryByteNeverCrashesAndNeverComparesWithAnotherFile) {
  const std::string whole = "<12><save12_0.txt>\n<26><x>\n<325><y>\n<12><save12_1.txt>\n";
  recorded("save12_0.txt", request(12, "ab"));
  recorded("save12_1.txt", request(12, "cd"));
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
    resetEmulator();
    index(whole.substr(0, cut));
    for (const char* payload : {"ab", "cd"}) {
      const long result = send(request(12, payload));
      EXPECT_TRUE(result == S_OK || trace.has("runNorvLike: load != S_OK")) << cut;
    }
    send(request(325, ""));
  }
  // The second request of every round meets another operation, or the first one's line.
  EXPECT_EQ(findings().find("save"), std::string::npos);
}

TEST_F(CheckingTest, ABufferThatIsUsedAgainIsReadAgain) {
  index("<321><a>\n<321><a>\n");
  recorded("a", request(321, kXml));
  std::string message = request(321, kXml);
  EXPECT_EQ(send(message), S_OK);
  EXPECT_EQ(identifier(ZetNorvEmul::_ids, 0), "l0");
  message.replace(message.find("l0"), 2, "L9");
  EXPECT_EQ(send(message), S_OK);
  EXPECT_EQ(identifier(ZetNorvEmul::_ids, 0), "L9");
  EXPECT_EQ(identifier(ZetNorvEmul::_idsRef, 0), "r0");
}

TEST_F(CheckingTest, ARequestThatEqualsItsRecordingKeepsItsIdentifiers) {
  index("<319><a>\n");
  recorded("a", request(319, kXml));
  EXPECT_EQ(send(request(319, kXml)), S_OK);
  EXPECT_EQ(ZetNorvEmul::_ids.getSize(), 3);
  EXPECT_EQ(ZetNorvEmul::_idsRef.getSize(), 1);
}

TEST_F(CheckingTest, TheMessageIsNeverChanged) {
  index("<321><a>\n");
  recorded("a", request(321, kXml));
  const std::string message = request(321, kXml);
  const std::string copy = message;
  send(message);
  EXPECT_EQ(message, copy);
}

TEST_F(CheckingTest, TracesTheStepsOfARequestWithIdentifiersInTheirOrder) {
  index("<321><a>\n");
  recorded("a", request(321, kXml));
  send(request(321, kXml));
  const Names steps = {"[nOp] 321",
                       "run.",
                       "PelmoMod: MString spSplit",
                       "PelmoMod: microMod run",
                       "ZetNorvMod: End",
                       "ZetNorvBuilders::extractLogObject",
                       "extractLogObject OK",
                       "ZetNorvEmul: Test sur l'ids3",
                       "ZetNorvBuilders::extractRefObject",
                       "extractRefObject OK",
                       "ZetNorvEmul: Test sur l'ids1",
                       " end of if microMod.getMsg... "};
  EXPECT_EQ(tracedOf(steps), steps);
  EXPECT_EQ(trace.texts().front(), steps.front());
  EXPECT_EQ(trace.texts().back(), steps.back());
  EXPECT_EQ(levels(), std::vector<int>{2});
}

TEST_F(CheckingTest, ARequestThatIsComparedAsCharactersAndIsNoXmlEmptiesTheTables) {
  writeBytes(configuration(),
             "<Scripts><MessageChar value=\"321\"><Composant name=\"all\" size=\"4\" "
             "compare=\"1\"/></MessageChar></Scripts>");
  index("<321><a>\n");
  recorded("a", request(321, ""));
  ZetNorvEmul::_ids.addRecord(MString("before"));
  ZetNorvEmul::_idsRef.addRecord(MString("before"));
  EXPECT_EQ(send(request(321, "")), S_OK);
  const Names steps = {"ZetNorvMod: End",
                       "ZetNorvBuilders::extractLogObject",
                       "buildTemp Problem XMLParse",
                       "extractLogObject: Problem",
                       "ZetNorvEmul: Test sur l'ids0",
                       "ZetNorvBuilders::extractRefObject",
                       "buildTemp Problem XMLParse",
                       "extractRefObject: Problem",
                       "ZetNorvEmul: Test sur l'ids0",
                       " end of if microMod.getMsg... "};
  EXPECT_EQ(tracedOf(steps), steps);
  EXPECT_EQ(ZetNorvEmul::_ids.getSize(), 0);
  EXPECT_EQ(ZetNorvEmul::_idsRef.getSize(), 0);
}

TEST_F(CheckingTest, ARequestThatCouldNotBeComparedKeepsTheTables) {
  index("<321><missing>\n");
  ZetNorvEmul::_ids.addRecord(MString("before"));
  ZetNorvEmul::_idsRef.addRecord(MString("before"));
  EXPECT_EQ(send(request(321, kXml)), E_FAIL);
  EXPECT_EQ(identifier(ZetNorvEmul::_ids, 0), "before");
  EXPECT_EQ(identifier(ZetNorvEmul::_idsRef, 0), "before");
  EXPECT_FALSE(trace.has("ZetNorvBuilders::extractLogObject"));
}

TEST_F(CheckingTest, ARequestOfOperation26IsPassedOverAtItsOwnLineAndCheckedAtTheNext) {
  index("<26><a>\n<12><b>\n");
  EXPECT_EQ(send(request(26, "")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 2);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)"));
}

TEST_F(CheckingTest, WithoutAReferenceDirectoryTheTraceEndsWithTheReason) {
  debugMode("REPLAY");
  environment.unset("App_RefFile");
  writeBytes(debugScenario("Scenario.txt"), "<12><a>\n");
  ZetNorvEmul::_date.set("log");
  send(request(12, "ab"));
  const Names log = logLines("log");
  EXPECT_EQ(trace.texts(),
            (Names{"[nOp] 12", "ZetNorvEmul::preWensnd12", log[0], log[1], log[2], "run.",
                   "PelmoMod: MString spSplit", "Problem (App_RefFile): tselection == NULL."}));
}

}  // namespace
