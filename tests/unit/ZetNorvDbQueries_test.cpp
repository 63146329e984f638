// The database's queries by identifiers and by path.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Environment.h"
#include "Files.h"
#include "KelLib.h"
#include "LoadedDatabase.h"
#include "RecordText.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace {

using Lines = std::vector<std::string>;

constexpr unsigned char kCoidBytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
constexpr unsigned char kCompidBytes[] = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0A, 0x1B};

// A row with the identifiers that the tests ask for.
constexpr const char* kRow =
    "0123456789ABCDEF,0000000000000A1B,PN-7,Bracket,PN-7.KelPart,3F2A,Indefini,KelPart,"
    "2008-03-12 10:15:30,info";
constexpr const char* kSecondRow =
    "0123456789ABCDEF,0000000000000A1B,PN-8,Second,Reference,UUID BIDON,Reference,Reference,"
    "2009-01-01 00:00:00,info";

// A query by identifiers, as all of them behave.
struct Query {
  const char* firstLine;
  const char* foundLine;
  int column;
  int leastFields;
  std::string answer;  // from kRow
  std::function<long(KelUnicodeString&)> ask;
};

class ZetNorvDbQueriesTest : public testing::Test {
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

  // The database empty again, and the identifiers as they are in kRow.
  void startAgain() {
    ZetNorvDb::_database.Release();
    out = KelUnicodeString("before");
  }

  std::string outText() const { return out.ConvertToChar(); }

  // Debug mode, with its logs under the test's directory.
  std::string debugLog() {
    environment.set("ZETNORV_DEBUG", "SAVE");
    environment.set("App_ErrFile", scratch.file("errors-"));
    environment.set("ZET_LOG_NAME", "T");
    return scratch.file("errors-T/Error/trace.log");
  }

  Environment environment;
  ScratchDirectory scratch;
  LoadedDatabase database;
  ZetNorvDb queries;
  KelDbBinary coid{kCoidBytes, 8};
  KelDbBinary compid{kCompidBytes, 8};
  KelUnicodeString coidText{"0123456789ABCDEF"};
  KelUnicodeString compidText{"0000000000000A1B"};
  KelUnicodeString out{"before"};
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

TEST_F(ZetNorvDbQueriesTest, EveryModeButZeroReadsTheTimeStamp) {
  database.add(kRow);
  for (const int mode : {1, 2, -1}) {
    out = KelUnicodeString("before");
    EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, mode));
    EXPECT_EQ("2008-03-12 10:15:30", outText());
  }
  EXPECT_STREQ("2008-03-12 10:15:30", ZetNorvDb::_database._rows[0]->_data[8].gchar());
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroWritesTheTimeStampOfTheFirstRowOnly) {
  database.add("0000000000000001,0000000000000A1B,a,b,c,d,e,f,g,h");
  database.add(kRow);
  database.add(kSecondRow);
  const std::string first = rowText(ZetNorvDb::_database, 0);
  const std::string third = rowText(ZetNorvDb::_database, 2);
  out = KelUnicodeString("X");
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ("", outText());
  EXPECT_EQ(3, ZetNorvDb::_database.getSize());
  EXPECT_EQ(first, rowText(ZetNorvDb::_database, 0));
  EXPECT_EQ(
      "0123456789ABCDEF|0000000000000A1B|PN-7|Bracket|PN-7.KelPart|3F2A|Indefini|KelPart|X|"
      "info",
      rowText(ZetNorvDb::_database, 1));
  EXPECT_EQ(third, rowText(ZetNorvDb::_database, 2));
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 1));
  EXPECT_EQ("X", outText());
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroTracesALineForEveryRowOfTheObject) {
  database.add(kRow);
  database.add("0000000000000001,0000000000000A1B,a,b,c,d,e,f,g,h");
  database.add(kSecondRow);
  database.add(kSecondRow, 2);
  database.add(kSecondRow, 1);
  database.add(kRow);
  database.refuse(5);
  out = KelUnicodeString("X");
  TraceRecorder trace;
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ((Lines{"ZetNorvDb::getpathFile", "Got the timestamp", "Got the timestamp",
                   "Got the timestamp", "Got the timestamp", ""}),
            trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroWritesAnEmptyTextToTheDebugLog) {
  const std::string log = debugLog();
  database.add(kRow);
  out = KelUnicodeString("X");
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ("", readBytes(log));
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroLeavesRowsWithoutATimeStampAsTheyAre) {
  for (int fields = 2; fields <= 10; ++fields) {
    SCOPED_TRACE(fields);
    startAgain();
    database.add(kRow, fields);
    const std::string before = rowText(ZetNorvDb::_database, 0);
    EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
    EXPECT_EQ("", outText());
    EXPECT_EQ(fields, ZetNorvDb::_database._rows[0]->getSize());
    if (fields < 9) {
      EXPECT_EQ(before, rowText(ZetNorvDb::_database, 0));
    } else {
      EXPECT_STREQ("before", ZetNorvDb::_database._rows[0]->_data[8].gchar());
    }
  }
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroWritesTheTextUpToItsFirstLineFeed) {
  struct Case {
    KelUnicodeString given;
    const char* written;
  };
  const Case cases[] = {{"2010-01-02\nrest", "2010-01-02"},
                        {"\nrest", ""},
                        {"", ""},
                        {KelUnicodeString(), ""},
                        {"<a>,b", "<a>,b"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.written);
    startAgain();
    database.add(kRow);
    out = c.given;
    EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
    EXPECT_STREQ(c.written, ZetNorvDb::_database._rows[0]->_data[8].gchar());
  }
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroOfAnUnknownObjectWritesNothing) {
  database.add("0000000000000001,0000000000000A1B,a,b,c,d,e,f,g,h");
  const std::string before = rowText(ZetNorvDb::_database, 0);
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ("before", outText());
  EXPECT_EQ(before, rowText(ZetNorvDb::_database, 0));
  EXPECT_EQ((Lines{"ZetNorvDb::getpathFile"}), trace.texts());
}

TEST_F(ZetNorvDbQueriesTest, ModeZeroDoesNotWriteTheDatabaseFile) {
  ZetNorvDb::_path = MString(scratch.file("").c_str());
  database.add(kRow);
  out = KelUnicodeString("X");
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ(Lines{}, namesIn(scratch.file("")));
}

TEST_F(ZetNorvDbQueriesTest, ReadsTheTimeStampAsATime) {
  struct Case {
    const char* name;
    const char* timeStamp;
    std::vector<int> expected;
  };
  const Case cases[] = {
      {"whole", "2008-03-12 10:15:30", {2008, 3, 12, 10, 15, 30}},
      {"any separators", "2007/05/03-10x12.59", {2007, 5, 3, 10, 12, 59}},
      {"text behind it", "2008-03-12 10:15:30.999", {2008, 3, 12, 10, 15, 30}},
      {"only a date", "2008-03-12", {2008, 3, 12, 0, 0, 0}},
      {"empty", "", {0, 0, 0, 0, 0, 0}},
      {"no numbers", "abcd-ef-gh ij:kl:mn", {0, 0, 0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    startAgain();
    database.add(kRow);
    database.set(0, 8, MString(c.timeStamp));
    KelTime* time = nullptr;
    ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 1));
    ASSERT_NE(nullptr, time);
    EXPECT_EQ(c.expected,
              (std::vector<int>{time->GetYear(), time->GetMonth(), time->GetDay(), time->GetHour(),
                                time->GetMinute(), time->GetSecond()}));
  }
}

TEST_F(ZetNorvDbQueriesTest, TimeVariantTracesAndLogsAsTheTextVariant) {
  const std::string log = debugLog();
  database.add(kRow);
  KelTime* time = nullptr;
  TraceRecorder trace;
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 1));
  const Lines lines = trace.texts();
  ASSERT_LE(3u, lines.size());
  EXPECT_EQ((Lines{"ZetNorvDb::getpathFile", "Got the timestamp", "2008-03-12 10:15:30"}),
            Lines(lines.begin(), lines.begin() + 3));
  EXPECT_EQ("2008-03-12 10:15:30", readBytes(log));
}

