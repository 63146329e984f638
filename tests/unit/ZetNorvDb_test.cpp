// Loading "database.txt" (the constructor).
#include "ZetNorvDb.h"

#include <filesystem>
#include <string>

#include "FaultyFileSystem.h"
#include "ZetNorvDbTest.h"

namespace database_test {
namespace {

TEST_F(ZetNorvDbTest, OutsideReplayTheFileOfTheTemporaryDirectoryIsLoaded) {
  writeBytes(loaded(), row("A") + "\n" + row("B") + "\n");
  writeBytes(recorded(), row("C") + "\n");
  construct();
  ASSERT_EQ(ZetNorvDb::_database.getSize(), 2);
  EXPECT_EQ(field(0, 0), "A");
  EXPECT_EQ(field(1, 0), "B");
}

TEST_F(ZetNorvDbTest, InReplayTheFileOfTheScenarioDirectoryIsLoaded) {
  for (const char* mode : {"REPLAY", "REP"}) {
    DatabaseState::reset();
    environment.set("ZETNORV_MODE", mode);
    writeBytes(loaded(), row("A") + "\n");
    writeBytes(recorded(), row("C") + "\n");
    construct();
    ASSERT_EQ(ZetNorvDb::_database.getSize(), 1) << mode;
    EXPECT_EQ(field(0, 0), "C") << mode;
  }
}

TEST_F(ZetNorvDbTest, OtherModesAreNotReplay) {
  for (const char* mode : {"OLDREPLAY", "SCAN", "SAVE"}) {
    DatabaseState::reset();
    environment.set("ZETNORV_MODE", mode);
    writeBytes(loaded(), row("A") + "\n");
    writeBytes(recorded(), row("C") + "\n");
    construct();
    ASSERT_EQ(ZetNorvDb::_database.getSize(), 1) << mode;
    EXPECT_EQ(field(0, 0), "A") << mode;
  }
}

TEST_F(ZetNorvDbTest, PathIsTheScenarioDirectory) {
  construct();
  EXPECT_STREQ(ZetNorvDb::_path.gchar(), (scratch.file("in") + "\\T1.rec\\Scenario").c_str());
}

TEST_F(ZetNorvDbTest, LoadingFillsTheColumnsPrintsTheRowAndTracesItTwice) {
  writeBytes(loaded(), kReferenceLine);
  const std::string printed = construct();
  ASSERT_EQ(ZetNorvDb::_database.getSize(), 1);
  const Texts columns = {"0C00",       "0003",      "Link1",    "PN-8", "Reference",
                         "UUID BIDON", "Reference", "Instance", kStamp, "(null)"};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(field(0, i), columns[static_cast<std::size_t>(i)]) << i;
  EXPECT_EQ(printed, "0C000003Link1PN-8ReferenceUUID BIDONReferenceInstance" + kStamp);
  // The info field, which the line does not have, is told by the row's printing.
  EXPECT_EQ(trace.texts(),
            (Texts{kReferenceLine.substr(0, kReferenceLine.size() - 1),
                   "0C00,0003,Link1,PN-8,Reference,UUID BIDON,Reference,Instance," + kStamp + ",O",
                   "Problem _data[i] == NULL"}));
}

TEST_F(ZetNorvDbTest, TenthGroupBecomesTheInfo) {
  writeBytes(loaded(), row("A") + "<info><eleventh>\n");
  construct();
  ASSERT_EQ(ZetNorvDb::_database.getSize(), 1);
  EXPECT_EQ(field(0, 9), "info");
}

struct FileLine {
  const char* what;
  std::string text;
  int rows;
};

TEST_F(ZetNorvDbTest, LinesWithoutNineFieldsAreSkippedSilently) {
  const std::string nine = row("A");
  const FileLine cases[] = {
      {"eight groups", "<1><2><3><4><5><6><7><8>\n", 0},
      {"an empty group", "<1><2><3><4><5><><7><8><9>\n", 0},
      {"an empty line", "\n", 0},
      {"no group", "words\n", 0},
      {"an empty file", "", 0},
      {"the last line without a line feed", nine, 1},
      {"a carriage return", nine + "\r\n", 1},
      {"text between the groups", "<1> <2>,<3><4><5><6><7><8><9>\n", 1},
      {"the last group not closed", "<1><2><3><4><5><6><7><8><9\n", 1},
      {"a line behind a skipped one", "<1>\n" + nine + "\n", 1},
  };
  for (const FileLine& line : cases) {
    DatabaseState::reset();
    writeBytes(loaded(), line.text);
    trace.clear();
    construct();
    EXPECT_EQ(ZetNorvDb::_database.getSize(), line.rows) << line.what;
    EXPECT_EQ(trace.texts().empty(), line.rows == 0) << line.what;
  }
}

TEST_F(ZetNorvDbTest, NulEndsTheTextOfItsLineAlone) {
  writeBytes(loaded(),
             std::string("<1>\0<2>\n", 8) + row("A") + "\n" + row("B") + std::string(3, '\0'));
  construct();
  ASSERT_EQ(ZetNorvDb::_database.getSize(), 2);
  EXPECT_EQ(field(0, 0), "A");
  EXPECT_EQ(field(1, 0), "B");
  EXPECT_EQ(field(1, 8), "Stamp");
}

TEST_F(ZetNorvDbTest, TheTableIsAsLargeAsRowsAddedOneByOneMakeIt) {
  std::string text;
  for (int rows = 1; rows < 8; ++rows) {
    DatabaseState::reset();
    text += "<not><whole>\n" + row("A") + "\n";
    writeBytes(loaded(), text);
    construct();
    EXPECT_EQ(ZetNorvDb::_database.getSize(), rows);
    EXPECT_EQ(ZetNorvDb::_database._capacity, rows);
  }
}

TEST_F(ZetNorvDbTest, LinesAroundTheBufferSizeAreReadWhole) {
  for (int length = 1019; length <= 1027; ++length) {
    DatabaseState::reset();
    const std::string rest = "<2><3><4><5><6><7><8><9>";
    const std::string coid(static_cast<std::size_t>(length) - rest.size() - 2, 'c');
    writeBytes(loaded(), "<" + coid + ">" + rest + "\n" + row("next") + "\n");
    construct();
    ASSERT_EQ(ZetNorvDb::_database.getSize(), 2) << length;
    EXPECT_EQ(field(0, 0), coid) << length;
    EXPECT_EQ(field(0, 8), "9") << length;
    EXPECT_EQ(field(1, 0), "next") << length;
  }
}

TEST_F(ZetNorvDbTest, SecondConstructionReadsNothing) {
  writeBytes(loaded(), row("A") + "\n");
  construct();
  trace.clear();
  EXPECT_EQ(construct(), "");
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 1);
  EXPECT_EQ(trace.texts(), Texts{});
}

TEST_F(ZetNorvDbTest, FileThatAppearsAfterTheFirstConstructionIsNotRead) {
  construct();
  writeBytes(loaded(), row("A") + "\n");
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
}

TEST_F(ZetNorvDbTest, MissingFileIsNotReportedBeforeAnythingWasAppended) {
  EXPECT_EQ(construct(), "");
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
  EXPECT_EQ(trace.texts(), Texts{});
  EXPECT_FALSE(ZetNorvDb::_path.isNull());
}

TEST_F(ZetNorvDbTest, MissingFileIsReportedOnceSomethingWasAppended) {
  ZetNorvDb::_nbLoad = 1;
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
  EXPECT_EQ(trace.texts(), (Texts{"Problem in ZetNorvDb::ZetNorvDb with KelFOpen!",
                                  scratch.file("tmp") + "\\database.txt"}));
}

TEST_F(ZetNorvDbTest, DirectoryInPlaceOfTheFileGivesNoRows) {
  std::filesystem::create_directories(loaded());
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
}

TEST_F(ZetNorvDbTest, UnsetTemporaryDirectoryLoadsNothing) {
  environment.unset("BIX_ZET_TMP");
  // Where an empty directory text would lead.
  environment.set("KEL_DRIVE_ROOT", scratch.file("drive"));
  writeBytes(scratch.file("drive/database.txt"), row("A") + "\n");
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
  EXPECT_FALSE(ZetNorvDb::_path.isNull());
}

TEST_F(ZetNorvDbTest, ConstructionWithoutScenarioDirectoryIsReportedAndCanBeRepeated) {
  environment.unset("BIX_ZET_IN");
  writeBytes(loaded(), row("A") + "\n");
  construct();
  EXPECT_TRUE(ZetNorvDb::_path.isNull());
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
  EXPECT_EQ(trace.texts(), (Texts{"Problem (App_SceFile): tselection == NULL.",
                                  "Problem (ZetNorvToolBox::getScePath): E_FAIL."}));

  environment.set("BIX_ZET_IN", scratch.file("in"));
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 1);
}

