// Replaying answers: which answer is served, what is written into it, and what the client holds.
#include <filesystem>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "ZetNorvEmul.h"

namespace {

using Names = std::vector<std::string>;

constexpr const char* kSkipped = "ZetNorvEmul: error load file2";

class ReplayTest : public EmulatorFixture {
 protected:
  ReplayTest() { mode("REPLAY"); }

  void index(const std::string& lines) { writeBytes(scenario("Scenario2.txt"), lines); }
  void recorded(const std::string& name, const std::string& bytes) {
    writeBytes(reference(name), bytes);
  }
  // Makes the request of the step one of `op` with these identifiers.
  static void identifiers(int op, const Names& logObjects, const Names& references) {
    ZetNorvEmul::_nOp = op;
    ZetNorvEmul::_ids.Release();
    ZetNorvEmul::_idsRef.Release();
    for (const std::string& id : logObjects) ZetNorvEmul::_ids.addRecord(MString(id.c_str()));
    for (const std::string& id : references) ZetNorvEmul::_idsRef.addRecord(MString(id.c_str()));
  }
  // Replays one recorded answer with the identifiers set before.
  Received replayed(const std::string& bytes) {
    ZetNorvEmul::_posCursPost = 0;
    index("<" + std::to_string(ZetNorvEmul::_nOp) + "><answer><0>\n");
    recorded("answer", bytes);
    return receive("live");
  }
};

std::string littleEndian(std::size_t value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF),
          static_cast<char>((value >> 16) & 0xFF), static_cast<char>((value >> 24) & 0xFF)};
}

// What the client gets for a rewritten answer: four zero bytes, the length and the text.
std::string rewritten(const std::string& text) {
  return std::string(4, '\0') + littleEndian(text.size()) + text;
}

TEST_F(ReplayTest, ServesTheRecordedAnswerWithItsStatusInANewBuffer) {
  for (const char* value : {"REPLAY", "OLDREPLAY"}) {
    resetEmulator();
    mode(value);
    ZetNorvEmul::_nOp = 12;
    index("<12><rep12_0.txt><-3>\n");
    const std::string bytes("ans\0wer\n", 8);
    recorded("rep12_0.txt", bytes);
    const Received received = receive("live", 99);
    EXPECT_EQ(received.result, S_OK);
    EXPECT_TRUE(received.replaced);
    EXPECT_EQ(received.bytes, bytes);
    EXPECT_EQ(received.status, -3);
  }
}

TEST_F(ReplayTest, ANulFollowsTheServedBytes) {
  const struct {
    int op;
    std::string recorded;
    std::string served;
  } cases[] = {{12, "text", "text"},
               {321, xmlAnswer("<a><LogObject Identifier=\"1\"/></a>"),
                rewritten("<a><LogObject Identifier=\"a longer one\"/></a>")}};
  for (const auto& [op, bytesRecorded, served] : cases) {
    resetEmulator();
    identifiers(op, {"a longer one"}, {});
    index("<" + std::to_string(op) + "><a><0>\n");
    recorded("a", bytesRecorded);
    char* answer = nullptr;
    int bytes = 0;
    int status = 0;
    int* size = &bytes;
    int* state = &status;
    ASSERT_EQ(ZetNorvEmul::postWensnd(0, answer, size, state), S_OK);
    EXPECT_EQ(std::string(answer, static_cast<std::size_t>(bytes)), served);
    EXPECT_EQ(answer[bytes], '\0');
    delete[] answer;
  }
}

TEST_F(ReplayTest, AnEmptyRecordingServesNoBytes) {
  ZetNorvEmul::_nOp = 12;
  index("<12><a><0>\n");
  recorded("a", "");
  const Received received = receive("live");
  EXPECT_EQ(received.result, S_OK);
  EXPECT_TRUE(received.replaced);
  EXPECT_EQ(received.bytes, "");
}