TEST_F(ZetNorvDbQueriesTest, TimeVariantWithModeZeroClearsTheTimeStamp) {
  database.add(kRow);
  KelTime* time = nullptr;
  ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 0));
  ASSERT_NE(nullptr, time);
  EXPECT_EQ(0, time->GetYear());
  EXPECT_EQ(0, time->GetSecond());
  EXPECT_STREQ("", ZetNorvDb::_database._rows[0]->_data[8].gchar());
}

TEST_F(ZetNorvDbQueriesTest, TimeStaysUsableBehindTheCallsOfOtherQueries) {
  database.add(kRow);
  KelTime* time = nullptr;
  ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 1));
  for (const Query& query : allQueries()) query.ask(out);
  EXPECT_EQ(2008, time->GetYear());
  EXPECT_EQ(30, time->GetSecond());
}

TEST_F(ZetNorvDbQueriesTest, TimeOfAnUnknownObjectIsUntouched) {
  KelTime mine(1, 2, 3, 4, 5, 6);
  for (const int mode : {0, 1}) {
    KelTime* time = &mine;
    TraceRecorder trace;
    EXPECT_EQ(E_FAIL, queries.emulgetTimeStamp(coidText, compidText, &time, mode));
    EXPECT_EQ(&mine, time);
    EXPECT_EQ((Lines{"ZetNorvDb::getpathFile"}), trace.texts());
  }
}

TEST_F(ZetNorvDbQueriesTest, TimeWithoutAPlaceForItIsRefused) {
  database.add(kRow);
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL,
            queries.emulgetTimeStamp(coidText, compidText, static_cast<KelTime**>(nullptr), 0));
  EXPECT_EQ((Lines{"ZetNorvDb::emulgetTimeStamp: time == NULL"}), trace.texts());
  EXPECT_STREQ("2008-03-12 10:15:30", ZetNorvDb::_database._rows[0]->_data[8].gchar());
}

// The queries that construct the database read its file when nobody has before.
class ZetNorvDbQueriesLoadTest : public ZetNorvDbQueriesTest {
 protected:
  void SetUp() override {
    ZetNorvDb::_path = MString();
    environment.set("ZETNORV_MODE", "REPLAY");
    environment.set("BIX_ZET_IN", scratch.file("in"));
    environment.set("ZET_LOG_NAME", "T");
    writeBytes(scratch.file("in/T.rec/Scenario/database.txt"),
               "<0123456789ABCDEF><0000000000000A1B><PN-7><Bracket><C:/work/PN-7.KelPart><3F2A>"
               "<Indefini><KelPart><2008-03-12 10:15:30>\n");
  }
};

TEST_F(ZetNorvDbQueriesLoadTest, TimeVariantLoadsTheDatabase) {
  KelTime* time = nullptr;
  ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 1));
  EXPECT_EQ(2008, time->GetYear());
}

TEST_F(ZetNorvDbQueriesLoadTest, FindLoadsTheDatabase) {
  MString pathFile;
  EXPECT_EQ(0, queries.Find("C:/work/PN-7.KelPart", pathFile));
  EXPECT_STREQ("C:/work/PN-7.KelPart", pathFile.gchar());
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

}  // namespace
