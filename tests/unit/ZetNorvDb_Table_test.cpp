#include "ZetNorvDb_Table.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

namespace {

constexpr const char* kDatabaseHeader =
    "coid,compid,partNumber,name,pathFile,uuid,table,type,timestamp,info";

// The fields of a record, joined by '|'; a null field reads "(null)".
std::string text(const ZetNorvDb_Record& record) {
  std::string joined;
  for (int i = 0; i < record.getSize(); ++i) {
    if (i > 0) joined += '|';
    const char* field = record._data[i].gchar();
    joined += field == nullptr ? "(null)" : field;
  }
  return joined;
}

std::string row(const ZetNorvDb_Table& table, int i) {
  ZetNorvDb_Record record;
  return table.getRecord(i, record) == S_OK ? text(record) : "(no row)";
}

std::vector<std::string> marks(const ZetNorvDb_Table& table) {
  std::vector<std::string> all;
  for (int i = 0; i < table.getSize(); ++i) {
    all.push_back(table._marks[i] == nullptr ? "(no mark)" : text(*table._marks[i]));
  }
  return all;
}

// Puts a null slot where a refused allocation leaves one.
void refuse(ZetNorvDb_Record*& slot) {
  delete slot;
  slot = nullptr;
}

// What the tables of the library looked like when it had been loaded.
struct Loaded {
  int rows;
  int capacity;
  std::string header;

  explicit Loaded(const ZetNorvDb_Table& table)
      : rows(table.getSize()), capacity(table._capacity), header(text(table)) {}
};
const Loaded loadedDatabase(ZetNorvDb::_database);
const Loaded loadedIds(ZetNorvEmul::_ids);
const Loaded loadedIdsRef(ZetNorvEmul::_idsRef);
const bool loadedNamesNull = ZetNorvDb::_refFile.isNull() && ZetNorvDb::_path.isNull() &&
                             ZetNorvDb::_copyFile.isNull() && ZetNorvDb::_S_PART_NUMBER.isNull() &&
                             ZetNorvEmul::_date.isNull();

class ZetNorvDb_TableTest : public testing::Test {
 protected:
  // Adds a row of its own fields, cut at commas.
  void add(ZetNorvDb_Table& table, const char* line, int fields) {
    ZetNorvDb_Record record(fields, MString(line), 0);
    ASSERT_EQ(S_OK, table.add(record));
  }

  long search(const char* column, const char* value, int trace = 0) {
    return database.getRecord(column, value, out, trace);
  }

  ZetNorvDb_Table ids{2, MString("identifier,info")};
  ZetNorvDb_Table database{10, MString(kDatabaseHeader)};
  ZetNorvDb_Record out{1, MString("before"), 0};
};

TEST_F(ZetNorvDb_TableTest, LibraryTablesAreBuiltWhenItIsLoaded) {
  EXPECT_EQ("coid|compid|partNumber|name|pathFile|uuid|table|type|timestamp|info",
            loadedDatabase.header);
  EXPECT_EQ("identifier|info", loadedIds.header);
  EXPECT_EQ("identifier|info", loadedIdsRef.header);
  for (const Loaded& table : {loadedDatabase, loadedIds, loadedIdsRef}) {
    EXPECT_EQ(0, table.rows);
    EXPECT_EQ(3, table.capacity);
  }
}

TEST_F(ZetNorvDb_TableTest, LibraryNamesStartAsNullStrings) { EXPECT_TRUE(loadedNamesNull); }

TEST_F(ZetNorvDb_TableTest, HasNothingWhenBuiltFromNothing) {
  ZetNorvDb_Table table;
  EXPECT_EQ(0, table._nbData);
  EXPECT_EQ(nullptr, table._rows);
  EXPECT_EQ(nullptr, table._marks);
  EXPECT_EQ(0, table._capacity);
  EXPECT_EQ(0, table.getSize());
  EXPECT_EQ(E_FAIL, table.getStructure(out));
  EXPECT_EQ("before", text(out));
}

TEST_F(ZetNorvDb_TableTest, StartsWithItsHeaderAndThreeEmptySlots) {
  EXPECT_EQ(0, ids.getSize());
  EXPECT_EQ(3, ids._capacity);
  ASSERT_NE(nullptr, ids._rows);
  ASSERT_NE(nullptr, ids._marks);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(nullptr, ids._rows[i]);
    EXPECT_EQ(nullptr, ids._marks[i]);
  }
  EXPECT_EQ(S_OK, ids.getStructure(out));
  EXPECT_EQ("identifier|info", text(out));
}