TEST_F(ReplayTest, TracesTheStepsOfAPlainAnswer) {
  ZetNorvEmul::_nOp = 12;
  index("<12><a><0>\n");
  recorded("a", "four");
  trace.clear();
  receive("live");
  EXPECT_EQ(trace.texts(),
            (Names{"ZetNorvEmul: KelGetEnvValue App_SceFile", "ZetNorvEmul: MFile Open",
                   "ZetNorvEmul: MFile2 load", "ZetNorvEmul Post: Test sur l'ids0",
                   "ZetNorvEmul: Copie des buffers", "Valeur Normale : 4",
                   "ZetNorvEmul: Fin Copie des buffers"}));
}

TEST_F(ReplayTest, TracesTheStepsOfARewrittenAnswer) {
  identifiers(321, {"L"}, {"R"});
  trace.clear();
  replayed(xmlAnswer("<a><LogObject Identifier=\"1\"/><Reference Identifier=\"2\"/></a>"));
  EXPECT_EQ(trace.texts(),
            (Names{"ZetNorvEmul: KelGetEnvValue App_SceFile",
                   "ZetNorvEmul: MFile Open",
                   "ZetNorvEmul: MFile2 load",
                   "ZetNorvEmul Post: Test sur l'ids1",
                   "ZetNorvEmul: _ids",
                   "<a><LogObject Identifier=\"1\"/><Reference Identifier=\"2\"/></a>",
                   "ZetNorvEmul: CreateMemBufInput...",
                   "ZetNorvEmul: Dom Doc .. get .. LogOject",
                   "ZetNorvEmul: Gestion de la liste des NodeList",
                   "ZetNorvEmul: Remplacement 1",
                   "ZetNorvEmul: Remplacement 2",
                   "ZetNorvEmul: Remplacement 3",
                   "R",
                   "ZetNorvEmul: Remplacement 4",
                   "ZetNorvEmul: Remplacement 1",
                   "ZetNorvEmul: Remplacement 2",
                   "ZetNorvEmul: Remplacement 3",
                   "L",
                   "ZetNorvEmul: Remplacement 4",
                   "ZetNorvEmul: Copie des buffers modifies61",
                   "ZetNorvEmul: Fin Copie des buffers modifies"}));
}

TEST_F(ReplayTest, WritesTheIdentifiersOfThisRunByPosition) {
  for (const int op : {321, 319}) {
    identifiers(op, {"L0", "L1"}, {"R0", "R1"});
    const std::string before =
        "<Answer><Reference Identifier=\"old\" Name=\"r\"/><LogObject Identifier=\"x\">"
        "<LogObject Type=\"t\" Identifier=\"y\"/></LogObject><Reference Identifier=\"old\"/>"
        "text &amp; more<!--kept--></Answer>";
    const std::string after =
        "<Answer><Reference Identifier=\"R0\" Name=\"r\"/><LogObject Identifier=\"L0\">"
        "<LogObject Type=\"t\" Identifier=\"L1\"/></LogObject><Reference Identifier=\"R1\"/>"
        "text &amp; more<!--kept--></Answer>";
    const Received received = replayed("HEADhead" + before);
    EXPECT_EQ(received.result, S_OK);
    EXPECT_EQ(received.bytes, rewritten(after));
    EXPECT_TRUE(received.replaced);
  }
}

TEST_F(ReplayTest, ElementsBeyondTheLastRecordGetAnEmptyValue) {
  identifiers(321, {"L0"}, {"R0", "R1"});
  const Received received =
      replayed(xmlAnswer("<a><Reference Identifier=\"a\"/><Reference Identifier=\"b\"/>"
                         "<Reference Identifier=\"c\"/></a>"));
  EXPECT_EQ(received.bytes,
            rewritten("<a><Reference Identifier=\"R0\"/><Reference Identifier=\"R1\"/>"
                      "<Reference Identifier=\"\"/></a>"));
}

TEST_F(ReplayTest, AnElementWithoutIdentifierIsSkippedAndKeepsItsPlace) {
  identifiers(321, {"L0", "L1", "L2"}, {});
  const Received received = replayed(
      xmlAnswer("<a><LogObject Identifier=\"a\"/><LogObject/><LogObject Identifier=\"c\"/></a>"));
  EXPECT_EQ(received.bytes, rewritten("<a><LogObject Identifier=\"L0\"/><LogObject/>"
                                      "<LogObject Identifier=\"L2\"/></a>"));
}

