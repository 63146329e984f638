// Every operation of the public headers, called with the arguments that old hosts have at hand:
// writable char arrays, literals, strings by value, plain pointers, hooks with and without an
// object. What has to hold is above all that this compiles.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "AttributXML.h"
#include "BaliseXML.h"
#include "Collector.h"
#include "CollectorErrors.h"
#include "Composant.h"
#include "ConsoleCapture.h"
#include "DataAttribut.h"
#include "DataBalise.h"
#include "DataComposant.h"
#include "DataScript.h"
#include "EmulatorFixture.h"
#include "ErrorRecord.h"
#include "Files.h"
#include "KelDbBinary.h"
#include "KelLib.h"
#include "KelTime.h"
#include "KelUnicodeString.h"
#include "MFile.h"
#include "MString.h"
#include "MVar.h"
#include "MVarEnv.h"
#include "Msg.h"
#include "MsgXML.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvDb.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvDb_Table.h"
#include "ZetNorvEmul.h"
#include "ZetNorvMod.h"
#include "ZetNorvScript.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvTrace.h"

namespace {

// A text as a host holds it that never heard of const.
struct Text {
  explicit Text(const std::string& text) : owned(text) { owned.push_back('\0'); }
  operator char*() { return owned.data(); }

  std::string owned;
};

std::string field(ZetNorvDb_Record& row, int i) {
  MString out;
  return row.getData(i, out) == S_OK && !out.isNull() ? out.gchar() : "(none)";
}

// Every class can be made, copied, assigned and destroyed by a host.
template <class T>
constexpr bool kIsPlainClass = std::is_copy_constructible_v<T>&& std::is_copy_assignable_v<T>&&
    std::is_nothrow_destructible_v<T>;

static_assert(kIsPlainClass<AttributXML> && kIsPlainClass<BaliseXML> && kIsPlainClass<Collector> &&
              kIsPlainClass<CollectorErrors> && kIsPlainClass<Composant> &&
              kIsPlainClass<DataAttribut> && kIsPlainClass<DataBalise> &&
              kIsPlainClass<DataComposant> && kIsPlainClass<DataScript> &&
              kIsPlainClass<ErrorRecord> && kIsPlainClass<MFile> && kIsPlainClass<MString> &&
              kIsPlainClass<MVar> && kIsPlainClass<MVarEnv> && kIsPlainClass<Msg> &&
              kIsPlainClass<MsgXML> && kIsPlainClass<ZetNorvBuilders> && kIsPlainClass<ZetNorvDb> &&
              kIsPlainClass<ZetNorvDb_Record> && kIsPlainClass<ZetNorvDb_Table> &&
              kIsPlainClass<ZetNorvEmul> && kIsPlainClass<ZetNorvMod> &&
              kIsPlainClass<ZetNorvScript> && kIsPlainClass<ZetNorvToolBox>);

// The result types that hosts store.
static_assert(std::is_same_v<long, decltype(std::declval<MFile&>().open("", "r"))> &&
              std::is_same_v<int, decltype(std::declval<MString&>() == MString())> &&
              std::is_same_v<void, decltype(std::declval<MString&>() + MString())> &&
              std::is_same_v<void, decltype(std::declval<MVar&>() = MVar())> &&
              std::is_same_v<int, decltype(std::declval<Msg&>() == std::declval<Msg&>())> &&
              std::is_same_v<int, decltype(std::declval<MsgXML&>() == std::declval<MsgXML&>())>);

class PublicInterfaceTest : public EmulatorFixture {
 protected:
  void writeScript(const std::string& entries) {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"),
               "<Scripts>" + entries + "</Scripts>");
  }

  ConsoleCapture console;
};

TEST_F(PublicInterfaceTest, StringsAreMadeAndCompared) {
  Text text("ab\ncd");
  MString line(text);
  MString bytes(text, 5);
  MString copy(bytes);
  MString null;
  EXPECT_EQ(line.glength(), 2);
  EXPECT_EQ(copy.glength(), 5);
  EXPECT_TRUE(null.isNull());

  copy = line;
  copy.set(Text("abc"));
  copy + line;
  copy + "d";
  EXPECT_STREQ(copy.gchar(), "abcabd");
  EXPECT_TRUE(line == copy);
  EXPECT_TRUE(line == "abc");
  EXPECT_TRUE(copy != line);
  EXPECT_TRUE(line.compare(Text("abc")));
  EXPECT_EQ(copy.extract(2), 'c');
  char* writable = copy.substring(0, 2).gchar();
  EXPECT_NE(writable, nullptr);
}

