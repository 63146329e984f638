#include "ZetNorvDb_Table.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "RecordText.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

namespace {

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
      : rows(table.getSize()), capacity(table._capacity), header(recordText(table)) {}
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

  ZetNorvDb_Table ids{2, MString("identifier,info")};
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
  EXPECT_EQ("before", recordText(out));
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
  EXPECT_EQ("identifier|info", recordText(out));
}

TEST_F(ZetNorvDb_TableTest, HeaderTextIsLeftAlone) {
  const MString header("a,b");
  const ZetNorvDb_Table table(2, header);
  EXPECT_STREQ("a,b", header.gchar());
}

TEST_F(ZetNorvDb_TableTest, StructureIsACopy) {
  ids.getStructure(out);
  out.setData(0, MString("changed"));
  EXPECT_EQ("identifier|info", recordText(ids));
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
  EXPECT_EQ("a|b", rowText(table, 2));
}

TEST_F(ZetNorvDb_TableTest, GrowingKeepsRowsAndMarks) {
  ids.addRecord(MString("a,1"));
  ids.addRecord(MString("b,2"));
  ids.addRecord(MString("c,3"));
  ids.getRecord("identifier", "b", out, 0);
  ids._rows[0]->setData(1, MString());
  ids.addRecord(MString("d,4"));
  EXPECT_EQ("a|(null)", rowText(ids, 0));
  EXPECT_EQ("b|2", rowText(ids, 1));
  EXPECT_EQ("c|3", rowText(ids, 2));
  EXPECT_EQ("d|4", rowText(ids, 3));
  EXPECT_EQ("NULL,read,NULL,NULL", markText(ids));
}

TEST_F(ZetNorvDb_TableTest, AddStoresADeepCopyWithAFreshMark) {
  ZetNorvDb_Record record(2, MString("a,b"), 0);
  EXPECT_EQ(S_OK, ids.add(record));
  record.setData(0, MString("changed"));
  EXPECT_EQ("a|b", rowText(ids, 0));
  EXPECT_EQ(1, ids._marks[0]->getSize());
  EXPECT_EQ("NULL", markText(ids));
}

TEST_F(ZetNorvDb_TableTest, AddedRowKeepsItsOwnFieldCount) {
  ZetNorvDb_Record none;
  EXPECT_EQ(S_OK, ids.add(none));
  add(ids, "a,b,c,d", 4);
  ASSERT_EQ(S_OK, ids.getRecord(0, out));
  EXPECT_EQ(0, out.getSize());
  EXPECT_EQ("a|b|c|d", rowText(ids, 1));
}

TEST_F(ZetNorvDb_TableTest, AddsARowOfItsOwnWhileItGrows) {
  ids.addRecord(MString("a,b"));
  for (int n = 2; n <= 6; ++n) {
    ASSERT_EQ(S_OK, ids.add(*ids._rows[0]));
    EXPECT_EQ("a|b", rowText(ids, n - 1));
  }
  EXPECT_EQ("a|b", rowText(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, AddsItsOwnHeaderAsARow) {
  EXPECT_EQ(S_OK, ids.add(ids));
  EXPECT_EQ("identifier|info", rowText(ids, 0));
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
    EXPECT_EQ(c.expected, rowText(table, table.getSize() - 1));
  }
}

TEST_F(ZetNorvDb_TableTest, AddRecordFillsTheRemainingColumnsOfTheDatabase) {
  ZetNorvDb_Table database(
      10, MString("coid,compid,partNumber,name,pathFile,uuid,table,type,timestamp,info"));
  EXPECT_EQ(S_OK, database.addRecord(MString("a,b")));
  EXPECT_EQ("a|b|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL", rowText(database, 0));
}

TEST_F(ZetNorvDb_TableTest, AddRecordWithoutAHeaderAddsARowWithoutFields) {
  ZetNorvDb_Table table;
  EXPECT_EQ(S_OK, table.addRecord(MString("a,b")));
  EXPECT_EQ(1, table.getSize());
  ASSERT_EQ(S_OK, table.getRecord(0, out));
  EXPECT_EQ(0, out.getSize());
  EXPECT_EQ("NULL", markText(table));
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
  EXPECT_EQ("a|b", rowText(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, FindsNoRowOutsideTheTable) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("a,b"));
  TraceRecorder trace;
  for (const int i : {3, 4, INT_MAX, -1, -2, INT_MIN}) {
    SCOPED_TRACE(i);
    EXPECT_EQ(E_FAIL, ids.getRecord(i, out));
  }
  EXPECT_EQ("before", recordText(out));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDb_TableTest, FindsNoRowInATableWithoutSlots) {
  const ZetNorvDb_Table table;
  EXPECT_EQ(E_FAIL, table.getRecord(0, out));
  EXPECT_EQ("before", recordText(out));
}

TEST_F(ZetNorvDb_TableTest, SetsARowAsADeepCopyInItsPlace) {
  ids.addRecord(MString("a,b"));
  ids.addRecord(MString("c,d"));
  const ZetNorvDb_Record* place = ids._rows[1];
  ZetNorvDb_Record record(3, MString("x,y,z"), 0);
  EXPECT_EQ(S_OK, ids.setRecord(1, record));
  record.setData(0, MString("changed"));
  EXPECT_EQ("a|b", rowText(ids, 0));
  EXPECT_EQ("x|y|z", rowText(ids, 1));
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
  for (int i = 0; i < 3; ++i) EXPECT_EQ("a|b", rowText(ids, i));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDb_TableTest, SetsNoRowFromARecordWithoutFields) {
  ids.addRecord(MString("a,b"));
  ZetNorvDb_Record none;
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, ids.setRecord(0, none));
  EXPECT_EQ(E_FAIL, ids.setRecord(0, nullReferenceTo<ZetNorvDb_Record>()));
  EXPECT_EQ("a|b", rowText(ids, 0));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDb_TableTest, SettingARowFromItselfEmptiesIt) {
  ids.addRecord(MString("a,b"));
  const std::unique_ptr<MString[]> before(ids._rows[0]->_data);  // an assignment to itself
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
  EXPECT_EQ("identifier|info", recordText(ids));
  EXPECT_EQ(E_FAIL, ids.getRecord(0, out));
  ids.Release();
  EXPECT_EQ("identifier|info", recordText(ids));
}