TEST_F(ReplayTest, IdentifiersAreEscaped) {
  identifiers(321, {"a&b<c\"d"}, {});
  EXPECT_EQ(replayed(xmlAnswer("<a><LogObject Identifier=\"x\"/></a>")).bytes,
            rewritten("<a><LogObject Identifier=\"a&amp;b&lt;c&quot;d\"/></a>"));
}

TEST_F(ReplayTest, WithoutLogObjectIdentifiersNothingIsRewritten) {
  identifiers(321, {}, {"R0"});
  const std::string bytes = xmlAnswer("<a><Reference Identifier=\"a\"/></a>");
  EXPECT_EQ(replayed(bytes).bytes, bytes);
}

TEST_F(ReplayTest, OtherOperationsAreServedByteForByte) {
  for (const int op : {12, 325, 320, 322, 999}) {
    identifiers(op, {"L0"}, {"R0"});
    const std::string bytes = xmlAnswer("<a><LogObject Identifier=\"a\"/></a>");
    EXPECT_EQ(replayed(bytes).bytes, bytes) << op;
  }
}

TEST_F(ReplayTest, AnswersOfEightBytesOrFewerAreServedByteForByte) {
  identifiers(321, {"L0"}, {"R0"});
  for (const char* bytes : {"", "1", "12345678"}) {
    EXPECT_EQ(replayed(bytes).bytes, bytes);
    EXPECT_FALSE(trace.has("ZetNorvEmul: _ids"));
  }
  EXPECT_EQ(replayed("123456789").bytes, "123456789");
  EXPECT_TRUE(trace.has("ZetNorvEmul: _ids"));
}

TEST_F(ReplayTest, AnAnswerWithoutElementsIsServedByteForByte) {
  identifiers(319, {"L0"}, {"R0"});
  const std::string bytes = xmlAnswer("<a  b='1' />");
  EXPECT_EQ(replayed(bytes).bytes, bytes);
  EXPECT_TRUE(trace.has("ZetNorvEmul: Copie des buffers"));
}

TEST_F(ReplayTest, ABrokenAnswerIsTracedAndServedByteForByte) {
  const std::string whole = "<a><LogObject Identifier=\"a\"/></a>";
  for (std::size_t cut = 1; cut < whole.size(); ++cut) {
    identifiers(321, {"L0"}, {});
    trace.clear();
    const std::string bytes = xmlAnswer(whole.substr(0, cut));
    const Received received = replayed(bytes);
    EXPECT_EQ(received.result, S_OK) << cut;
    EXPECT_EQ(received.bytes, bytes) << cut;
    EXPECT_TRUE(trace.has("Problem with XMLParse")) << cut;
  }
}

TEST_F(ReplayTest, ARewrittenAnswerIsLoggedInDebugMode) {
  debugMode("REPLAY");
  identifiers(321, {"L0"}, {});
  writeBytes(debugScenario("Scenario2.txt"), "<321><answer><0>\n");
  writeBytes(debugReference("answer"), "HEADhead<a><LogObject Identifier='a'/></a>");
  EXPECT_EQ(receive("live").result, S_OK);
  EXPECT_EQ(readBytes(debugLog("fichierXMLretour.log")),
            "\n ######FLUX TRANSCODE##### \n<a><LogObject Identifier=\"L0\"/></a>"
            "\n ###########CHAR########## \n<a><LogObject Identifier=\"L0\"/></a>"
            "\n ###########CHARXML####### \n<a><LogObject Identifier='a'/></a>");
}

TEST_F(ReplayTest, WithoutAScenarioDirectoryTheAnswerStays) {
  environment.unset("BIX_ZET_IN");
  const Received received = receive("live", 4);
  EXPECT_EQ(received.result, E_FAIL);
  EXPECT_EQ(trace.texts(), (Names{"ZetNorvEmul: KelGetEnvValue App_SceFile",
                                  "Problem (App_SceFile): tselection == NULL.",
                                  "#### Problem Var ZET: App_SceFile"}));
  EXPECT_FALSE(received.replaced);
  EXPECT_EQ(received.bytes, "live");
  EXPECT_EQ(received.status, 4);
}