TEST_F(PublicInterfaceTest, StringsAreParsedAndSplit) {
  MString number = "12abc";
  EXPECT_EQ(number.parseInt(), 12);
  EXPECT_EQ(MString(Text(std::string("\x01\0\0\0", 4)), 4).parseSpeInt(), 1);
  EXPECT_EQ(MString("1.5").parseDouble(), 1.5);

  MString list("a;b");
  list.split(';');
  EXPECT_STREQ(list.splitNext().gchar(), "a");
  MString groups("<x><y>");
  groups.spSplit('<', '>');
  MString first = groups.spSplitNext();
  EXPECT_STREQ(first.gchar(), "x");
  groups.cleanParam();
  EXPECT_EQ(groups.tokStart + groups.tokEnd + groups.sep + groups.sepClose, 0);

  list.print();
  list.println();
  EXPECT_EQ(console.text(), "a;ba;b\n");
}

TEST_F(PublicInterfaceTest, FilesAreWrittenAndRead) {
  Text name(scratch.file("file"));
  char mode[] = "w";
  MFile file;
  ASSERT_EQ(file.open(name, mode), S_OK);
  EXPECT_EQ(file.puts(Text("line\n")), S_OK);
  EXPECT_EQ(file.write(Text("rest"), 4), S_OK);
  EXPECT_EQ(file.close(), S_OK);

  ASSERT_EQ(file.open(name, "r"), S_OK);
  MFile shared;
  shared = file;
  char buffer[16] = "";
  EXPECT_EQ(shared.gets(buffer, 16), S_OK);
  EXPECT_STREQ(buffer, "line\n");
  EXPECT_EQ(shared.read(buffer, 1), S_OK);
  MString tail;
  EXPECT_EQ(shared.gets(&tail), S_OK);
  EXPECT_STREQ(tail.gchar(), "est");
  EXPECT_EQ(shared.eof(), 0);
  EXPECT_EQ(shared.close(), S_OK);

  char* content = nullptr;
  int size = 0;
  EXPECT_EQ(file.save(name, Text("whole"), 5), S_OK);
  EXPECT_EQ(file.load(MString(name), content, size), S_OK);
  EXPECT_EQ(std::string(content, static_cast<std::size_t>(size)), "whole");
  delete[] content;
}

TEST_F(PublicInterfaceTest, CharacterMessagesAreMadeComparedAndPrinted) {
  Composant none;
  Composant composant(Text("Field"), Text("bytes"), 5, 1, Text("S"));
  Composant copy(composant);
  none = copy;
  EXPECT_EQ(none == composant, 1);

  Msg left;
  Msg right;
  left.add(composant);
  right.add(Composant("Field", "bytes", 5, 1, "S"));
  EXPECT_TRUE(left == right);
  EXPECT_EQ(left._nbComposants, 1);
  EXPECT_EQ(left._capacity, 5);
  EXPECT_EQ(left._composants[0]->_size, 5);
  left.print();
  composant.print();
  EXPECT_EQ(console.text(), "FieldSbytes\nFieldSbytes\n");
}

TEST_F(PublicInterfaceTest, VariablesAreCollected) {
  MVar empty;
  MVar named(Text("LG"));
  MVar valued(Text("LG"), 7);
  MVar copy(valued);
  empty = copy;
  named.set(Text("SIZE"), 3);
  EXPECT_EQ(empty.getValue(), 7);
  MString name = named.getName();
  EXPECT_STREQ(name.gchar(), "SIZE");

  Collector collector;
  collector.add(valued);
  collector.add(MVar("X", 1));
  collector.add("Y");
  EXPECT_EQ(collector.find("LGTOT"), 7);
  EXPECT_EQ(collector.find(MString("Y")), 0);
  EXPECT_EQ(collector._nbVars, 3);
  EXPECT_EQ(collector._capacity, 3);
  named.println();
  collector.print();
  EXPECT_EQ(console.text(), "Var : SIZE ==> 3\nVar : LG ==> 7\nVar : X ==> 1\nVar : Y ==> 0\n");
}