TEST_F(ZetNorvDbTest, PathGivenUpHalfWayDoesNotPassForALoadedTable) {
  environment.set("ZETNORV_DEBUG", "REPLAY");
  environment.set("App_SceFile", scratch.file("sce/"));
  environment.unset("ZET_LOG_NAME");
  construct();
  EXPECT_TRUE(ZetNorvDb::_path.isNull());
  EXPECT_TRUE(trace.has("Problem (ZetNorvToolBox::getScePath): E_FAIL."));

  environment.set("ZET_LOG_NAME", "T1");
  writeBytes(scratch.file("sce/T1/Scenario/database.txt"), row("A") + "\n");
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 1);
}

TEST_F(ZetNorvDbTest, ReadThatFailsEndsTheLoadWithoutRows) {
  writeBytes(loaded(), row("A") + "\n");
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kRead, 1, FaultyFileSystem::Times::kAlways);
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
}

TEST_F(ZetNorvDbTest, ReadThatFailsInALineGivesNoCutRow) {
  writeBytes(loaded(), row("A") + "\n" + row("B") + "\n");
  const int lineBytes = static_cast<int>(row("A").size()) + 1;
  FaultyFileSystem files;
  files.limitTransfers(1);
  files.fail(FaultyFileSystem::Call::kRead, lineBytes - 3);
  construct();
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
  EXPECT_TRUE(trace.has("Problem in ZetNorvDb::ZetNorvDb with KelFRead!"));
}