TEST_F(ReplayTest, WithoutAnIndexTheLiveAnswerStaysAndNothingFails) {
  const Received received = receive("live", 4);
  EXPECT_EQ(received.result, S_OK);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::postWensnd with KelFOpen!"));
  EXPECT_FALSE(received.replaced);
  EXPECT_EQ(received.status, 4);
  std::filesystem::create_directories(scenario("Scenario2.txt"));
  EXPECT_EQ(receive("live").result, S_OK);
}

TEST_F(ReplayTest, WithoutAReferenceDirectoryTheAnswerStays) {
  debugMode("REPLAY");
  environment.unset("App_RefFile");
  writeBytes(debugScenario("Scenario2.txt"), "<0><a><5>\n");
  const Received received = receive("live", 4);
  EXPECT_EQ(received.result, E_FAIL);
  EXPECT_FALSE(received.replaced);
  EXPECT_EQ(received.status, 4);
}

TEST_F(ReplayTest, AMissingRecordingLeavesTheAnswer) {
  ZetNorvEmul::_nOp = 12;
  index("<12><missing><5>\n");
  const Received received = receive("live", 4);
  EXPECT_EQ(received.result, E_FAIL);
  EXPECT_TRUE(trace.has(kSkipped));
  EXPECT_FALSE(received.replaced);
  EXPECT_EQ(received.bytes, "live");
  EXPECT_EQ(received.status, 4);
}

TEST_F(ReplayTest, ADirectoryInThePlaceOfARecordingLeavesTheAnswer) {
  ZetNorvEmul::_nOp = 12;
  index("<12><dir><5>\n");
  std::filesystem::create_directories(reference("dir"));
  EXPECT_EQ(receive("live").result, E_FAIL);
  EXPECT_TRUE(trace.has(kSkipped));
}

TEST_F(ReplayTest, AnEmptyIndexLeavesTheAnswer) {
  index("");
  const Received received = receive("live", 4);
  EXPECT_EQ(received.result, E_FAIL);
  EXPECT_TRUE(trace.has(kSkipped));
  EXPECT_FALSE(received.replaced);
}

TEST_F(ReplayTest, ALineOfAnotherOperationIsSkippedForGood) {
  ZetNorvEmul::_nOp = 12;
  index("<319><other><1>\n<321><another><2>\n<12><a><3>\n<12><b><4>\n");
  recorded("a", "first");
  recorded("b", "second");
  Received received = receive("live");
  EXPECT_EQ(received.bytes, "first");
  EXPECT_EQ(received.status, 3);
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 3);
  received = receive("live");
  EXPECT_EQ(received.bytes, "second");
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 4);
}

TEST_F(ReplayTest, ALineWithoutAFileIsSkippedAsOneOfAnotherOperation) {
  ZetNorvEmul::_nOp = 12;
  index("ERROR: NO FILE\n<12><a><3>\n");
  recorded("a", "first");
  EXPECT_EQ(receive("live").bytes, "first");
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 2);
}

TEST_F(ReplayTest, OtherOperationsUpToTheEndServeTheLastLine) {
  ZetNorvEmul::_nOp = 12;
  index("<319><a><1>\n<319><b><2>\n");
  recorded("b", "last");
  const Received received = receive("live");
  EXPECT_EQ(received.bytes, "last");
  EXPECT_EQ(received.status, 2);
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 3);
}

TEST_F(ReplayTest, BehindTheEndTheLastLineIsServed) {
  ZetNorvEmul::_nOp = 12;
  ZetNorvEmul::_posCursPost = 8;
  index("<12><a><1>\n<12><b><2>\n");
  recorded("b", "last");
  EXPECT_EQ(receive("live").bytes, "last");
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 9);
}

