// The database's queries by identifiers and by path.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "DatabaseQueries.h"
#include "Files.h"
#include "KelLib.h"
#include "RecordText.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace {

// A query by identifiers, as all of them behave.
struct Query {
  const char* firstLine;
  const char* foundLine;
  int column;
  int leastFields;
  std::string answer;  // from kRow
  std::function<long(KelUnicodeString&)> ask;
};

class ZetNorvDbQueriesTest : public DatabaseQueries {
 protected:
  std::vector<Query> allQueries() {
    return {
        {"ZetNorvDb::getType", "Got the Type", 7, 2, "KelPart",
         [this](KelUnicodeString& text) { return queries.getType(coid, compid, text); }},
        {"ZetNorvDb::getPartnumber", "Got the Partnumber", 2, 2, "PN-7",
         [this](KelUnicodeString& text) { return queries.getPartnumber(coid, compid, text); }},
        {"ZetNorvDb::getpathFile", "Got the pathFile", 4, 7, "PN-7.KelPart",
         [this](KelUnicodeString& text) {
           return queries.getpathFile(coidText, compidText, text);
         }},
        {"ZetNorvDb::getpathFile", "Got the timestamp", 8, 2, "2008-03-12 10:15:30",
         [this](KelUnicodeString& text) {
           return queries.emulgetTimeStamp(coidText, compidText, text, 1);
         }},
    };
  }
};

TEST_F(ZetNorvDbQueriesTest, AnswersFromTheFirstRowWithBothIdentifiers) {
  for (const Query& query : allQueries()) {
    SCOPED_TRACE(query.foundLine);
    startAgain();
    database.add("0123456789ABCDEF,0000000000000002,a,b,c,d,e,f,g,h");
    database.add("0000000000000001,0000000000000A1B,a,b,c,d,e,f,g,h");
    database.add(kRow);
    database.add(kSecondRow);
    TraceRecorder trace;
    EXPECT_EQ(S_OK, query.ask(out));
    EXPECT_EQ(query.answer, outText());
    EXPECT_EQ((Lines{query.firstLine, query.foundLine, query.answer}), trace.texts());
    for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
  }
}

TEST_F(ZetNorvDbQueriesTest, DoesNotPassReferences) {
  database.add(kSecondRow);
  database.add(kRow);
  EXPECT_EQ(S_OK, queries.getType(coid, compid, out));
  EXPECT_EQ("Reference", outText());
  EXPECT_EQ(S_OK, queries.getpathFile(coidText, compidText, out));
  EXPECT_EQ("Reference", outText());
}

TEST_F(ZetNorvDbQueriesTest, UnknownObjectLeavesTheOutputAndTracesTheQueryOnly) {
  for (const Query& query : allQueries()) {
    SCOPED_TRACE(query.foundLine);
    startAgain();
    TraceRecorder trace;
    EXPECT_EQ(E_FAIL, query.ask(out));
    EXPECT_EQ((Lines{query.firstLine}), trace.texts());
    database.add("0000000000000001,0000000000000A1B,a,b,c,d,e,f,g,h");
    trace.clear();
    EXPECT_EQ(E_FAIL, query.ask(out));
    EXPECT_EQ((Lines{query.firstLine}), trace.texts());
    EXPECT_EQ("before", outText());
  }
}

TEST_F(ZetNorvDbQueriesTest, ComparesIdentifiersWholeAndExactly) {
  struct Case {
    const char* name;
    MString coidField;
    MString compidField;
    long expected;
  };
  const Case cases[] = {
      {"equal", "0123456789ABCDEF", "0000000000000A1B", S_OK},
      {"beginning of the coid", "0123456789ABCD", "0000000000000A1B", E_FAIL},
      {"beginning of the compid", "0123456789ABCDEF", "0000000000000A", E_FAIL},
      {"more than the coid", "0123456789ABCDEF0", "0000000000000A1B", E_FAIL},
      {"more than the compid", "0123456789ABCDEF", "0000000000000A1B ", E_FAIL},
      {"lower case", "0123456789abcdef", "0000000000000a1b", E_FAIL},
      {"empty", "", "", E_FAIL},
      {"null", MString(), MString(), E_FAIL},
      {"null compid", "0123456789ABCDEF", MString(), E_FAIL},
  };
  for (const Query& query : allQueries()) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(query.foundLine) + ", " + c.name);
      startAgain();
      database.add(kRow);
      database.set(0, 0, c.coidField);
      database.set(0, 1, c.compidField);
      EXPECT_EQ(c.expected, query.ask(out));
    }
  }
}