TEST_F(PublicInterfaceTest, TagsAreMadeAndLookedUp) {
  AttributXML none;
  AttributXML attribut(Text("Type"), Text("Part"));
  AttributXML copy(attribut);
  none = copy;
  EXPECT_EQ(none == attribut, 1);
  EXPECT_STREQ(none.getValue().gchar(), "Part");

  BaliseXML tag(Text("Document"));
  tag.addAttributP(attribut);
  tag.addAttributP(AttributXML("Name", "N"));
  tag.addChildP(BaliseXML("Child"));
  tag.addChildP("x");
  BaliseXML other = "Other";
  tag.modifChildP(0, &other);
  tag.modifChildP(1, nullptr);
  EXPECT_EQ(tag.getHierarchie(), 0);
  EXPECT_EQ(tag.getNbAttributs(), 2);
  EXPECT_EQ(tag.getNbChildren(), 2);
  BaliseXML* child = tag.getChildP(0);
  EXPECT_STREQ(child->getName().gchar(), "Other");
  EXPECT_STREQ(tag.getChildP(1)->_name.gchar(), "ERROR");
  EXPECT_EQ(tag.getAttributP(1), tag.getAttribut(Text("Name")));
  BaliseXML same(tag);
  EXPECT_EQ(same == tag, 1);
  attribut.print();
  other.print();
  EXPECT_EQ(console.text(), "Type  Part\nOther\n");
}

TEST_F(PublicInterfaceTest, XmlMessagesAreMadeComparedAndPrinted) {
  MsgXML msg;
  msg.add(BaliseXML("E-BOM"));
  msg.add("Document");
  MsgXML copy(msg);
  EXPECT_EQ(copy == msg, 1);
  EXPECT_EQ(msg.getNbBalises(), 2);
  BaliseXML* second = msg.getBalise(1);
  EXPECT_EQ(msg.findBalise(Text("Documents")), second);
  EXPECT_EQ(msg._nbBalises, 2);
  EXPECT_EQ(msg._balise[1], second);
  msg.print();
  msg.writeLog();
  EXPECT_EQ(console.text(), "E-BOM\n");
}

TEST_F(PublicInterfaceTest, FindingsAreCollectedAndLogged) {
  ErrorRecord record(5, Text("name"), Text("details"));
  ErrorRecord same(record);
  EXPECT_EQ(same.code, 5);
  EXPECT_STREQ(same.details.gchar(), "details");

  CollectorErrors findings = 7;
  findings.addError(10, Text("Problem"), Text(" found"));
  EXPECT_EQ(findings.isEmpty(), 0);
  findings.print();
  EXPECT_EQ(console.text(), "Problem found\n");
  EXPECT_EQ(findings.writeLogFile(7, Text("\1\2\3\4text"), 8), S_OK);
  EXPECT_TRUE(exists(scratch.file("error.log")));
}

TEST_F(PublicInterfaceTest, ScriptsAreMadeByHand) {
  DataComposant composant(Text("Body"), 0, Text("$Count"), 1, Text("S"), Text(""));
  DataScript chars(Text("CHAR"));
  EXPECT_EQ(chars.addComposant(&composant), S_OK);
  EXPECT_EQ(chars.addComposant(nullptr), E_FAIL);
  DataComposant* field = chars.getComposant(0);
  EXPECT_STREQ(field->sizeVar.gchar(), "$Count");
  EXPECT_EQ(field->size, 0);
  EXPECT_EQ(field->compare, 1);

  DataBalise balise(Text("Reference"), Text("Document"));
  balise.setAttributs(Text("Name Type"));
  DataScript xml = "XML_";
  EXPECT_EQ(xml.addBalise(&balise), S_OK);
  EXPECT_EQ(xml.addBalise(nullptr), E_FAIL);
  EXPECT_EQ(xml.getSize(), 1);
  DataBalise* tag = xml.getBalise(0);
  EXPECT_STREQ(tag->father.gchar(), "Document");
  EXPECT_EQ(xml.hasBalise("Document", "Reference"), 1);
  EXPECT_EQ(xml.hasBalise(MString("Reference"), MString("Document")), 0);
  EXPECT_STREQ(DataAttribut("Name").name.gchar(), "Name");
}