TEST_F(ReplayTest, TheThirdFieldDecidesAboutTheStatus) {
  struct {
    const char* fields;
    int status;
  } const cases[] = {
      {"<12><a>", 99},   {"<12><a><", -1},     {"<12><a><>", -1},
      {"<12><a><7>", 7}, {"<12><a><7", 7},     {"<12><a> text", 99},
      {"<12><a><x>", 0}, {"<12><a><7><8>", 7}, {"<12><a><2147483647>", 2147483647},
  };
  recorded("a", "x");
  for (const auto& c : cases) {
    resetEmulator();
    ZetNorvEmul::_nOp = 12;
    index(std::string(c.fields) + "\n");
    const Received received = receive("live", 99);
    EXPECT_EQ(received.result, S_OK) << c.fields;
    EXPECT_EQ(received.status, c.status) << c.fields;
  }
}

TEST_F(ReplayTest, ACursorBeforeTheFirstLineServesNothing) {
  ZetNorvEmul::_nOp = 12;
  ZetNorvEmul::_posCursPost = -5;
  index("<12><a><1>\n");
  recorded("a", "x");
  EXPECT_EQ(receive("live").result, E_FAIL);
  EXPECT_TRUE(trace.has(kSkipped));
}

TEST_F(ReplayTest, AnIndexCutAtEveryByteServesARecordingOrLeavesTheAnswer) {
  const std::string whole = "<12><a><1>\n<12><b><2>\n";
  recorded("a", "first");
  recorded("b", "second");
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
    resetEmulator();
    ZetNorvEmul::_nOp = 12;
    index(whole.substr(0, cut));
    for (int step = 0; step < 3; ++step) {
      const Received received = receive("live");
      const bool served = received.result == S_OK && received.replaced &&
                          (received.bytes == "first" || received.bytes == "second");
      const bool left = received.result == E_FAIL && !received.replaced;
      EXPECT_TRUE(served || left) << cut << " " << received.bytes;
    }
  }
}

TEST_F(ReplayTest, AnEditedIndexCountsFromTheNextAnswerOn) {
  ZetNorvEmul::_nOp = 12;
  index("<12><a><1>\n<12><a><1>\n");
  recorded("a", "first");
  recorded("b", "second");
  receive("live");
  index("<12><a><1>\n<12><b><1>\n");
  EXPECT_EQ(receive("live").bytes, "second");
}

TEST_F(ReplayTest, HugeLinesAndNumbersAreReadInPieces) {
  ZetNorvEmul::_nOp = 12;
  index("<12><" + std::string(65536, 'x') + "><99999999999999999999>\n<12><a><5>\n");
  recorded("a", "first");
  // The pieces are lines of their own; those without the operation are skipped.
  Received received = receive("live");
  EXPECT_EQ(received.result, E_FAIL);
  received = receive("live");
  EXPECT_EQ(received.bytes, "first");
  EXPECT_EQ(received.status, 5);
}

TEST_F(ReplayTest, EveryStepIsTracedAtLevelTwo) {
  identifiers(321, {"L"}, {"R"});
  replayed(xmlAnswer("<a><LogObject Identifier=\"1\"/><Reference Identifier=\"2\"/></a>"));
  replayed(xmlAnswer("<a/>"));
  index("<321><missing><0>\n");
  receive("live");
  std::filesystem::remove(scenario("Scenario2.txt"));
  receive("live");
  environment.unset("BIX_ZET_IN");
  receive("live");
  EXPECT_EQ(tracedOf({kSkipped, "Problem in ZetNorvEmul::postWensnd with KelFOpen!",
                      "#### Problem Var ZET: App_SceFile"})
                .size(),
            3u);
  EXPECT_EQ(levels(), std::vector<int>{2});
}

TEST_F(ReplayTest, TracesTheStepsOfABrokenAnswer) {
  identifiers(321, {"L"}, {});
  replayed(xmlAnswer("<a>"));
  EXPECT_EQ(
      trace.texts(),
      (Names{"ZetNorvEmul: KelGetEnvValue App_SceFile", "ZetNorvEmul: MFile Open",
             "ZetNorvEmul: MFile2 load", "ZetNorvEmul Post: Test sur l'ids1", "ZetNorvEmul: _ids",
             "<a>", "ZetNorvEmul: CreateMemBufInput...", "Problem with XMLParse",
             "ZetNorvEmul: Dom Doc .. get .. LogOject", "ZetNorvEmul: Copie des buffers",
             "Valeur Normale : 11", "ZetNorvEmul: Fin Copie des buffers"}));
}