TEST_F(ZetNorvDb_TableTest, HeaderTextIsLeftAlone) {
  const MString header("a,b");
  const ZetNorvDb_Table table(2, header);
  EXPECT_STREQ("a,b", header.gchar());
}

TEST_F(ZetNorvDb_TableTest, StructureIsACopy) {
  ids.getStructure(out);
  out.setData(0, MString("changed"));
  EXPECT_EQ("identifier|info", text(ids));
}

TEST_F(ZetNorvDb_TableTest, GrowsByOneSlotWheneverItIsFull) {
  const int expected[] = {3, 3, 3, 4, 5, 6};
  for (const int capacity : expected) {
    ASSERT_EQ(S_OK, ids.addRecord(MString("a,b")));
    EXPECT_EQ(capacity, ids._capacity);
  }
  EXPECT_EQ(6, ids.getSize());
}

TEST_F(ZetNorvDb_TableTest, GrowsFromNoSlotAtAll) {
  ZetNorvDb_Table table;
  for (int n = 1; n <= 3; ++n) {
    add(table, "a,b", 2);
    EXPECT_EQ(n, table._capacity);
    EXPECT_EQ(n, table.getSize());
  }
  EXPECT_EQ("a|b", row(table, 2));
}

TEST_F(ZetNorvDb_TableTest, GrowingKeepsRowsAndMarks) {
  ids.addRecord(MString("a,1"));
  ids.addRecord(MString("b,2"));
  ids.addRecord(MString("c,3"));
  ids.getRecord("identifier", "b", out, 0);
  ids._rows[0]->setData(1, MString());
  ids.addRecord(MString("d,4"));
  EXPECT_EQ("a|(null)", row(ids, 0));
  EXPECT_EQ("b|2", row(ids, 1));
  EXPECT_EQ("c|3", row(ids, 2));
  EXPECT_EQ("d|4", row(ids, 3));
  EXPECT_EQ((std::vector<std::string>{"NULL", "read", "NULL", "NULL"}), marks(ids));
}

TEST_F(ZetNorvDb_TableTest, AddStoresADeepCopyWithAFreshMark) {
  ZetNorvDb_Record record(2, MString("a,b"), 0);
  EXPECT_EQ(S_OK, ids.add(record));
  record.setData(0, MString("changed"));
  EXPECT_EQ("a|b", row(ids, 0));
  EXPECT_EQ(1, ids._marks[0]->getSize());
  EXPECT_EQ((std::vector<std::string>{"NULL"}), marks(ids));
}

TEST_F(ZetNorvDb_TableTest, AddedRowKeepsItsOwnFieldCount) {
  ZetNorvDb_Record none;
  EXPECT_EQ(S_OK, ids.add(none));
  add(ids, "a,b,c,d", 4);
  ASSERT_EQ(S_OK, ids.getRecord(0, out));
  EXPECT_EQ(0, out.getSize());
  EXPECT_EQ("a|b|c|d", row(ids, 1));
}

