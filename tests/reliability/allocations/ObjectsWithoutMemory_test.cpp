// The classes that a host uses by itself, and the database's queries, while memory runs out:
// nothing is thrown, what is refused shows as missing, and the objects stay usable.
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "../FaultedSession.h"
#include "AttributXML.h"
#include "BaliseXML.h"
#include "Collector.h"
#include "CollectorErrors.h"
#include "Composant.h"
#include "DataAttribut.h"
#include "DataBalise.h"
#include "DataComposant.h"
#include "DataScript.h"
#include "FailingAllocations.h"
#include "MFile.h"
#include "MVar.h"
#include "Msg.h"
#include "MsgXML.h"
#include "OwnProcess.h"
#include "QuietConsole.h"
#include "ZetNorvDb.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvDb_Table.h"
#include "ZetNorvMod.h"
#include "ZetNorvScript.h"
#include "ZetNorvToolBox.h"

namespace fault_test {
namespace {

using Times = FailingAllocations::Times;

class ObjectsWithoutMemoryTest : public EmulatorFixture {
 protected:
  // Runs `body` with every request failing in turn, once and for good, until none failed. What it
  // calls within the memory it is given meets the failing requests; the rest of it does not.
  static int sweepCalls(const std::function<void(FailingAllocations&)>& body) {
    int points = 0;
    for (const Times times : {Times::kOnce, Times::kAlways}) {
      for (long nth = 1; !HasFailure(); ++nth) {
        SCOPED_TRACE("request " + std::to_string(nth) +
                     (times == Times::kOnce ? " alone" : " and all behind it"));
        const QuietConsole console;
        const int descriptors = openDescriptors();
        FailingAllocations memory(nth, times);
        body(memory);
        EXPECT_FALSE(memory.hasThrown());
        EXPECT_EQ(openDescriptors(), descriptors);
        if (!memory.hasFailed()) break;
        ++points;
      }
    }
    RecordProperty("points", points);
    return points;
  }
  static int sweep(const std::function<void()>& body) {
    return sweepCalls([&](FailingAllocations& memory) { memory.within(body); });
  }
};

bool isEmptyOr(const MString& text, const char* whole) {
  return text.isNull() || text.glength() == 0 || std::strcmp(text.gchar(), whole) == 0;
}

TEST_F(ObjectsWithoutMemoryTest, StringsLoseWhatTheyGetNoMemoryFor) {
  const int points = sweep([] {
    MString text("first,second");
    MString copy(text);
    copy + MString(",third");
    copy = text;
    copy.set("<a><b>");
    copy.spSplit('<', '>');
    const MString first = copy.spSplitNext();
    text.split(',');
    const MString piece = text.splitNext();
    const MString part = text.substring(0, 3);
    EXPECT_TRUE(text.isNull() || isEmptyOr(part, "firs"));
    EXPECT_TRUE(copy.isNull() || isEmptyOr(first, "a"));
    EXPECT_TRUE(text.isNull() || isEmptyOr(piece, "first"));
    EXPECT_TRUE(text.isNull() == (text.glength() == 0));
    MVar variable("NAME", 7);
    MVar other(variable);
  });
  EXPECT_GT(points, 15);
}

TEST_F(ObjectsWithoutMemoryTest, MessageModelsKeepToWhatTheyHold) {
  const int points = sweep([] {
    Msg message;
    for (int i = 0; i < 20; ++i) message.add(Composant("name", "bytes", 5, 0, "all"));
    Msg copy(message);
    (void)(copy == message);
    MsgXML xml;
    BaliseXML father("father");
    for (int i = 0; i < 12; ++i) {
      BaliseXML child("child");
      child.addAttributP(AttributXML("name", "value"));
      father.addChildP(child);
    }
    xml.add(father);
    MsgXML second(xml);
    for (int i = 0; i < second.getNbBalises(); ++i) {
      const BaliseXML* balise = second.getBalise(i);
      EXPECT_TRUE(balise == nullptr || balise->getNbChildren() <= 12);
    }
  });
  EXPECT_GT(points, 300);
}

TEST_F(ObjectsWithoutMemoryTest, CollectorsAndScriptsKeepToWhatTheyHold) {
  const int points = sweep([] {
    CollectorErrors errors(12);
    for (int i = 0; i < 12; ++i) errors.addError(i, "name", "details");
    CollectorErrors copy(errors);
    DataScript script("XML_");
    for (int i = 0; i < 12; ++i) {
      DataBalise balise("name", "father");
      EXPECT_NE(script.addBalise(&balise), 1);
    }
    DataScript other(script);
    for (int i = 0; i < other.getSize(); ++i) (void)other.getBalise(i);
    EXPECT_LE(other.getSize(), 12);
  });
  EXPECT_GT(points, 200);
}

TEST_F(ObjectsWithoutMemoryTest, TablesKeepToWhatTheyHold) {
  const int points = sweep([] {
    ZetNorvDb_Table table;
    for (int i = 0; i < 4; ++i) {
      ZetNorvDb_Record record(3, MString("a,b,c"), 0);
      const long result = table.add(record);
      EXPECT_TRUE(result == S_OK || result == E_FAIL);
    }
    EXPECT_LE(table.getSize(), 4);
    for (int i = 0; i < table.getSize(); ++i) {
      ZetNorvDb_Record row;
      table.getRecord(i, row);
    }
  });
  EXPECT_GT(points, 100);
}

TEST_F(ObjectsWithoutMemoryTest, FilesAndSettingsAnswerThatTheyFailed) {
  const std::string path = scratch.file("file");
  mode("SAVE");
  const int points = sweep([&] {
    MFile file;
    const long saved = file.save(path.c_str(), "bytes", 5);
    char* bytes = nullptr;
    int size = 0;
    if (saved == S_OK && file.load(MString(path.c_str()), bytes, size) == S_OK) {
      EXPECT_EQ(size, 5);
      EXPECT_STREQ(bytes, "bytes");
    }
    delete[] bytes;
    MString value("");
    ZetNorvToolBox::getModeValue(value);
    ZetNorvToolBox::getRefPath(value);
    ZetNorvToolBox::getScePath(value);
    ZetNorvToolBox::getErrPath(value);
    ZetNorvToolBox::inDebugMode();
  });
  EXPECT_GT(points, 15);
}

TEST_F(ObjectsWithoutMemoryTest, SettingsAreWholeOrFail) {
  struct Setting {
    long (*get)(MString& value);
    std::string whole;
  };
  const auto sweepSettings = [](const std::vector<Setting>& settings) {
    return sweepCalls([&](FailingAllocations& memory) {
      for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.whole);
        MString value;
        long result = S_OK;
        memory.within([&] { result = setting.get(value); });
        if (result == S_OK) {
          EXPECT_STREQ(value.gchar(), setting.whole.c_str());
        } else {
          EXPECT_EQ(result, E_FAIL);
        }
      }
      memory.within([] {
        EXPECT_EQ(ZetNorvToolBox::inReplayMode(), E_FAIL);
        EXPECT_EQ(ZetNorvToolBox::inOldMode(), E_FAIL);
      });
    });
  };
  mode("SAVE");
  EXPECT_GT(sweepSettings({{&ZetNorvToolBox::getModeValue, "SAVE"},
                           {&ZetNorvToolBox::getZetName, "case1"},
                           {&ZetNorvToolBox::getRefPath, "\\in\\case1.rec\\Reference"},
                           {&ZetNorvToolBox::getScePath, "\\in\\case1.rec\\Scenario"},
                           {&ZetNorvToolBox::getCfgPath, "\\in\\Configuration\\"}}),
            30);
  debugMode("SAVE");
  EXPECT_GT(sweepSettings({{&ZetNorvToolBox::getModeValue, "SAVE"},
                           {&ZetNorvToolBox::getRefPath, scratch.file("ref/case1/Reference")},
                           {&ZetNorvToolBox::getScePath, scratch.file("sce/case1/Scenario")},
                           {&ZetNorvToolBox::getErrPath, scratch.file("err/case1/Error")},
                           {&ZetNorvToolBox::getCfgPath, scratch.file("cfg/")},
                           {&ZetNorvToolBox::getVarEnvPath, scratch.file("cfg/varEnv.txt")}}),
            30);
}

