// The table's search by column and value.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "KelLib.h"
#include "RecordText.h"
#include "TraceRecorder.h"
#include "ZetNorvDb_Table.h"

namespace {

class ZetNorvDb_TableSearchTest : public testing::Test {
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
  ZetNorvDb_Table database{
      10, MString("coid,compid,partNumber,name,pathFile,uuid,table,type,timestamp,info")};
  ZetNorvDb_Record out{1, MString("before"), 0};
};

TEST_F(ZetNorvDb_TableSearchTest, SearchFindsEveryColumnByItsName) {
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

TEST_F(ZetNorvDb_TableSearchTest, ColumnNameNeedOnlyBeABeginningOfTheColumnAskedFor) {
  database.addRecord(MString("a,b,c"));
  EXPECT_EQ(S_OK, search("partNumberOfTheObject", "c"));
  EXPECT_EQ(E_FAIL, search("partNum", "c"));
}

TEST_F(ZetNorvDb_TableSearchTest, EmptyColumnNameMatchesAnyColumnAskedFor) {
  ZetNorvDb_Table table(3, MString("x,y,z"));
  table.setData(1, MString(""));
  table.addRecord(MString("a,b,c"));
  EXPECT_EQ(S_OK, table.getRecord("unknown", "b", out, 0));
  EXPECT_EQ(E_FAIL, table.getRecord("z", "c", out, 0));
}

TEST_F(ZetNorvDb_TableSearchTest, SearchOfAnUnknownColumnTracesTheQuestionOnly) {
  database.addRecord(MString("a,b"));
  for (const char* column : {"unknown", ""}) {
    TraceRecorder trace;
    EXPECT_EQ(E_FAIL, search(column, "a", 1));
    EXPECT_EQ(
        (std::vector<std::string>{"## Informations: ", column, "a", "Valeur de la colonne k: -1"}),
        trace.texts());
  }
  EXPECT_EQ("before", recordText(out));
  EXPECT_EQ("NULL", markText(database));
}

TEST_F(ZetNorvDb_TableSearchTest, SearchForNullFindsNothing) {
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
  EXPECT_EQ("before", recordText(out));
}

TEST_F(ZetNorvDb_TableSearchTest, FieldMatchesWhenItIsABeginningOfTheValue) {
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
    EXPECT_EQ(c.expected == S_OK ? "read" : "NULL", markText(table));
  }
}

TEST_F(ZetNorvDb_TableSearchTest, SearchStopsAtTheFirstMatchThatIsNoReference) {
  database.addRecord(MString("K,first,p,n,other"));
  database.addRecord(MString("K,second,p,n,file.KelPart"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, search("coid", "K", 1));
  EXPECT_EQ("K|first|p|n|other|NULL|NULL|NULL|NULL|NULL", recordText(out));
  EXPECT_EQ("read,NULL", markText(database));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "K", "Valeur de la colonne k: 0",
                                      "ligne trouve en i 0"}),
            trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST_F(ZetNorvDb_TableSearchTest, SearchPassesAReferenceWhenAnotherRowFollows) {
  database.addRecord(MString("K,first,p,n,Reference"));
  database.addRecord(MString("L,between,p,n,x"));
  database.addRecord(MString("K,second,p,n,x"));
  database.addRecord(MString("K,third,p,n,x"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, search("coid", "K", 1));
  EXPECT_EQ("K|second|p|n|x|NULL|NULL|NULL|NULL|NULL", recordText(out));
  EXPECT_EQ("read,NULL,read,NULL", markText(database));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "K", "Valeur de la colonne k: 0",
                                      "ligne trouve en i 0", "ligne trouve en i 2"}),
            trace.texts());
}