TEST_F(PublicInterfaceTest, ScriptsAreReadAndMessagesBuilt) {
  writeScript(
      "<MessageChar value='12'><Composant name='F' size='4' compare='1'/></MessageChar>"
      "<MessageXML value='40'><Composant name='Doc' father='Root' attributs='Id'/></MessageXML>");
  ZetNorvScript builder;
  std::unique_ptr<DataScript> chars(builder.buildData(12));
  std::unique_ptr<DataScript> xml(ZetNorvScript::buildData(40));
  ASSERT_NE(chars, nullptr);
  ASSERT_NE(xml, nullptr);

  CollectorErrors findings(12);
  ZetNorvBuilders builders;
  Text plain("fieldmore");
  std::unique_ptr<Msg> msg(builders.builderMessage(plain, 9, chars.get(), &findings));
  ASSERT_NE(msg, nullptr);
  EXPECT_EQ(msg->_nbComposants, 1);

  MsgXML tags;
  const std::string text = request(40, "<Root><Doc Id='0FFFF'><Root/></Doc></Root>");
  EXPECT_EQ(ZetNorvBuilders::builderMessage(text.data(), static_cast<int>(text.size()), xml.get(),
                                            tags, &findings),
            S_OK);
  ZetNorvBuilders::restructMessage(&tags);
  ZetNorvBuilders::checkFather(&tags, xml.get(), &findings);
  ZetNorvBuilders::checkFFFFF(Text("ffff"), &findings);
  EXPECT_EQ(findings._nbRecords, 3);

  ZetNorvDb_Table table(2, "identifier,info");
  EXPECT_EQ(ZetNorvBuilders::extractLogObject(text.data(), static_cast<int>(text.size()), table),
            1);
  EXPECT_EQ(ZetNorvBuilders::extractRefObject(text.data(), static_cast<int>(text.size()), table),
            1);
}

TEST_F(PublicInterfaceTest, TheComparisonRunsWithAndWithoutAnObject) {
  writeScript("<MessageChar value='12'><Composant name='F' size='4' compare='1'/></MessageChar>");
  Text path(scratch.file("recorded"));
  writeBytes(scratch.file("recorded"), "same");
  ZetNorvMod mod;
  EXPECT_EQ(mod.runNorvLike(12, Text("same"), 4, path), S_OK);
  EXPECT_EQ(ZetNorvMod::runNorvLike(12, "same", 4, nullptr), E_FAIL);
}

TEST_F(PublicInterfaceTest, RecordsAndTablesAreFilledAndSearched) {
  char line[] = "a,b";
  ZetNorvDb_Record none;
  ZetNorvDb_Record record(2, line, 0);
  ZetNorvDb_Record copy(record);
  none = copy;
  EXPECT_EQ(none.setData(0, "x"), S_OK);
  EXPECT_EQ(field(none, 0), "x");
  EXPECT_EQ(none.getSize(), 2);
  none.print();
  none.Release();
  EXPECT_EQ(none.getSize(), 0);

  ZetNorvDb_Table table(2, MString("identifier,info"));
  EXPECT_EQ(table.add(record), S_OK);
  EXPECT_EQ(table.addRecord("c,d"), S_OK);
  EXPECT_EQ(table.getStructure(none), S_OK);
  EXPECT_EQ(table.getRecord(1, none), S_OK);
  EXPECT_EQ(table.setRecord(0, none), S_OK);
  EXPECT_EQ(table.getRecord(Text("info"), Text("d"), none, 0), S_OK);
  EXPECT_EQ(field(none, 0), "c");
  EXPECT_EQ(table.getSize(), 2);
  table.print();
  EXPECT_EQ(console.text(), "xbidentifierinfocdcd");
  table.Release();
  EXPECT_EQ(table._capacity, 0);
}