TEST_F(ZetNorvDb_TableTest, AddsARowOfItsOwnWhileItGrows) {
  ids.addRecord(MString("a,b"));
  for (int n = 2; n <= 6; ++n) {
    ASSERT_EQ(S_OK, ids.add(*ids._rows[0]));
    EXPECT_EQ("a|b", row(ids, n - 1));
  }
  EXPECT_EQ("a|b", row(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, AddsItsOwnHeaderAsARow) {
  EXPECT_EQ(S_OK, ids.add(ids));
  EXPECT_EQ("identifier|info", row(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, AddRefusesANullReference) {
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, ids.add(nullReferenceTo<ZetNorvDb_Record>()));
  ASSERT_EQ(1u, trace.lines().size());
  EXPECT_EQ("ZetNorvTrace", trace.lines()[0].trace);
  EXPECT_EQ(2, trace.lines()[0].level);
  EXPECT_EQ("MiniDB::add: rc == NULL", trace.lines()[0].text);
  EXPECT_EQ(0, ids.getSize());
  EXPECT_EQ(3, ids._capacity);
}

TEST_F(ZetNorvDb_TableTest, AddRecordCutsALineToTheHeadersFieldCount) {
  struct Case {
    const char* line;
    const char* expected;
  };
  const Case cases[] = {{"a,,b", "a|NULL|b"},
                        {"a,b,c,d", "a|b|c"},
                        {"a", "a|NULL|NULL"},
                        {"", "NULL|NULL|NULL"},
                        {"<a>", "<a>|NULL|NULL"}};
  ZetNorvDb_Table table(3, MString("x,y,z"));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(S_OK, table.addRecord(MString(c.line)));
    EXPECT_EQ(c.expected, row(table, table.getSize() - 1));
  }
}

TEST_F(ZetNorvDb_TableTest, AddRecordFillsTheRemainingColumnsOfTheDatabase) {
  EXPECT_EQ(S_OK, database.addRecord(MString("a,b")));
  EXPECT_EQ("a|b|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL", row(database, 0));
}

TEST_F(ZetNorvDb_TableTest, AddRecordWithoutAHeaderAddsARowWithoutFields) {
  ZetNorvDb_Table table;
  EXPECT_EQ(S_OK, table.addRecord(MString("a,b")));
  EXPECT_EQ(1, table.getSize());
  ASSERT_EQ(S_OK, table.getRecord(0, out));
  EXPECT_EQ(0, out.getSize());
  EXPECT_EQ((std::vector<std::string>{"NULL"}), marks(table));
}

TEST_F(ZetNorvDb_TableTest, AddRecordRefusesANullString) {
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, ids.addRecord(MString()));
  ASSERT_EQ(1u, trace.lines().size());
  EXPECT_EQ("ZetNorvTrace", trace.lines()[0].trace);
  EXPECT_EQ(2, trace.lines()[0].level);
  EXPECT_EQ("MiniDB::addRecord: data == NULL", trace.lines()[0].text);
  EXPECT_EQ(0, ids.getSize());
}

TEST_F(ZetNorvDb_TableTest, GivesRowsAsCopies) {
  ids.addRecord(MString("a,b"));
  EXPECT_EQ(S_OK, ids.getRecord(0, out));
  out.setData(0, MString("changed"));
  EXPECT_EQ("a|b", row(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, FindsNoRowOutsideTheTable) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("a,b"));
  TraceRecorder trace;
  for (const int i : {3, 4, INT_MAX, -1, -2, INT_MIN}) {
    SCOPED_TRACE(i);
    EXPECT_EQ(E_FAIL, ids.getRecord(i, out));
  }
  EXPECT_EQ("before", text(out));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDb_TableTest, FindsNoRowInATableWithoutSlots) {
  const ZetNorvDb_Table table;
  EXPECT_EQ(E_FAIL, table.getRecord(0, out));
  EXPECT_EQ("before", text(out));
}

TEST_F(ZetNorvDb_TableTest, SetsARowAsADeepCopyInItsPlace) {
  ids.addRecord(MString("a,b"));
  ids.addRecord(MString("c,d"));
  const ZetNorvDb_Record* place = ids._rows[1];
  ZetNorvDb_Record record(3, MString("x,y,z"), 0);
  EXPECT_EQ(S_OK, ids.setRecord(1, record));
  record.setData(0, MString("changed"));
  EXPECT_EQ("a|b", row(ids, 0));
  EXPECT_EQ("x|y|z", row(ids, 1));
  EXPECT_EQ(place, ids._rows[1]);
}

TEST_F(ZetNorvDb_TableTest, SetsNoRowOutsideTheTable) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("a,b"));
  ZetNorvDb_Record record(2, MString("x,y"), 0);
  TraceRecorder trace;
  for (const int i : {3, 4, INT_MAX, -1, -2, INT_MIN}) {
    SCOPED_TRACE(i);
    EXPECT_EQ(E_FAIL, ids.setRecord(i, record));
  }
  for (int i = 0; i < 3; ++i) EXPECT_EQ("a|b", row(ids, i));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDb_TableTest, SetsNoRowFromARecordWithoutFields) {
  ids.addRecord(MString("a,b"));
  ZetNorvDb_Record none;
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, ids.setRecord(0, none));
  EXPECT_EQ(E_FAIL, ids.setRecord(0, nullReferenceTo<ZetNorvDb_Record>()));
  EXPECT_EQ("a|b", row(ids, 0));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDb_TableTest, SettingARowFromItselfEmptiesIt) {
  ids.addRecord(MString("a,b"));
  EXPECT_EQ(S_OK, ids.setRecord(0, *ids._rows[0]));
  EXPECT_EQ(0, ids._rows[0]->getSize());
}