TEST_F(ReplayTest, AnElementWithoutIdentifierIsTracedUpToItsLookup) {
  identifiers(321, {"L0", "L1"}, {});
  replayed(xmlAnswer("<a><LogObject/><LogObject Identifier=\"x\"/></a>"));
  const Names steps = {"ZetNorvEmul: Remplacement 1",
                       "ZetNorvEmul: Remplacement 1",
                       "ZetNorvEmul: Remplacement 2",
                       "ZetNorvEmul: Remplacement 3",
                       "L1",
                       "ZetNorvEmul: Remplacement 4"};
  EXPECT_EQ(tracedOf(steps), steps);
}

TEST_F(ReplayTest, TheLogIsWrittenBetweenTheLinesOfTheCopy) {
  debugMode("REPLAY");
  identifiers(321, {"L0"}, {});
  writeBytes(debugScenario("Scenario2.txt"), "<321><answer><0>\n");
  writeBytes(debugReference("answer"), xmlAnswer("<LogObject Identifier='a'/>"));
  receive("live");
  Names steps = {"ZetNorvEmul: Copie des buffers modifies28"};
  for (int i = 0; i < 6; ++i) steps.push_back(logLines("fichierXMLretour.log")[2]);
  steps.push_back("ZetNorvEmul: Fin Copie des buffers modifies");
  EXPECT_EQ(tracedOf(steps), steps);
}

TEST_F(ReplayTest, TheStatusIsHandedBackAlsoWithARewrittenAnswer) {
  identifiers(321, {"L0"}, {});
  index("<321><answer><-8>\n");
  recorded("answer", xmlAnswer("<LogObject Identifier='a'/>"));
  const Received received = receive("live", 4);
  EXPECT_EQ(received.bytes, rewritten("<LogObject Identifier=\"L0\"/>"));
  EXPECT_EQ(received.status, -8);
}

TEST_F(ReplayTest, ARecordedNulEndsTheTracedAndLoggedTextOnly) {
  debugMode("REPLAY");
  identifiers(321, {"L0"}, {});
  writeBytes(debugScenario("Scenario2.txt"), "<321><answer><0>\n");
  writeBytes(debugReference("answer"), xmlAnswer(std::string("<LogObject Identifier='a'/>\0", 28)));
  const Received received = receive("live");
  EXPECT_EQ(received.bytes, rewritten("<LogObject Identifier=\"L0\"/>"));
  EXPECT_TRUE(trace.has("<LogObject Identifier='a'/>"));
}

TEST_F(ReplayTest, TheIdentifiersOfTheCheckedRequestStandInItsAnswer) {
  writeBytes(scratch.file("in/Configuration/xmlStruct.xml"),
             "<Scripts><MessageXML value=\"321\"><Composant name=\"Doc\" father=\"\" "
             "attributs=\"Name\"/></MessageXML></Scripts>");
  mode("SAVE");
  exchange(321, "<Doc><LogObject Identifier='old'/><LogObject/><Reference Identifier='r'/></Doc>",
           xmlAnswer("<A><Reference Identifier='1'/><LogObject Identifier='2'/>"
                     "<LogObject Identifier='3'/></A>"),
           6);
  resetEmulator();
  mode("REPLAY");
  EXPECT_EQ(send(request(321,
                         "<Doc><LogObject Identifier='new,more'/><LogObject/>"
                         "<Reference Identifier='q'/></Doc>")),
            S_OK);
  const Received received = receive("live", 0);
  EXPECT_EQ(received.result, S_OK);
  EXPECT_EQ(received.bytes,
            rewritten("<A><Reference Identifier=\"q\"/><LogObject Identifier=\"new\"/>"
                      "<LogObject Identifier=\"NULL\"/></A>"));
  EXPECT_EQ(received.status, 6);
}

}  // namespace