TEST_F(ObjectsWithoutMemoryTest, TheMagicToolComesToAnEnd) {
  debugMode("SAVE");
  environment.set("ZETNORV_CONST", "3,7");
  const int points = sweep([] {
    EXPECT_EQ(ZetNorvToolBox::magicTool(5), E_FAIL);
    EXPECT_EQ(ZetNorvToolBox::magicTool(0), E_FAIL);
    const long found = ZetNorvToolBox::magicTool(7);
    EXPECT_TRUE(found == S_OK || found == E_FAIL);
  });
  EXPECT_GT(points, 15);
  const QuietConsole console;
  EXPECT_EQ(ZetNorvToolBox::magicTool(7), S_OK);
}

TEST_F(ObjectsWithoutMemoryTest, LogsAreWrittenToTheirPlaceOrNotAtAll) {
  using Texts = std::vector<std::string>;
  debugMode("SAVE");
  const int points = sweepCalls([this](FailingAllocations& memory) {
    for (const char* name : {"trace.log", "own.log"}) writeBytes(debugLog(name), "");
    const MString own("own.log");
    long traced = S_OK;
    long logged = S_OK;
    memory.within([&] {
      traced = ZetNorvToolBox::writeLog("line\n");
      logged = ZetNorvToolBox::writeLog(own, "line\n");
    });
    EXPECT_EQ(readBytes(debugLog("trace.log")), traced == S_OK ? "line\n" : "");
    EXPECT_EQ(readBytes(debugLog("own.log")), logged == S_OK ? "line\n" : "");
    EXPECT_EQ(namesIn(scratch.file("err")), Texts{"case1"});
    EXPECT_EQ(namesIn(scratch.file("err/case1")), Texts{"Error"});
    EXPECT_EQ(namesIn(scratch.file("err/case1/Error")), (Texts{"own.log", "trace.log"}));
  });
  EXPECT_GT(points, 30);
}

