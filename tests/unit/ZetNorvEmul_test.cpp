// What the hooks do in every mode, before they go their ways.
#include "ZetNorvEmul.h"

#include <climits>
#include <ctime>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "NullReferenceTo.h"

namespace {

using Names = std::vector<std::string>;

// The static members as the library loaded them, before any test.
struct Loaded {
  std::vector<int> counters{ZetNorvEmul::_nOp, ZetNorvEmul::_posCursPre, ZetNorvEmul::_posCursPost,
                            ZetNorvEmul::_posKavFirst};
  std::vector<int> rows{ZetNorvEmul::_ids.getSize(), ZetNorvEmul::_idsRef.getSize()};
  bool withoutDate = ZetNorvEmul::_date.isNull();
};

const Loaded loaded;

class ZetNorvEmulTest : public EmulatorFixture {
 protected:
  // Whether nothing at all was written below the scratch directory.
  bool untouched() const { return namesIn(scratch.path().string()).empty(); }
};

TEST_F(ZetNorvEmulTest, StartsWithEmptyCountersAndTables) {
  EXPECT_EQ(loaded.counters, (std::vector<int>{0, 0, 0, 0}));
  EXPECT_EQ(loaded.rows, (std::vector<int>{0, 0}));
  EXPECT_TRUE(loaded.withoutDate);
}

TEST_F(ZetNorvEmulTest, TakesTheOperationFromTheFirstFourBytesLittleEndian) {
  mode("PLAY");
  struct {
    std::string message;
    int op;
  } const cases[] = {
      {std::string("\x41\x01\x00\x00", 4), 321},     {std::string("\x01\x00\x00\x00tail", 8), 1},
      {std::string("\x00\x00\x00\x80", 4), INT_MIN}, {std::string("\xff\xff\xff\xff", 4), -1},
      {std::string("\xff\xff\xff\x7f", 4), INT_MAX},
  };
  for (const auto& c : cases) {
    trace.clear();
    send(c.message);
    EXPECT_EQ(ZetNorvEmul::_nOp, c.op);
    EXPECT_TRUE(trace.has("[nOp] " + std::to_string(c.op)));
  }
}

TEST_F(ZetNorvEmulTest, ARequestUnderFourBytesKeepsTheOperationAndCountsAsAStep) {
  mode("PLAY");
  send(request(321, ""));
  trace.clear();
  EXPECT_EQ(send("\x01\x02\x03"), S_OK);
  EXPECT_EQ(ZetNorvEmul::preWensnd(0, nullptr, 100), S_OK);
  EXPECT_EQ(ZetNorvEmul::preWensnd(0, "abcdefgh", INT_MIN), S_OK);
  EXPECT_EQ(ZetNorvEmul::_nOp, 321);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 4);
  EXPECT_EQ(trace.texts(), std::vector<std::string>(3, "ZetNorvEmul STOP"));
}

TEST_F(ZetNorvEmulTest, AnUnknownModeStopsBothHooks) {
  mode("PLAY");
  EXPECT_EQ(send(request(321, "<a/>")), S_OK);
  EXPECT_EQ(trace.texts(), (std::vector<std::string>{"[nOp] 321", "ZetNorvEmul STOP"}));
  trace.clear();
  const Received received = receive("live", 5);
  EXPECT_EQ(received.result, S_OK);
  EXPECT_EQ(received.bytes, "live");
  EXPECT_EQ(received.status, 5);
  EXPECT_FALSE(received.replaced);
  ASSERT_EQ(trace.lines().size(), 1u);
  EXPECT_EQ(trace.lines()[0].text, "ZetNorvEmul STOP");
  EXPECT_EQ(trace.lines()[0].level, 1);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_EQ(ZetNorvEmul::_posCursPost, 1);
  EXPECT_TRUE(untouched());
}

TEST_F(ZetNorvEmulTest, WithoutAModeTheRequestFailsAndTheAnswerStops) {
  EXPECT_EQ(send(request(321, "<a/>")), E_FAIL);
  EXPECT_EQ(ZetNorvEmul::_posCursPre, 1);
  EXPECT_FALSE(trace.has("ZetNorvEmul STOP"));
  const Received received = receive("live");
  EXPECT_EQ(received.result, S_OK);
  EXPECT_TRUE(trace.has("ZetNorvEmul STOP"));
  EXPECT_EQ(received.bytes, "live");
  EXPECT_TRUE(untouched());
}