TEST_F(PublicInterfaceTest, TheDatabaseAnswersByIdentifiers) {
  ZetNorvDb::_path = "loaded";
  ASSERT_EQ(
      ZetNorvDb::_database.addRecord(
          "0123456789ABCDEF,0000000000000A1B,PN,N,C:/p,UU,Indefini,KelPart,2008-03-12 10:15:30"),
      S_OK);
  ZetNorvDb db;
  const KelUnicodeString ident("0123456789ABCDEF0000000000000A1B");
  KelDbBinary coid = db.GetCoid(ident);
  KelDbBinary compid = db.GetCompid(ident);
  KelUnicodeString text;
  EXPECT_EQ(db.getType(coid, compid, text), S_OK);
  EXPECT_STREQ(text.ConvertToChar(), "KelPart");
  EXPECT_EQ(db.getPartnumber(coid, compid, text), S_OK);
  EXPECT_STREQ(text.ConvertToChar(), "PN");

  KelUnicodeString coidText = coid.GetHexaValue();
  KelUnicodeString compidText = compid.GetHexaValue();
  EXPECT_EQ(db.getpathFile(coidText, compidText, text), S_OK);
  EXPECT_STREQ(text.ConvertToChar(), "C:/p");
  EXPECT_EQ(db.emulgetTimeStamp(coidText, compidText, text, 1), S_OK);
  KelTime* time = nullptr;
  EXPECT_EQ(db.emulgetTimeStamp(coidText, compidText, &time, 1), S_OK);
  ASSERT_NE(time, nullptr);
  EXPECT_EQ(time->GetDay(), 12);

  char* path = nullptr;
  MString uuid;
  EXPECT_EQ(db.getFile(coid, compid, path, uuid), S_OK);
  EXPECT_STREQ(path, "");
  EXPECT_STREQ(uuid.gchar(), "UU");
  delete[] path;
}

TEST_F(PublicInterfaceTest, TheDatabaseAnswersByNames) {
  ZetNorvDb::_path = "loaded";
  ASSERT_EQ(ZetNorvDb::_database.addRecord("0123456789ABCDEF,0000000000000A1B,PN,N,C:/p"), S_OK);
  ZetNorvDb db;
  KelDbBinary coid;
  KelDbBinary compid;
  EXPECT_EQ(db.getCOIDCOMPID("PN", "", coid, compid), S_OK);
  KelDbBinary found;
  EXPECT_EQ(db.getCOMPID(KelUnicodeString("N"), coid, found), E_FAIL);
  EXPECT_TRUE(found == compid);
  MString stored;
  EXPECT_EQ(db.Find(Text("C:/part"), stored), 0);
  EXPECT_STREQ(stored.gchar(), "C:/p");
  ZetNorvDb_Record row;
  EXPECT_EQ(db.getRecord(Text("name"), Text("N"), row, 0), S_OK);
  EXPECT_EQ(row.getSize(), 10);

  unsigned char hex[] = "00A1ff0G";
  unsigned char bytes[4] = {};
  int length = 8;
  ZetNorvdrhxch(8, hex, length, bytes);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(bytes[1], 0xA1);
}

TEST_F(PublicInterfaceTest, TheDatabaseIsBuiltAndStaged) {
  ZetNorvDb db;
  EXPECT_EQ(db.buildDB(Text("<Answer/>"), 9), S_OK);
  const std::string text = request(321, "<Request><Document FilePath='/none/F'/></Request>");
  EXPECT_EQ(db.buildTemp(Text(text), static_cast<int>(text.size())), S_OK);
  EXPECT_STREQ(ZetNorvDb::_refFile.gchar(), "/none/F");
  EXPECT_STREQ(db._copyFile.gchar(), "F");
}

TEST_F(PublicInterfaceTest, TheHooksAreCalledWithAndWithoutAnObject) {
  mode("SAVE");
  ZetNorvEmul emul;
  Text message(request(5, "text"));
  EXPECT_EQ(ZetNorvEmul::preWensnd(1, message, 8), S_OK);
  EXPECT_EQ(emul.preWensnd(1, message, 8), S_OK);
  EXPECT_EQ(emul.save(6, message, 8), S_OK);
  char* answer = new char[9]();
  int bytes = 9;
  int state = 3;
  int* size = &bytes;
  int* status = &state;
  EXPECT_EQ(ZetNorvEmul::postWensnd(1, answer, size, status), S_OK);
  EXPECT_EQ(emul.postWensnd(1, answer, size, status), S_OK);
  delete[] answer;
  environment.set("App_SceFile", scratch.file(""));
  EXPECT_EQ(emul.saveAnswer(5, message, 8, 0), S_OK);
  EXPECT_EQ(readBytes(scenario("Scenario.txt")),
            "<5><save5_0.txt>\n<5><save5_1.txt>\n<6><save6_0.txt>\n");
  EXPECT_EQ(ZetNorvEmul::_nOp, 5);
  EXPECT_EQ(emul._posCursPre, 2);
  EXPECT_EQ(emul._posCursPost, 2);
}