TEST_F(ZetNorvDb_TableTest, PrintsHeaderAndRowsAsOneRun) {
  ids.addRecord(MString("a,b"));
  ids.addRecord(MString("c"));
  ConsoleCapture console;
  ids.print();
  EXPECT_EQ("identifierinfoabcNULL", console.text());
}

TEST_F(ZetNorvDb_TableTest, ReleaseEmptiesTheTableAndKeepsTheHeader) {
  for (int i = 0; i < 5; ++i) ids.addRecord(MString("a,b"));
  ids.Release();
  EXPECT_EQ(0, ids.getSize());
  EXPECT_EQ(0, ids._capacity);
  EXPECT_EQ(nullptr, ids._rows);
  EXPECT_EQ(nullptr, ids._marks);
  EXPECT_EQ("identifier|info", text(ids));
  EXPECT_EQ(E_FAIL, ids.getRecord(0, out));
  ids.Release();
  EXPECT_EQ("identifier|info", text(ids));
}

TEST_F(ZetNorvDb_TableTest, FillsAgainAfterReleaseFromOneSlotOn) {
  ids.addRecord(MString("a,b"));
  ids.Release();
  add(ids, "c,d", 2);
  EXPECT_EQ(1, ids._capacity);
  EXPECT_EQ(1, ids.getSize());
  EXPECT_EQ("c|d", row(ids, 0));
  add(ids, "e,f", 2);
  EXPECT_EQ(2, ids._capacity);
}

// A table and its copy share their rows, so one of them must not be destroyed. It lives in plain
// storage; only what it owns alone, its header, is released.
TEST_F(ZetNorvDb_TableTest, CopyHasItsOwnHeaderAndSharesTheRows) {
  ids.addRecord(MString("a,b"));
  alignas(ZetNorvDb_Table) unsigned char storage[sizeof(ZetNorvDb_Table)];
  auto* copy = new (storage) ZetNorvDb_Table(ids);
  EXPECT_EQ("identifier|info", text(*copy));
  EXPECT_NE(ids._data, copy->_data);
  EXPECT_EQ(ids._rows, copy->_rows);
  EXPECT_EQ(ids._marks, copy->_marks);
  EXPECT_EQ(3, copy->_capacity);
  EXPECT_EQ(1, copy->getSize());
  copy->ZetNorvDb_Record::Release();
}

TEST_F(ZetNorvDb_TableTest, AssignmentCopiesTheHeaderAndSharesTheRows) {
  ids.addRecord(MString("a,b"));
  alignas(ZetNorvDb_Table) unsigned char storage[sizeof(ZetNorvDb_Table)];
  auto* target = new (storage) ZetNorvDb_Table();
  EXPECT_EQ(target, &(*target = ids));
  EXPECT_EQ("identifier|info", text(*target));
  EXPECT_NE(ids._data, target->_data);
  EXPECT_EQ(ids._rows, target->_rows);
  EXPECT_EQ(ids._marks, target->_marks);
  EXPECT_EQ(3, target->_capacity);
  EXPECT_EQ(1, target->getSize());
  target->ZetNorvDb_Record::Release();
}