TEST_F(ZetNorvEmulTest, ScanLeavesAnswersAlone) {
  mode("SCAN");
  const Received received = receive("live", 3);
  EXPECT_EQ(received.result, S_OK);
  EXPECT_EQ(received.bytes, "live");
  EXPECT_EQ(received.status, 3);
  EXPECT_FALSE(received.replaced);
  EXPECT_TRUE(trace.has("ZetNorvEmul STOP"));
  EXPECT_TRUE(untouched());
}

TEST_F(ZetNorvEmulTest, ABeginningOfAKeywordCountsAsTheKeyword) {
  mode("SAV");
  EXPECT_EQ(send(request(12, "x")), S_OK);
  EXPECT_EQ(receive("y").result, S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<12><save12_0.txt>\n");
  EXPECT_EQ(readBytes(scenario("Scenario2.txt")), "<12><rep12_0.txt><0>\n");
}

TEST_F(ZetNorvEmulTest, AnAmbiguousBeginningChecksTheRequestAndSavesTheAnswer) {
  mode("S");
  send(request(12, "x"));
  EXPECT_TRUE(trace.has("run."));
  EXPECT_FALSE(exists(reference("save12_0.txt")));
  EXPECT_EQ(receive("y").result, S_OK);
  EXPECT_EQ(readBytes(reference("rep12_0.txt")), "y");
}

TEST_F(ZetNorvEmulTest, AnEmptyModeReplays) {
  mode("\nSAVE");
  send(request(12, "x"));
  EXPECT_TRUE(trace.has("run."));
}

TEST_F(ZetNorvEmulTest, TheDebugSwitchIsTheModeAndComesFirst) {
  mode("REPLAY");
  environment.set("ZETNORV_CMD", "REPLAY");
  debugMode("SAVE");
  EXPECT_EQ(send(request(12, "x")), S_OK);
  EXPECT_EQ(readBytes(debugReference("save12_0.txt")), request(12, "x"));
}

TEST_F(ZetNorvEmulTest, TheCommandModeComesBeforeTheOrdinaryOne) {
  mode("REPLAY");
  environment.set("ZETNORV_CMD", "SAVE");
  EXPECT_EQ(send(request(12, "x")), S_OK);
  EXPECT_TRUE(trace.has("#### MODE COMMAND ####"));
  EXPECT_EQ(readBytes(reference("save12_0.txt")), request(12, "x"));
}

TEST_F(ZetNorvEmulTest, ADebugSwitchWithoutAValueFailsRequests) {
  mode("SAVE");
  debugMode("");
  EXPECT_EQ(send(request(12, "x")), E_FAIL);
  EXPECT_TRUE(
      trace.has("Problem in ZetNorvToolBox::getModeValue with (ZETNORV_DEBUG): tselection == "
                "NULL."));
  EXPECT_FALSE(exists(debugReference("save12_0.txt")));
}

TEST_F(ZetNorvEmulTest, DebugModeNamesTheExchangeLogOnceFromTheClock) {
  debugMode("PLAY");
  const std::time_t before = std::time(nullptr);
  send(request(12, ""));
  const std::time_t after = std::time(nullptr);
  const auto nameAt = [](std::time_t time) {
    char name[40];
    std::strftime(name, sizeof name, "%d%m-%H%MSNDRCV.log", std::localtime(&time));
    return std::string(name);
  };
  const std::string name = ZetNorvEmul::_date.gchar();
  EXPECT_TRUE(name == nameAt(before) || name == nameAt(after)) << name;
}

TEST_F(ZetNorvEmulTest, ANamedExchangeLogKeepsItsName) {
  debugMode("PLAY");
  ZetNorvEmul::_date.set("1611-0314SNDRCV.log");
  ZetNorvEmul::_posCursPre = 6;
  send(request(321, ""));
  receive("");
  send(request(7, ""));
  EXPECT_EQ(readBytes(debugLog("1611-0314SNDRCV.log")),
            "[SND] Msg 321  (Nb pas : 07) \n"
            "[RCV] Msg 321  (Nb pas : 01) \n"
            "[SND] Msg 007  (Nb pas : 08) \n");
}

TEST_F(ZetNorvEmulTest, DebugModeTracesBothHooksWithTheOperation) {
  debugMode("PLAY");
  send(request(321, ""));
  EXPECT_TRUE(trace.has("ZetNorvEmul::preWensnd321"));
  receive("");
  EXPECT_TRUE(trace.has("ZetNorvEmul::postWensnd321"));
}

TEST_F(ZetNorvEmulTest, AnAnswerBeforeAnyRequestLogsUnderNoName) {
  debugMode("PLAY");
  EXPECT_EQ(receive("").result, S_OK);
  EXPECT_TRUE(ZetNorvEmul::_date.isNull());
}

TEST_F(ZetNorvEmulTest, OutsideDebugModeThereIsNoExchangeLog) {
  mode("SAVE");
  exchange(12, "x", "y");
  EXPECT_TRUE(ZetNorvEmul::_date.isNull());
  EXPECT_EQ(namesIn(scratch.path().string()), std::vector<std::string>{"in"});
}

TEST_F(ZetNorvEmulTest, NullReferencesNeverCrash) {
  for (const char* value : {"SAVE", "REPLAY", "OLDREPLAY", "SCAN", "PLAY"}) {
    mode(value);
    const long result = ZetNorvEmul::postWensnd(0, nullReferenceTo<char*>(),
                                                nullReferenceTo<int*>(), nullReferenceTo<int*>());
    const bool untouchedMode = std::string(value) == "SCAN" || std::string(value) == "PLAY";
    EXPECT_EQ(result, untouchedMode ? S_OK : E_FAIL) << value;
  }
}

TEST_F(ZetNorvEmulTest, AReplayWithoutAPlaceForTheAnswerIsRefusedAndSetsNothing) {
  mode("REPLAY");
  ZetNorvEmul::_nOp = 12;
  writeBytes(scenario("Scenario2.txt"), "<12><a><7>\n");
  writeBytes(reference("a"), "recorded");
  int bytes = 4;
  int state = 5;
  int* size = &bytes;
  int* status = &state;
  EXPECT_EQ(ZetNorvEmul::postWensnd(0, nullReferenceTo<char*>(), size, status), E_FAIL);
  EXPECT_EQ(trace.texts(), Names{"Problem in ZetNorvEmul::postWensnd: answer == NULL"});
  EXPECT_EQ(bytes, 4);
  EXPECT_EQ(state, 5);
}

TEST_F(ZetNorvEmulTest, NullSizeAndStatusNeverCrashAndAreTraced) {
  char* answer = nullptr;
  int* nothing = nullptr;
  mode("SAVE");
  EXPECT_EQ(ZetNorvEmul::postWensnd(0, answer, nothing, nothing), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::postWensnd: size or status == NULL"));
  trace.clear();
  mode("REPLAY");
  EXPECT_EQ(ZetNorvEmul::postWensnd(0, answer, nothing, nothing), E_FAIL);
  EXPECT_TRUE(trace.has("Problem in ZetNorvEmul::postWensnd: size or status == NULL"));
  EXPECT_EQ(answer, nullptr);
}

TEST_F(ZetNorvEmulTest, DebugModeTellsTheStepsOfBothHooksInTheirOrder) {
  debugMode("PLAY");
  ZetNorvEmul::_date.set("log");
  const Names log = logLines("log");
  send(request(321, ""));
  EXPECT_EQ(trace.texts(), (Names{"[nOp] 321", "ZetNorvEmul::preWensnd321", log[0], log[1], log[2],
                                  "ZetNorvEmul STOP"}));
  EXPECT_EQ(levels(), std::vector<int>{2});
  trace.clear();
  receive("");
  EXPECT_EQ(trace.texts(),
            (Names{"ZetNorvEmul::postWensnd321", log[0], log[1], log[2], "ZetNorvEmul STOP"}));
  EXPECT_EQ(levels(), (std::vector<int>{1, 2}));
}

TEST_F(ZetNorvEmulTest, ACallWithoutAModeHasItsLineInTheExchangeLogToo) {
  debugMode("");
  ZetNorvEmul::_date.set("log");
  EXPECT_EQ(send(request(12, "")), E_FAIL);
  EXPECT_EQ(receive("").result, S_OK);
  EXPECT_EQ(readBytes(debugLog("log")),
            "[SND] Msg 012  (Nb pas : 01) \n[RCV] Msg 012  (Nb pas : 01) \n");
}

}  // namespace