TEST_F(PublicInterfaceTest, SnapshotsAreSavedAndReplayed) {
  ZetNorvEmul emul;
  int size = 3;
  int ignored = 0;
  EXPECT_EQ(emul.SaveKavFirst(size, ignored, Text("abcdefgh")), S_OK);
  EXPECT_EQ(ZetNorvEmul::_posKavFirst, 1);
  ZetNorvEmul::_posCursPre = 0;
  int allocated = 0;
  char* data = nullptr;
  EXPECT_EQ(ZetNorvEmul::ReplayKavFirst(size, allocated, data), S_OK);
  EXPECT_EQ(allocated, 3);
  EXPECT_EQ(std::memcmp(data, "abc", 3), 0);
  delete[] data;
}

TEST_F(PublicInterfaceTest, TheToolboxTellsModesAndDirectories) {
  debugMode("REPLAY");
  ZetNorvToolBox toolbox;
  MString text;
  EXPECT_EQ(ZetNorvToolBox::getModeValue(text), S_OK);
  EXPECT_STREQ(text.gchar(), "REPLAY");
  EXPECT_EQ(toolbox.inDebugMode(), S_OK);
  EXPECT_EQ(toolbox.inZetMode(), S_OK);
  EXPECT_EQ(toolbox.inReplayMode(), S_OK);
  EXPECT_EQ(toolbox.inOldMode(), E_FAIL);
  EXPECT_EQ(toolbox.getZetName(text), S_OK);
  EXPECT_STREQ(text.gchar(), "case1");
  using Path = long (*)(MString&);
  for (const Path path : {Path(&ZetNorvToolBox::getVarEnvPath), Path(&ZetNorvToolBox::getCfgPath),
                          Path(&ZetNorvToolBox::getRefPath), Path(&ZetNorvToolBox::getScePath),
                          Path(&ZetNorvToolBox::getErrPath)}) {
    text.set("");
    EXPECT_EQ(path(text), S_OK);
    EXPECT_NE(text.glength(), 0);
  }
}

TEST_F(PublicInterfaceTest, TheToolboxLogsAndCopies) {
  debugMode("REPLAY");
  EXPECT_EQ(ZetNorvToolBox::writeLog(Text("line")), S_OK);
  EXPECT_EQ(ZetNorvToolBox::writeLog("own.log", "line"), S_OK);
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("own.log"), Text("line")), S_OK);
  EXPECT_EQ(readBytes(debugLog("own.log")), "lineline");

  writeBytes(scratch.file("source"), "bytes");
  KelUnicodeString target(scratch.file("target").c_str());
  EXPECT_EQ(ZetNorvToolBox::StreamFromEmul(Text(scratch.file("source")), target), S_OK);
  EXPECT_EQ(readBytes(scratch.file("target")), "bytes");

  environment.set("ZETNORV_CONST", "3,7");
  EXPECT_EQ(ZetNorvToolBox::magicTool(7), S_OK);
  EXPECT_EQ(console.text(), "37");
}

TEST_F(PublicInterfaceTest, TheToolboxObjectsAreAssigned) {
  MVarEnv variables;
  MVarEnv others;
  EXPECT_EQ(&(variables = others), &variables);
  ZetNorvToolBox toolbox;
  ZetNorvToolBox another;
  EXPECT_EQ(&(toolbox = another), &toolbox);
}

TEST_F(PublicInterfaceTest, TheTraceTakesLinesOfTheHost) {
  char line[] = "a line of the host";
  ZetNorvTrace.TraPutLN(2, line);
  EXPECT_TRUE(trace.has("a line of the host"));
  EXPECT_STREQ(ZetNorvTrace.GetName(), "ZetNorvTrace");
}

// Several assignments share what they copy: only one of the two may be destroyed. The other is left
// with nothing here, as a host that knows it does.
TEST_F(PublicInterfaceTest, ContainersAreAssigned) {
  Msg msg;
  msg.add(Composant("F", "x", 1, 1, "S"));
  auto* sharedMsg = new Msg;
  delete[] sharedMsg->_composants;
  EXPECT_EQ(&(*sharedMsg = msg), sharedMsg);
  EXPECT_EQ(sharedMsg->_composants, msg._composants);
  sharedMsg->_composants = nullptr;
  delete sharedMsg;

  MsgXML xml;
  xml.add("T");
  auto* sharedXml = new MsgXML;
  delete[] sharedXml->_balise;
  EXPECT_EQ(&(*sharedXml = xml), sharedXml);
  EXPECT_EQ(sharedXml->_balise, xml._balise);
  sharedXml->_balise = nullptr;
  delete sharedXml;
}

}  // namespace