TEST_F(ZetNorvDbQueriesTest, IdentifierWithoutBytesIsAnEmptyField) {
  database.add(kRow);
  database.set(0, 0, MString(""));
  database.set(0, 1, MString());
  coid = KelDbBinary();
  compid = KelDbBinary();
  EXPECT_EQ(S_OK, queries.getType(coid, compid, out));
  EXPECT_EQ("KelPart", outText());
}

TEST_F(ZetNorvDbQueriesTest, ShortRowAnswersWithAnEmptyTextOrIsPassed) {
  for (const Query& query : allQueries()) {
    for (int fields = 0; fields <= 10; ++fields) {
      SCOPED_TRACE(std::string(query.foundLine) + ", fields " + std::to_string(fields));
      startAgain();
      database.add(kRow, fields);
      TraceRecorder trace;
      if (fields < query.leastFields) {
        EXPECT_EQ(E_FAIL, query.ask(out));
        EXPECT_EQ("before", outText());
        EXPECT_EQ((Lines{query.firstLine}), trace.texts());
        continue;
      }
      const std::string expected = fields > query.column ? query.answer : "";
      EXPECT_EQ(S_OK, query.ask(out));
      EXPECT_EQ(expected, outText());
      EXPECT_EQ((Lines{query.firstLine, query.foundLine, expected}), trace.texts());
    }
  }
}

TEST_F(ZetNorvDbQueriesTest, PassedShortRowDoesNotEndTheQuery) {
  database.add(kSecondRow, 6);
  database.add(kRow);
  EXPECT_EQ(S_OK, queries.getpathFile(coidText, compidText, out));
  EXPECT_EQ("PN-7.KelPart", outText());
}

TEST_F(ZetNorvDbQueriesTest, NullFieldAnswersWithAnEmptyText) {
  for (const Query& query : allQueries()) {
    SCOPED_TRACE(query.foundLine);
    startAgain();
    database.add(kRow);
    database.set(0, query.column, MString());
    TraceRecorder trace;
    EXPECT_EQ(S_OK, query.ask(out));
    EXPECT_EQ("", outText());
    EXPECT_EQ((Lines{query.firstLine, query.foundLine, ""}), trace.texts());
  }
}

TEST_F(ZetNorvDbQueriesTest, PassesNullRows) {
  for (const Query& query : allQueries()) {
    SCOPED_TRACE(query.foundLine);
    startAgain();
    database.add(kSecondRow);
    database.add(kRow);
    database.refuse(0);
    EXPECT_EQ(S_OK, query.ask(out));
    EXPECT_EQ(query.answer, outText());
  }
}

TEST_F(ZetNorvDbQueriesTest, WritesTheValueAloneToTheDebugLog) {
  const std::string log = debugLog();
  database.add(kRow);
  std::string expected;
  for (const Query& query : allQueries()) {
    EXPECT_EQ(S_OK, query.ask(out));
    expected += query.answer;
    EXPECT_EQ(expected, readBytes(log));
  }
}

TEST_F(ZetNorvDbQueriesTest, WritesNoLogForAnUnknownObjectOrOutsideDebugMode) {
  database.add(kRow);
  for (const Query& query : allQueries()) EXPECT_EQ(S_OK, query.ask(out));
  EXPECT_EQ(Lines{}, namesIn(scratch.file("")));
  debugLog();
  startAgain();
  for (const Query& query : allQueries()) EXPECT_EQ(E_FAIL, query.ask(out));
  EXPECT_EQ(Lines{}, namesIn(scratch.file("")));
}

TEST_F(ZetNorvDbQueriesTest, OutputMayBeOneOfTheIdentifiers) {
  database.add(kRow);
  EXPECT_EQ(S_OK, queries.getpathFile(coidText, compidText, coidText));
  EXPECT_STREQ("PN-7.KelPart", coidText.ConvertToChar());
}