TEST_F(ObjectsWithoutMemoryTest, ScriptsAreBuiltOrNot) {
  writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
  const int points = sweep([] {
    for (const int message : {12, 319, 321, 7}) {
      const std::unique_ptr<DataScript> script(ZetNorvScript::buildData(message));
      EXPECT_TRUE(script == nullptr || script->getSize() <= 3);
    }
  });
  EXPECT_GT(points, 100);
  const std::unique_ptr<DataScript> script(ZetNorvScript::buildData(319));
  ASSERT_NE(script, nullptr);
  EXPECT_EQ(script->getSize(), 3);
}

TEST_F(ObjectsWithoutMemoryTest, ComparingAnswersThatItFailedOrFindsTheSame) {
  writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
  const std::string recorded = scratch.file("recorded");
  const Exchange exchange{kNavigate, 1, 0};
  const std::string message = requestOf(exchange, "", "run");
  writeBytes(recorded, message);
  const int points = sweep([&] {
    ZetNorvMod mod;
    const long result = mod.runNorvLike(kNavigate, message.data(), static_cast<int>(message.size()),
                                        recorded.c_str());
    EXPECT_TRUE(result == S_OK || result == E_FAIL);
  });
  EXPECT_GT(points, 150);
}

TEST_F(ObjectsWithoutMemoryTest, QueriesAnswerTheObjectOrThatThereIsNone) {
  mode("REPLAY");
  writeBytes(scenario("database.txt"), objectLines({kSave, 1, 0}, true));
  const unsigned char coidBytes[] = {0x0C, 0x10};
  const int points = sweep([&] {
    resetEmulator();
    ZetNorvDb database;
    EXPECT_LE(ZetNorvDb::_database.getSize(), 2);
    MString found;
    const long result = database.Find("part1.KelPart", found);
    EXPECT_TRUE(result == 0 || result == 1 || result == E_FAIL) << result;
    EXPECT_TRUE(found.isNull() || std::strcmp(found.gchar(), "part1.KelPart") == 0);
    ZetNorvDb_Record record;
    database.getRecord("3", "PN-1", record, 0);
  });
  EXPECT_GT(points, 50);
  resetEmulator();
  const ZetNorvDb loaded;
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 2);
  KelDbBinary coid(coidBytes, 2);
  KelDbBinary compid(coidBytes, 2);
  KelUnicodeString name("0C1");
  KelUnicodeString other("0003");
  KelUnicodeString out("before");
  const int more = sweep([&] {
    ZetNorvDb queries;
    char* path = nullptr;
    MString uuid;
    queries.getFile(coid, compid, path, uuid);
    delete[] path;
    queries.getType(coid, compid, out);
    queries.getPartnumber(coid, compid, out);
    queries.getpathFile(name, other, out);
    KelTime* time = nullptr;
    queries.emulgetTimeStamp(name, other, &time, 0);
  });
  EXPECT_GT(more, 20);
}

}  // namespace
}  // namespace fault_test