TEST_F(ZetNorvDb_TableTest, AssignmentToItselfEmptiesTheHeaderAndKeepsTheRows) {
  ids.addRecord(MString("a,b"));
  ZetNorvDb_Table& same = ids;
  ids = same;
  EXPECT_EQ(E_FAIL, ids.getStructure(out));
  EXPECT_EQ("a|b", row(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, NullReferenceGivesNoHeader) {
  const ZetNorvDb_Table copy(nullReferenceTo<ZetNorvDb_Table>());
  EXPECT_EQ(E_FAIL, copy.getStructure(out));
  EXPECT_EQ(0, copy.getSize());
  ids.addRecord(MString("a,b"));
  ids = nullReferenceTo<ZetNorvDb_Table>();
  EXPECT_EQ(E_FAIL, ids.getStructure(out));
  EXPECT_EQ("a|b", row(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, SearchFindsEveryColumnByItsName) {
  database.addRecord(MString("c0,c1,c2,c3,c4,c5,c6,c7,c8,c9"));
  struct Case {
    const char* column;
    const char* value;
  };
  const Case cases[] = {{"coid", "c0"},      {"compid", "c1"}, {"partNumber", "c2"}, {"name", "c3"},
                        {"pathFile", "c4"},  {"uuid", "c5"},   {"table", "c6"},      {"type", "c7"},
                        {"timestamp", "c8"}, {"info", "c9"}};
  int index = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.column);
    TraceRecorder trace;
    EXPECT_EQ(S_OK, search(c.column, c.value, 1));
    EXPECT_TRUE(trace.has("Valeur de la colonne k: " + std::to_string(index)));
    EXPECT_EQ(E_FAIL, search(c.column, "other"));
    ++index;
  }
}

TEST_F(ZetNorvDb_TableTest, ColumnNameNeedOnlyBeABeginningOfTheColumnAskedFor) {
  database.addRecord(MString("a,b,c"));
  EXPECT_EQ(S_OK, search("partNumberOfTheObject", "c"));
  EXPECT_EQ(E_FAIL, search("partNum", "c"));
}

TEST_F(ZetNorvDb_TableTest, EmptyColumnNameMatchesAnyColumnAskedFor) {
  ZetNorvDb_Table table(3, MString("x,y,z"));
  table.setData(1, MString(""));
  table.addRecord(MString("a,b,c"));
  EXPECT_EQ(S_OK, table.getRecord("unknown", "b", out, 0));
  EXPECT_EQ(E_FAIL, table.getRecord("z", "c", out, 0));
}

TEST_F(ZetNorvDb_TableTest, SearchOfAnUnknownColumnTracesTheQuestionOnly) {
  database.addRecord(MString("a,b"));
  for (const char* column : {"unknown", ""}) {
    TraceRecorder trace;
    EXPECT_EQ(E_FAIL, search(column, "a", 1));
    EXPECT_EQ(
        (std::vector<std::string>{"## Informations: ", column, "a", "Valeur de la colonne k: -1"}),
        trace.texts());
  }
  EXPECT_EQ("before", text(out));
  EXPECT_EQ((std::vector<std::string>{"NULL"}), marks(database));
}

TEST_F(ZetNorvDb_TableTest, SearchForNullFindsNothing) {
  database.addRecord(MString("a,b"));
  database._rows[0]->setData(0, MString(""));
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, search(nullptr, "a", 1));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "", "a", "Valeur de la colonne k: -1"}),
            trace.texts());
  trace.clear();
  EXPECT_EQ(E_FAIL, search("coid", nullptr, 1));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "", "Valeur de la colonne k: 0",
                                      "Rien dans la base. "}),
            trace.texts());
  EXPECT_EQ("before", text(out));
}

TEST_F(ZetNorvDb_TableTest, FieldMatchesWhenItIsABeginningOfTheValue) {
  struct Case {
    const char* name;
    MString field;
    const char* value;
    long expected;
  };
  const Case cases[] = {{"equal", "AB", "AB", S_OK},          {"beginning", "AB", "ABCD", S_OK},
                        {"value shorter", "AB", "A", E_FAIL}, {"value empty", "AB", "", E_FAIL},
                        {"other", "AB", "CD", E_FAIL},        {"field empty", "", "CD", S_OK},
                        {"both empty", "", "", S_OK},         {"field null", MString(), "CD", S_OK},
                        {"other case", "AB", "abc", E_FAIL}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ZetNorvDb_Table table(1, MString("column"));
    ZetNorvDb_Record record(1, MString("x"), 0);
    record.setData(0, c.field);
    table.add(record);
    EXPECT_EQ(c.expected, table.getRecord("column", c.value, out, 0));
    EXPECT_EQ(c.expected == S_OK ? "read" : "NULL", marks(table)[0]);
  }
}

