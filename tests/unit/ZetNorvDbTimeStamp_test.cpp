// The database's query for time stamps, as text and as time.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DatabaseQueries.h"
#include "Files.h"
#include "KelLib.h"
#include "RecordText.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace {

class ZetNorvDbTimeStampTest : public DatabaseQueries {};

TEST_F(ZetNorvDbTimeStampTest, EveryModeButZeroReadsTheTimeStamp) {
  database.add(kRow);
  for (const int mode : {1, 2, -1}) {
    out = KelUnicodeString("before");
    EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, mode));
    EXPECT_EQ("2008-03-12 10:15:30", outText());
  }
  EXPECT_STREQ("2008-03-12 10:15:30", ZetNorvDb::_database._rows[0]->_data[8].gchar());
}

TEST_F(ZetNorvDbTimeStampTest, ModeZeroWritesTheTimeStampOfTheFirstRowOnly) {
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

TEST_F(ZetNorvDbTimeStampTest, ModeZeroTracesALineForEveryRowOfTheObject) {
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

TEST_F(ZetNorvDbTimeStampTest, ModeZeroWritesAnEmptyTextToTheDebugLog) {
  const std::string log = debugLog();
  database.add(kRow);
  out = KelUnicodeString("X");
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ("", readBytes(log));
}

TEST_F(ZetNorvDbTimeStampTest, ModeZeroLeavesRowsWithoutATimeStampAsTheyAre) {
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

TEST_F(ZetNorvDbTimeStampTest, ModeZeroWritesTheTextUpToItsFirstLineFeed) {
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

TEST_F(ZetNorvDbTimeStampTest, ModeZeroOfAnUnknownObjectWritesNothing) {
  database.add("0000000000000001,0000000000000A1B,a,b,c,d,e,f,g,h");
  const std::string before = rowText(ZetNorvDb::_database, 0);
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ("before", outText());
  EXPECT_EQ(before, rowText(ZetNorvDb::_database, 0));
  EXPECT_EQ((Lines{"ZetNorvDb::getpathFile"}), trace.texts());
}

TEST_F(ZetNorvDbTimeStampTest, ModeZeroDoesNotWriteTheDatabaseFile) {
  ZetNorvDb::_path = MString(scratch.file("").c_str());
  database.add(kRow);
  out = KelUnicodeString("X");
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ(Lines{}, namesIn(scratch.file("")));
}

TEST_F(ZetNorvDbTimeStampTest, ReadsTheTimeStampAsATime) {
  struct Case {
    const char* name;
    const char* timeStamp;
    std::vector<int> expected;
  };
  const Case cases[] = {
      {"whole", "2008-03-12 10:15:30", {2008, 3, 12, 10, 15, 30}},
      {"any separators", "2007/05/03-10x12.59", {2007, 5, 3, 10, 12, 59}},
      {"text behind it", "2008-03-12 10:15:30.999", {2008, 3, 12, 10, 15, 30}},
      {"digits for separators", "2008103212310415130599", {2008, 3, 12, 10, 15, 30}},
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

TEST_F(ZetNorvDbTimeStampTest, TimeVariantTracesAndLogsAsTheTextVariant) {
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

TEST_F(ZetNorvDbTimeStampTest, TimeVariantWithModeZeroClearsTheTimeStamp) {
  database.add(kRow);
  KelTime* time = nullptr;
  ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 0));
  ASSERT_NE(nullptr, time);
  EXPECT_EQ(0, time->GetYear());
  EXPECT_EQ(0, time->GetSecond());
  EXPECT_STREQ("", ZetNorvDb::_database._rows[0]->_data[8].gchar());
}

TEST_F(ZetNorvDbTimeStampTest, TimeStaysUsableBehindOtherQueries) {
  database.add(kRow);
  KelTime* time = nullptr;
  ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 1));
  EXPECT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, out, 0));
  EXPECT_EQ(S_OK, queries.getType(coid, compid, out));
  EXPECT_EQ(2008, time->GetYear());
  EXPECT_EQ(30, time->GetSecond());
}

TEST_F(ZetNorvDbTimeStampTest, TimeOfAnUnknownObjectIsUntouched) {
  KelTime mine(1, 2, 3, 4, 5, 6);
  for (const int mode : {0, 1}) {
    KelTime* time = &mine;
    TraceRecorder trace;
    EXPECT_EQ(E_FAIL, queries.emulgetTimeStamp(coidText, compidText, &time, mode));
    EXPECT_EQ(&mine, time);
    EXPECT_EQ((Lines{"ZetNorvDb::getpathFile"}), trace.texts());
  }
}

TEST_F(ZetNorvDbTimeStampTest, TimeWithoutAPlaceForItIsRefused) {
  database.add(kRow);
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL,
            queries.emulgetTimeStamp(coidText, compidText, static_cast<KelTime**>(nullptr), 0));
  EXPECT_EQ((Lines{"ZetNorvDb::emulgetTimeStamp: time == NULL"}), trace.texts());
  EXPECT_STREQ("2008-03-12 10:15:30", ZetNorvDb::_database._rows[0]->_data[8].gchar());
}

TEST_F(ZetNorvDbTimeStampTest, TimeVariantLoadsTheDatabase) {
  storeForLoading();
  KelTime* time = nullptr;
  ASSERT_EQ(S_OK, queries.emulgetTimeStamp(coidText, compidText, &time, 1));
  EXPECT_EQ(2008, time->GetYear());
}

}  // namespace