TEST_F(ZetNorvDbTest, WhatOneProcessAppendsTheNextOneFinds) {
  stageExample();
  EXPECT_EQ(build(answer(kReference + kDocument)), S_OK);
  DatabaseState::reset();
  environment.set("ZETNORV_MODE", "REPLAY");
  construct();
  ASSERT_EQ(ZetNorvDb::_database.getSize(), 2);
  EXPECT_EQ(field(0, 2), "Link1");
  EXPECT_EQ(field(1, 4), "PN-7.KelPart");
}

TEST_F(ZetNorvDbTest, PartNumberStaticIsLeftAlone) {
  EXPECT_EQ(build(answer(kReference)), S_OK);
  EXPECT_TRUE(ZetNorvDb::_S_PART_NUMBER.isNull());
}

TEST_F(ZetNorvDbTest, LoadingIsTracedAtLevelTwo) {
  writeBytes(loaded(), row("A") + "\n");
  construct();
  DatabaseState::reset();
  std::filesystem::remove(loaded());
  ZetNorvDb::_nbLoad = 1;
  construct();
  DatabaseState::reset();
  environment.unset("BIX_ZET_IN");
  construct();
  ASSERT_EQ(trace.texts().size(), 7u);
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
}

TEST_F(ZetNorvDbTest, RowsThatWereLoadedAreTracedAndPrintedOneAfterTheOther) {
  writeBytes(loaded(), row("A") + "\n<1>\n" + row("B") + "<more>\n");
  EXPECT_EQ(construct(), "A0002PNNameFileUuidTableTypeStampB0002PNNameFileUuidTableTypeStampmore");
  EXPECT_EQ(trace.texts(), (Texts{row("A"), "A,0002,PN,Name,File,Uuid,Table,Type,Stamp,O",
                                  "Problem _data[i] == NULL", row("B") + "<more>",
                                  "B,0002,PN,Name,File,Uuid,Table,Type,Stamp,O"}));
}

}  // namespace
}  // namespace database_test