TEST_F(ZetNorvDb_TableTest, SearchStopsAtTheFirstMatchThatIsNoReference) {
  database.addRecord(MString("K,first,p,n,other"));
  database.addRecord(MString("K,second,p,n,file.KelPart"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, search("coid", "K", 1));
  EXPECT_EQ("K|first|p|n|other|NULL|NULL|NULL|NULL|NULL", text(out));
  EXPECT_EQ((std::vector<std::string>{"read", "NULL"}), marks(database));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "K", "Valeur de la colonne k: 0",
                                      "ligne trouve en i 0"}),
            trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST_F(ZetNorvDb_TableTest, SearchPassesAReferenceWhenAnotherRowFollows) {
  database.addRecord(MString("K,first,p,n,Reference"));
  database.addRecord(MString("L,between,p,n,x"));
  database.addRecord(MString("K,second,p,n,x"));
  database.addRecord(MString("K,third,p,n,x"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, search("coid", "K", 1));
  EXPECT_EQ("K|second|p|n|x|NULL|NULL|NULL|NULL|NULL", text(out));
  EXPECT_EQ((std::vector<std::string>{"read", "NULL", "read", "NULL"}), marks(database));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "K", "Valeur de la colonne k: 0",
                                      "ligne trouve en i 0", "ligne trouve en i 2"}),
            trace.texts());
}

TEST_F(ZetNorvDb_TableTest, SearchGivesTheLastReferenceAndSaysThatItFoundNothing) {
  database.addRecord(MString("K,first,p,n,Reference"));
  database.addRecord(MString("K,second,p,n,Reference"));
  database.addRecord(MString("L,third,p,n,x"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, search("coid", "K", 1));
  EXPECT_EQ("K|second|p|n|Reference|NULL|NULL|NULL|NULL|NULL", text(out));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "K", "Valeur de la colonne k: 0",
                                      "ligne trouve en i 0", "ligne trouve en i 1",
                                      "Rien dans la base. "}),
            trace.texts());
}