TEST_F(ZetNorvDb_TableTest, FillsAgainAfterReleaseFromOneSlotOn) {
  ids.addRecord(MString("a,b"));
  ids.Release();
  add(ids, "c,d", 2);
  EXPECT_EQ(1, ids._capacity);
  EXPECT_EQ(1, ids.getSize());
  EXPECT_EQ("c|d", rowText(ids, 0));
  add(ids, "e,f", 2);
  EXPECT_EQ(2, ids._capacity);
}

// A table and its copy share their rows, so one of them must not be destroyed. It lives in plain
// storage; only what it owns alone, its header, is released.
TEST_F(ZetNorvDb_TableTest, CopyHasItsOwnHeaderAndSharesTheRows) {
  ids.addRecord(MString("a,b"));
  alignas(ZetNorvDb_Table) unsigned char storage[sizeof(ZetNorvDb_Table)];
  auto* copy = new (storage) ZetNorvDb_Table(ids);
  EXPECT_EQ("identifier|info", recordText(*copy));
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
  EXPECT_EQ("identifier|info", recordText(*target));
  EXPECT_NE(ids._data, target->_data);
  EXPECT_EQ(ids._rows, target->_rows);
  EXPECT_EQ(ids._marks, target->_marks);
  EXPECT_EQ(3, target->_capacity);
  EXPECT_EQ(1, target->getSize());
  target->ZetNorvDb_Record::Release();
}

TEST_F(ZetNorvDb_TableTest, AssignmentToItselfEmptiesTheHeaderAndKeepsTheRows) {
  ids.addRecord(MString("a,b"));
  const std::unique_ptr<MString[]> header(ids._data);
  ZetNorvDb_Table& same = ids;
  ids = same;
  EXPECT_EQ(E_FAIL, ids.getStructure(out));
  EXPECT_EQ("a|b", rowText(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, NullReferenceGivesNoHeader) {
  const ZetNorvDb_Table copy(nullReferenceTo<ZetNorvDb_Table>());
  EXPECT_EQ(E_FAIL, copy.getStructure(out));
  EXPECT_EQ(0, copy.getSize());
  ids.addRecord(MString("a,b"));
  const std::unique_ptr<MString[]> header(ids._data);
  ids = nullReferenceTo<ZetNorvDb_Table>();
  EXPECT_EQ(E_FAIL, ids.getStructure(out));
  EXPECT_EQ("a|b", rowText(ids, 0));
}

TEST_F(ZetNorvDb_TableTest, NullRowIsPassedOver) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("K,v"));
  refuse(ids._rows[1]);
  ZetNorvDb_Record record(2, MString("x,y"), 0);
  EXPECT_EQ(E_FAIL, ids.getRecord(1, out));
  EXPECT_EQ("before", recordText(out));
  EXPECT_EQ(E_FAIL, ids.setRecord(1, record));
  EXPECT_EQ(S_OK, ids.getRecord("identifier", "K", out, 0));
  EXPECT_EQ("read,NULL,read", markText(ids));
  ConsoleCapture console;
  ids.print();
  EXPECT_EQ("identifierinfoKvKv", console.text());
}

TEST_F(ZetNorvDb_TableTest, NullMarkIsPassedOver) {
  for (int i = 0; i < 2; ++i) ids.addRecord(MString("K,v"));
  refuse(ids._marks[0]);
  EXPECT_EQ(S_OK, ids.getRecord("identifier", "K", out, 0));
  EXPECT_EQ("(no mark),read", markText(ids));
}

TEST_F(ZetNorvDb_TableTest, GrowsOverNullSlots) {
  for (int i = 0; i < 3; ++i) ids.addRecord(MString("K,v"));
  refuse(ids._rows[0]);
  refuse(ids._marks[2]);
  EXPECT_EQ(S_OK, ids.addRecord(MString("L,w")));
  EXPECT_EQ(4, ids.getSize());
  EXPECT_EQ("(no row)", rowText(ids, 0));
  EXPECT_EQ("K|v", rowText(ids, 1));
  EXPECT_EQ("L|w", rowText(ids, 3));
  EXPECT_EQ("NULL,NULL,(no mark),NULL", markText(ids));
}

TEST_F(ZetNorvDb_TableTest, GrowingReplacesEveryRowAndMarkByACopy) {
  ids.addRecord(MString("a,b"));
  const ZetNorvDb_Record* const first = ids._rows[0];
  ids.addRecord(MString("a,b"));
  ids.addRecord(MString("a,b"));
  EXPECT_EQ(first, ids._rows[0]);
  for (int n = 3; n < 6; ++n) {
    const std::vector<const ZetNorvDb_Record*> rows(ids._rows, ids._rows + n);
    const std::vector<const ZetNorvDb_Record*> marks(ids._marks, ids._marks + n);
    ids.addRecord(MString("a,b"));
    for (int i = 0; i < n; ++i) {
      EXPECT_NE(rows[static_cast<std::size_t>(i)], ids._rows[i]);
      EXPECT_NE(marks[static_cast<std::size_t>(i)], ids._marks[i]);
    }
  }
}

}  // namespace