TEST_F(ZetNorvDb_TableSearchTest, SearchGivesTheLastReferenceAndSaysThatItFoundNothing) {
  database.addRecord(MString("K,first,p,n,Reference"));
  database.addRecord(MString("K,second,p,n,Reference"));
  database.addRecord(MString("L,third,p,n,x"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, search("coid", "K", 1));
  EXPECT_EQ("K|second|p|n|Reference|NULL|NULL|NULL|NULL|NULL", recordText(out));
  EXPECT_EQ((std::vector<std::string>{"## Informations: ", "coid", "K", "Valeur de la colonne k: 0",
                                      "ligne trouve en i 0", "ligne trouve en i 1",
                                      "Rien dans la base. "}),
            trace.texts());
}

TEST_F(ZetNorvDb_TableSearchTest, BeginningOfReferenceCountsAsReference) {
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

TEST_F(ZetNorvDb_TableSearchTest, ShortRowsDoNotEndTheSearch) {
  ids.addRecord(MString("K,first"));
  ids.addRecord(MString("K,second"));
  TraceRecorder trace;
  EXPECT_EQ(S_OK, ids.getRecord("identifier", "K", out, 1));
  EXPECT_EQ("K|second", recordText(out));
  EXPECT_TRUE(trace.has("Rien dans la base. "));
  EXPECT_EQ("read,read", markText(ids));
}

TEST_F(ZetNorvDb_TableSearchTest, RowOfFourFieldsGoesOnAndOneOfFiveStops) {
  add(database, "K,four,p,n", 4);
  add(database, "K,five,p,n,x", 5);
  add(database, "K,last,p,n,x", 5);
  EXPECT_EQ(S_OK, search("coid", "K"));
  EXPECT_EQ("K|five|p|n|x", recordText(out));
  EXPECT_EQ("read,read,NULL", markText(database));
}

TEST_F(ZetNorvDb_TableSearchTest, SearchPassesRowsWithoutTheColumn) {
  ZetNorvDb_Record none;
  database.add(none);
  add(database, "a,b", 2);
  add(database, "a,b,c", 3);
  EXPECT_EQ(S_OK, search("partNumber", "c"));
  EXPECT_EQ("a|b|c", recordText(out));
  EXPECT_EQ("NULL,NULL,read", markText(database));
}

TEST_F(ZetNorvDb_TableSearchTest, SearchPassesRowsWhoseMarkHasNoField) {
  database.addRecord(MString("K,first,p,n,x"));
  database.addRecord(MString("K,second,p,n,x"));
  database._marks[0]->Release();
  EXPECT_EQ(S_OK, search("coid", "K"));
  EXPECT_STREQ("second", out._data[1].gchar());
}

TEST_F(ZetNorvDb_TableSearchTest, SearchWithoutAMatchSaysSo) {
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, search("pathFile", "x", 1));
  const std::vector<std::string> expected{"## Informations: ", "pathFile", "x",
                                          "Valeur de la colonne k: 4", "Rien dans la base. "};
  EXPECT_EQ(expected, trace.texts());
  trace.clear();
  database.addRecord(MString("a,b,c,d,e"));
  EXPECT_EQ(E_FAIL, search("pathFile", "x", 1));
  EXPECT_EQ(expected, trace.texts());
  EXPECT_EQ("before", recordText(out));
  EXPECT_EQ("NULL", markText(database));
}

TEST_F(ZetNorvDb_TableSearchTest, SearchTracesForTheValueOneOnly) {
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

TEST_F(ZetNorvDb_TableSearchTest, ValueMayBeAFieldOfTheResult) {
  database.addRecord(MString("K,first,p,n,Reference"));
  database.addRecord(MString("K,second,p,n,Reference"));
  out = *database._rows[0];
  EXPECT_EQ(S_OK, search("coid", out._data[0].gchar()));
  EXPECT_STREQ("second", out._data[1].gchar());
}

TEST_F(ZetNorvDb_TableSearchTest, ResultIsACopy) {
  database.addRecord(MString("K,first,p,n,x"));
  search("coid", "K");
  out.setData(0, MString("changed"));
  EXPECT_STREQ("K", database._rows[0]->_data[0].gchar());
}

}  // namespace