TEST_F(ZetNorvDb_TableTest, BeginningOfReferenceCountsAsReference) {
  struct Case {
    const char* name;
    MString pathFile;
    bool goesOn;
  };
  const Case cases[] = {{"Reference", "Reference", true},
                        {"Ref", "Ref", true},
                        {"empty", "", true},
                        {"null", MString(), true},
                        {"longer", "References", false},
                        {"other", "reference", false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    database.Release();
    database.addRecord(MString("K,first"));
    database._rows[0]->setData(4, c.pathFile);
    database.addRecord(MString("K,second,p,n,x"));
    EXPECT_EQ(S_OK, search("coid", "K"));
    EXPECT_STREQ(c.goesOn ? "second" : "first", out._data[1].gchar());
  }
}

TEST_F(ZetNorvDb_TableTest, ShortRowsDoNotEndTheSearch) {
  ids.addRecord(MString("K,first"));
  ids.addRecord(MString("K,second"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, ids.getRecord("identifier", "K", out, 1));
  EXPECT_EQ("K|second", text(out));
  EXPECT_TRUE(trace.has("Rien dans la base. "));
  EXPECT_EQ((std::vector<std::string>{"read", "read"}), marks(ids));
}

TEST_F(ZetNorvDb_TableTest, RowOfFourFieldsGoesOnAndOneOfFiveStops) {
  add(database, "K,four,p,n", 4);
  add(database, "K,five,p,n,x", 5);
  add(database, "K,last,p,n,x", 5);
  EXPECT_EQ(S_OK, search("coid", "K"));
  EXPECT_EQ("K|five|p|n|x", text(out));
  EXPECT_EQ((std::vector<std::string>{"read", "read", "NULL"}), marks(database));
}

TEST_F(ZetNorvDb_TableTest, SearchPassesRowsWithoutTheColumn) {
  ZetNorvDb_Record none;
  database.add(none);
  add(database, "a,b", 2);
  add(database, "a,b,c", 3);
  EXPECT_EQ(S_OK, search("partNumber", "c"));
  EXPECT_EQ("a|b|c", text(out));
  EXPECT_EQ((std::vector<std::string>{"NULL", "NULL", "read"}), marks(database));
}

TEST_F(ZetNorvDb_TableTest, SearchPassesRowsWhoseMarkHasNoField) {
  database.addRecord(MString("K,first,p,n,x"));
  database.addRecord(MString("K,second,p,n,x"));
  database._marks[0]->Release();
  EXPECT_EQ(S_OK, search("coid", "K"));
  EXPECT_STREQ("second", out._data[1].gchar());
}

TEST_F(ZetNorvDb_TableTest, SearchWithoutAMatchSaysSo) {
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, search("pathFile", "x", 1));
  const std::vector<std::string> expected{"## Informations: ", "pathFile", "x",
                                          "Valeur de la colonne k: 4", "Rien dans la base. "};
  EXPECT_EQ(expected, trace.texts());
  trace.clear();
  database.addRecord(MString("a,b,c,d,e"));
  EXPECT_EQ(E_FAIL, search("pathFile", "x", 1));
  EXPECT_EQ(expected, trace.texts());
  EXPECT_EQ("before", text(out));
  EXPECT_EQ((std::vector<std::string>{"NULL"}), marks(database));
}

TEST_F(ZetNorvDb_TableTest, SearchTracesForTheValueOneOnly) {
  database.addRecord(MString("a,b,c,d,Reference"));
  for (const int trace : {0, 2, -1, INT_MAX}) {
    SCOPED_TRACE(trace);
    TraceRecorder recorder;
    EXPECT_EQ(S_OK, search("coid", "a", trace));
    EXPECT_EQ(E_FAIL, search("coid", "x", trace));
    EXPECT_EQ(E_FAIL, search("unknown", "a", trace));
    EXPECT_TRUE(recorder.lines().empty());
  }
}

TEST_F(ZetNorvDb_TableTest, ValueMayBeAFieldOfTheResult) {
  database.addRecord(MString("K,first,p,n,Reference"));
  database.addRecord(MString("K,second,p,n,Reference"));
  out = *database._rows[0];
  EXPECT_EQ(S_OK, search("coid", out._data[0].gchar()));
  EXPECT_STREQ("second", out._data[1].gchar());
}

TEST_F(ZetNorvDb_TableTest, ResultIsACopy) {
  database.addRecord(MString("K,first,p,n,x"));
  search("coid", "K");
  out.setData(0, MString("changed"));
  EXPECT_STREQ("K", database._rows[0]->_data[0].gchar());
}

TEST_F(ZetNorvDb_TableTest, NullRowIsPassedOver) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("K,v"));
  refuse(ids._rows[1]);
  ZetNorvDb_Record record(2, MString("x,y"), 0);
  EXPECT_EQ(E_FAIL, ids.getRecord(1, out));
  EXPECT_EQ("before", text(out));
  EXPECT_EQ(E_FAIL, ids.setRecord(1, record));
  EXPECT_EQ(S_OK, ids.getRecord("identifier", "K", out, 0));
  EXPECT_EQ((std::vector<std::string>{"read", "NULL", "read"}), marks(ids));
  ConsoleCapture console;
  ids.print();
  EXPECT_EQ("identifierinfoKvKv", console.text());
}

TEST_F(ZetNorvDb_TableTest, NullMarkIsPassedOver) {
  for (int i = 0; i < 2; ++i) ids.addRecord(MString("K,v"));
  refuse(ids._marks[0]);
  EXPECT_EQ(S_OK, ids.getRecord("identifier", "K", out, 0));
  EXPECT_EQ((std::vector<std::string>{"(no mark)", "read"}), marks(ids));
}

TEST_F(ZetNorvDb_TableTest, GrowsOverNullSlots) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("K,v"));
  refuse(ids._rows[0]);
  refuse(ids._marks[2]);
  EXPECT_EQ(S_OK, ids.addRecord(MString("L,w")));
  EXPECT_EQ(4, ids.getSize());
  EXPECT_EQ("(no row)", row(ids, 0));
  EXPECT_EQ("K|v", row(ids, 1));
  EXPECT_EQ("L|w", row(ids, 3));
  EXPECT_EQ((std::vector<std::string>{"NULL", "NULL", "(no mark)", "NULL"}), marks(ids));
}

}  // namespace