TEST_F(ZetNorvDbQueriesTest, FindsTheFirstStoredPathThatIsABeginning) {
  struct Case {
    const char* path;
    long result;
    const char* found;
  };
  const Case cases[] = {
      {"C:/work/PN-7.KelPart", 0, "C:/work/PN-7.KelPart"},
      {"C:/work/PN-7.KelPart.old", 0, "C:/work/PN-7.KelPart"},
      {"C:/work/PN-8", 0, "C:/work"},
      {"C:/work/PN-7", 0, "C:/work"},
      {"C:/wor", 1, "before"},
      {"", 1, "before"},
      {nullptr, 1, "before"},
      {"D:/work", 1, "before"},
  };
  database.add("1,1,p,n,C:/work/PN-7.KelPart");
  database.add("2,2,p,n,C:/work");
  database.add("3,3,p,n,C:/work/PN-8");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path == nullptr ? "(null)" : c.path);
    MString pathFile("before");
    TraceRecorder trace;
    EXPECT_EQ(c.result, queries.Find(c.path, pathFile));
    EXPECT_STREQ(c.found, pathFile.gchar());
    EXPECT_TRUE(trace.lines().empty());
  }
  EXPECT_EQ("read,read,NULL", markText(ZetNorvDb::_database));
}

TEST_F(ZetNorvDbQueriesTest, FindsNothingInAnEmptyDatabase) {
  MString pathFile("before");
  EXPECT_EQ(1, queries.Find("C:/work", pathFile));
  EXPECT_STREQ("before", pathFile.gchar());
}

TEST_F(ZetNorvDbQueriesTest, FindGoesOnBehindAStoredPathThatReadsAsAReference) {
  database.add("1,1,p,n,Reference");
  database.add("2,2,p,n,Reference2");
  database.add("3,3,p,n,R");
  MString pathFile;
  EXPECT_EQ(0, queries.Find("Reference22", pathFile));
  EXPECT_STREQ("Reference2", pathFile.gchar());
  EXPECT_EQ(0, queries.Find("Reference3", pathFile));
  EXPECT_STREQ("R", pathFile.gchar());
}

TEST_F(ZetNorvDbQueriesTest, FindTakesAnEmptyStoredPathWhenNoOtherFits) {
  database.add("1,1,p,n,x");
  database.set(0, 4, MString(""));
  database.add("2,2,p,n,C:/work");
  MString pathFile("before");
  EXPECT_EQ(0, queries.Find("D:/other", pathFile));
  EXPECT_STREQ("", pathFile.gchar());
  EXPECT_EQ(0, queries.Find("C:/work/x", pathFile));
  EXPECT_STREQ("C:/work", pathFile.gchar());
}

TEST_F(ZetNorvDbQueriesTest, FindMayWriteItsPathArgument) {
  database.add("1,1,p,n,C:/work");
  MString path("C:/work/x");
  EXPECT_EQ(0, queries.Find(path.gchar(), path));
  EXPECT_STREQ("C:/work", path.gchar());
}

TEST_F(ZetNorvDbQueriesTest, GetRecordSearchesTheDatabase) {
  database.add("1,2,PN-7,Bracket,x");
  ZetNorvDb_Record record;
  TraceRecorder trace;
  EXPECT_EQ(S_OK, queries.getRecord("name", "Bracket", record, 1));
  EXPECT_EQ("1|2|PN-7|Bracket|x|NULL|NULL|NULL|NULL|NULL", recordText(record));
  EXPECT_EQ("read", markText(ZetNorvDb::_database));
  EXPECT_EQ((Lines{"## Informations: ", "name", "Bracket", "Valeur de la colonne k: 3",
                   "ligne trouve en i 0"}),
            trace.texts());
  trace.clear();
  EXPECT_EQ(E_FAIL, queries.getRecord("name", "other", record, 0));
  EXPECT_EQ(E_FAIL, queries.getRecord("unknown", "Bracket", record, 0));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDbQueriesTest, FindLoadsTheDatabase) {
  storeForLoading();
  MString pathFile;
  EXPECT_EQ(0, queries.Find("C:/work/PN-7.KelPart", pathFile));
  EXPECT_STREQ("C:/work/PN-7.KelPart", pathFile.gchar());
}

}  // namespace
