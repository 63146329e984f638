// Staging documents (buildTemp).
#include <algorithm>
#include <climits>
#include <filesystem>
#include <memory>
#include <string>

#include "FaultyFileSystem.h"
#include "ZetNorvDbStagingTest.h"

namespace staging_test {
namespace {

using Call = FaultyFileSystem::Call;

TEST_F(ZetNorvDbStagingTest, NamedDocumentIsCopiedIntoTheStagingDirectory) {
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "content");
  EXPECT_EQ(staged(), Texts{"PN-7.KelPart"});
  EXPECT_EQ(text(ZetNorvDb::_refFile), source());
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "PN-7.KelPart");
}

TEST_F(ZetNorvDbStagingTest, StepsAreTracedInOrder) {
  const std::string message = request(document(source()));
  EXPECT_EQ(stage(message), S_OK);
  EXPECT_EQ(
      trace.texts(),
      (Texts{"ZetNorvDb::buildTemp Debut",
             "Before CreateMemBufInputSourceFromOstr " + std::to_string(message.size() - 4),
             "buildTemp: recherche Reference", "buildTemp: recherche Document", "Debut de la copie",
             "Nom du fichier a Sauvegarder", "PN-7.KelPart", "Copie des donnees: OK"}));
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
}

TEST_F(ZetNorvDbStagingTest, DrivePathKeepsItsTextAndIsStagedByItsName) {
  writeBytes(scratch.file("drive/work/PN-7.KelPart"), "on the drive");
  EXPECT_EQ(stage(request(document("C:/work/PN-7.KelPart"))), S_OK);
  EXPECT_EQ(text(ZetNorvDb::_refFile), "C:/work/PN-7.KelPart");
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "PN-7.KelPart");
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "on the drive");
}

TEST_F(ZetNorvDbStagingTest, LastOfTwoDocumentsIsTheOneStaged) {
  writeBytes(scratch.file("work/second"), "2");
  EXPECT_EQ(stage(request(document(source()) + document(scratch.file("work/second")))), S_OK);
  EXPECT_EQ(staged(), Texts{"second"});
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "second");
}

TEST_F(ZetNorvDbStagingTest, DocumentWithoutPathDoesNotReplaceTheOneBefore) {
  EXPECT_EQ(stage(request(document(source()) + "<Document Name='n'/>")), S_OK);
  EXPECT_EQ(staged(), Texts{"PN-7.KelPart"});
}

TEST_F(ZetNorvDbStagingTest, RequestWithoutPathStagesNothingAndKeepsTheNames) {
  ZetNorvDb::_refFile.set("ref");
  ZetNorvDb::_copyFile.set("copy");
  EXPECT_EQ(stage(request("<Document Name='n'/><Reference FilePath='" + source() + "'/>")), S_OK);
  EXPECT_EQ(text(ZetNorvDb::_refFile), "ref");
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "copy");
  EXPECT_EQ(trace.texts().back(), "buildTemp: recherche Document");
  EXPECT_FALSE(exists(scratch.file("in")));
}

TEST_F(ZetNorvDbStagingTest, EmptyPathStagesNothing) {
  EXPECT_EQ(stage(request(document(""))), S_OK);
  EXPECT_EQ(text(ZetNorvDb::_refFile), "");
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "(null)");
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: KO");
  EXPECT_EQ(staged(), Texts{});
}

TEST_F(ZetNorvDbStagingTest, MissingSourceIsKoAndStillNamed) {
  EXPECT_EQ(stage(request(document(scratch.file("work/missing")))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: KO");
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "missing");
  EXPECT_EQ(staged(), Texts{});
}

TEST_F(ZetNorvDbStagingTest, DirectoryIsNoSource) {
  EXPECT_EQ(stage(request(document(scratch.file("work")))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: KO");
}

TEST_F(ZetNorvDbStagingTest, EmptySourceIsCopiedEmpty) {
  writeBytes(scratch.file("work/empty"), "");
  EXPECT_EQ(stage(request(document(scratch.file("work/empty")))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK");
  EXPECT_EQ(readBytes(staging() + "/empty"), "");
}

TEST_F(ZetNorvDbStagingTest, EveryByteIsCopied) {
  std::string bytes;
  for (int i = 0; i < 70000; ++i) bytes.push_back(static_cast<char>(i));
  writeBytes(source(), bytes);
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), bytes);
}

TEST_F(ZetNorvDbStagingTest, CopyReplacesTheOneBefore) {
  writeBytes(staging() + "/PN-7.KelPart", "an older and longer copy");
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "content");
}

struct Name {
  const char* path;
  const char* name;
};

TEST_F(ZetNorvDbStagingTest, NameOfADocumentThatCannotBeReadIsWhatFollowsTheLastSlash) {
  const Name cases[] = {
      {"a/b/c.KelPart", "c.KelPart"},
      {"a/x", "x"},  // one character is enough
      {"/x", "x"},
      {"a\\b/c\\d", "c\\d"},
      {"a/", "(null)"},
      {"/", "(null)"},
      // Without a '/' the first character is lost.
      {"PN-7", "N-7"},
      {"C:\\work\\PN-7", ":\\work\\PN-7"},
      {"ab", "b"},
      {"a", "(null)"},
      {"..", "."},
      {"a/b&#10;c", "b"},  // a name ends at a line feed
  };
  for (const Name& name : cases) {
    trace.clear();
    EXPECT_EQ(stage(request(document(name.path))), S_OK) << name.path;
    EXPECT_EQ(text(ZetNorvDb::_copyFile), name.name) << name.path;
    const Texts lines = trace.texts();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 3], "Nom du fichier a Sauvegarder");
    EXPECT_EQ(lines[lines.size() - 2], ZetNorvDb::_copyFile.isNull() ? "" : name.name);
  }
}

TEST_F(ZetNorvDbStagingTest, PathWithoutSlashLosesAsManyCharactersAsItsFileHasBytesAndOne) {
  writeBytes(scratch.file("drive/work/PN-7"), "12345");
  EXPECT_EQ(stage(request(document("\\work\\PN-7"))), S_OK);
  EXPECT_EQ(text(ZetNorvDb::_refFile), "\\work\\PN-7");
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "PN-7");
  EXPECT_EQ(readBytes(staging() + "/PN-7"), "12345");
}

TEST_F(ZetNorvDbStagingTest, PathShorterThanItsFileHasNoNameAndNoCopy) {
  writeBytes(scratch.file("drive/PN-7"), "longer than the path is");
  EXPECT_EQ(stage(request(document("\\PN-7"))), S_OK);
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "(null)");
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK");
  EXPECT_EQ(staged(), Texts{});
}

TEST_F(ZetNorvDbStagingTest, NameThatWouldLeaveTheStagingDirectoryIsKeptAndNotCopied) {
  // Every one of them leads to a file that can be read, and from the staging directory out of it.
  std::filesystem::create_directories(staging() + "/a/b");
  const std::string from = scratch.file("work/a/b/");
  std::filesystem::create_directories(from + "a/b");
  for (const char* directory : {"", "work/", "work/a/", "work/a/b/"}) {
    writeBytes(scratch.file(directory + std::string("x")), "readable");
  }
  const Texts before = everything();
  for (const std::string name :
       {"..\\x", "..\\..\\x", "a\\..\\x", "a\\..\\..\\x", "\\..\\x", "a\\b\\..\\..\\..\\x"}) {
    trace.clear();
    EXPECT_EQ(stage(request(document(from + name))), S_OK) << name;
    EXPECT_EQ(text(ZetNorvDb::_copyFile), name);
    EXPECT_EQ(trace.texts().back(), "Copie des donnees: KO") << name;
    EXPECT_EQ(everything(), before) << name;
  }
}

TEST_F(ZetNorvDbStagingTest, DotsWithinANameAreNoWayOut) {
  for (const std::string name : {"a..b", "..a", "a..", "..."}) {
    writeBytes(scratch.file("work/" + name), name);
    EXPECT_EQ(stage(request(document(scratch.file("work/" + name)))), S_OK);
    EXPECT_EQ(readBytes(staging() + "/" + name), name);
  }
}

TEST_F(ZetNorvDbStagingTest, NameWithABackslashStaysBelowTheStagingDirectory) {
  writeBytes(scratch.file("work/sub/x"), "below");
  // The directory is not made for it, and the trace does not tell.
  EXPECT_EQ(stage(request(document(scratch.file("work") + "/sub\\x"))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK");
  EXPECT_EQ(staged(), Texts{});

  std::filesystem::create_directory(staging() + "/sub");
  EXPECT_EQ(stage(request(document(scratch.file("work") + "/sub\\x"))), S_OK);
  EXPECT_EQ(readBytes(staging() + "/sub/x"), "below");
}

TEST_F(ZetNorvDbStagingTest, DriveLetterInANameStaysInTheStagingDirectory) {
  writeBytes(scratch.file("work/C:x"), "no drive");
  EXPECT_EQ(stage(request(document(scratch.file("work/C:x")))), S_OK);
  EXPECT_EQ(readBytes(staging() + "/C:x"), "no drive");
}

// --- a copy that cannot be written ---

struct CopyFault {
  const char* what;
  Call call;
};

TEST_F(ZetNorvDbStagingTest, CopyThatCannotBeWrittenIsOkAndLeavesNothing) {
  const CopyFault cases[] = {
      {"open", Call::kOpenWrite}, {"write", Call::kWrite}, {"rename", Call::kRename}};
  for (const CopyFault& fault : cases) {
    FaultyFileSystem files;
    files.fail(fault.call, 1, FaultyFileSystem::Times::kAlways);
    EXPECT_EQ(stage(request(document(source()))), S_OK) << fault.what;
    EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK") << fault.what;
    EXPECT_EQ(text(ZetNorvDb::_copyFile), "PN-7.KelPart") << fault.what;
    EXPECT_EQ(staged(), Texts{}) << fault.what;
  }
}

TEST_F(ZetNorvDbStagingTest, CopyWhoseCloseFailsLeavesNothing) {
  FaultyFileSystem files;
  files.fail(Call::kClose, 2);  // the first one closes the source
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK");
  EXPECT_EQ(staged(), Texts{});
}

TEST_F(ZetNorvDbStagingTest, FullDiskLeavesTheOlderCopyWhole) {
  writeBytes(staging() + "/PN-7.KelPart", "older");
  FaultyFileSystem files;
  files.fillDiskAtWrite(1);
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(staged(), Texts{"PN-7.KelPart"});
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "older");
}

TEST_F(ZetNorvDbStagingTest, ALinkUnderTheNameOfTheCopyIsReplacedAndNotFollowed) {
  const std::string outside = scratch.file("outside.txt");
  writeBytes(outside, "untouched");
  std::filesystem::create_directories(staging());
  std::filesystem::create_symlink(outside, staging() + "/PN-7.KelPart");
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(staged(), Texts{"PN-7.KelPart"});
  EXPECT_FALSE(std::filesystem::is_symlink(staging() + "/PN-7.KelPart"));
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "content");
  EXPECT_EQ(readBytes(outside), "untouched");
}

TEST_F(ZetNorvDbStagingTest, WhatIsCalledAsACopyOnItsWayStays) {
  const std::string outside = scratch.file("outside.txt");
  writeBytes(outside, "untouched");
  std::filesystem::create_directories(staging() + "/.staging");
  std::filesystem::create_symlink(outside, staging() + "/.staging1");
  std::filesystem::create_symlink(scratch.file("nowhere"), staging() + "/.staging2");
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(staged(), (Texts{".staging", ".staging1", ".staging2", "PN-7.KelPart"}));
  EXPECT_TRUE(std::filesystem::is_empty(staging() + "/.staging"));
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "content");
  EXPECT_EQ(readBytes(outside), "untouched");
  EXPECT_FALSE(std::filesystem::exists(scratch.file("nowhere")));
}

TEST_F(ZetNorvDbStagingTest, ADocumentMayBeCalledAsACopyOnItsWay) {
  for (const char* name : {".staging", ".staging1", ".staging"}) {
    writeBytes(scratch.file(name), std::string("content of ") + name);
    EXPECT_EQ(stage(request(document(scratch.file(name)))), S_OK);
  }
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(staged(), (Texts{".staging", ".staging1", "PN-7.KelPart"}));
  EXPECT_EQ(readBytes(staging() + "/.staging"), "content of .staging");
  EXPECT_EQ(readBytes(staging() + "/.staging1"), "content of .staging1");
  EXPECT_EQ(readBytes(staging() + "/PN-7.KelPart"), "content");
}

TEST_F(ZetNorvDbStagingTest, SourceWhoseReadingFailsIsKo) {
  FaultyFileSystem files;
  files.fail(Call::kRead, 1, FaultyFileSystem::Times::kAlways);
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: KO");
  EXPECT_EQ(staged(), Texts{});
}

TEST_F(ZetNorvDbStagingTest, StagingDirectoryThatCannotBeMadeIsSilent) {
  writeBytes(scratch.file("in"), "a file in its way");
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK");
  EXPECT_EQ(readBytes(scratch.file("in")), "a file in its way");
}

TEST_F(ZetNorvDbStagingTest, DirectoryInPlaceOfTheCopyStays) {
  std::filesystem::create_directories(staging() + "/PN-7.KelPart");
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(trace.texts().back(), "Copie des donnees: OK");
  EXPECT_EQ(staged(), Texts{"PN-7.KelPart"});
}

TEST_F(ZetNorvDbStagingTest, UnknownReferenceDirectoryFailsWithThePathAlreadySet) {
  environment.unset("BIX_ZET_IN");
  ZetNorvDb::_copyFile.set("copy");
  EXPECT_EQ(stage(request(document(source()))), E_FAIL);
  EXPECT_EQ(text(ZetNorvDb::_refFile), source());
  EXPECT_EQ(text(ZetNorvDb::_copyFile), "copy");
  const Texts lines = trace.texts();
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[lines.size() - 2], "Debut de la copie");
  EXPECT_EQ(lines.back(), "Problem (App_SceFile): tselection == NULL.");
}

// --- requests that are none ---

TEST_F(ZetNorvDbStagingTest, RequestCutAnywhereIsAParseFailureThatStagesNothing) {
  const std::string message = request(document(source()));
  for (std::size_t n = 4; n < message.size(); ++n) {
    trace.clear();
    ASSERT_EQ(stage(message.substr(0, n)), E_FAIL) << n;
    ASSERT_EQ(trace.texts(),
              (Texts{"ZetNorvDb::buildTemp Debut",
                     "Before CreateMemBufInputSourceFromOstr " + std::to_string(n - 4),
                     "buildTemp Problem XMLParse"}))
        << n;
  }
  EXPECT_TRUE(ZetNorvDb::_refFile.isNull());
  EXPECT_FALSE(exists(scratch.file("in")));
}

TEST_F(ZetNorvDbStagingTest, RefusedRequestIsCalledAfterTheStaging) {
  EXPECT_EQ(stage(kHeader + "<Request>"), E_FAIL);
  EXPECT_EQ(trace.refusedDocument(), "msgBuildTemp");
}

struct Unusable {
  const char* buffer;
  int size;
  const char* announced;
  const char* problem;
};

TEST_F(ZetNorvDbStagingTest, MessageWithoutPayloadFails) {
  const char* const noSource = "buildTemp Problem CreateMemBufInputSourceFromChar";
  const char* const noXml = "buildTemp Problem XMLParse";
  const Unusable cases[] = {{nullptr, 100, "96", noSource},
                            {nullptr, 0, "-4", noSource},
                            {"abcd", 4, "0", noXml},
                            {"abc", 3, "-1", noXml},
                            {"abc", 0, "-4", noXml},
                            {"abc", -1, "-5", noXml},
                            {"abc", INT_MIN, "-2147483648", noXml}};
  for (const Unusable& unusable : cases) {
    trace.clear();
    EXPECT_EQ(ZetNorvDb().buildTemp(unusable.buffer, unusable.size), E_FAIL);
    EXPECT_EQ(trace.texts(),
              (Texts{"ZetNorvDb::buildTemp Debut",
                     std::string("Before CreateMemBufInputSourceFromOstr ") + unusable.announced,
                     unusable.problem}));
  }
}

// --- logs, in debug mode ---

TEST_F(ZetNorvDbStagingTest, PayloadAndPathAreLogged) {
  debug();
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_EQ(log("buildTemp.log"), "\n ####################### \n<Request><Document FilePath=\"" +
                                      source() + "\"/></Request>");
  EXPECT_EQ(log("trace.log"), "\n Emplacement initial ...\n" + source());
  EXPECT_EQ(readBytes(scratch.file("ref/T1/Reference/Kel_Files_Temp/PN-7.KelPart")), "content");
}

TEST_F(ZetNorvDbStagingTest, MessageOfFourBytesOrFewerIsLoggedAsOneThatDidNotWork) {
  debug();
  for (int size = 4; size >= 0; --size) {
    EXPECT_EQ(ZetNorvDb().buildTemp(kHeader.data(), size), E_FAIL) << size;
  }
  EXPECT_EQ(ZetNorvDb().buildTemp(nullptr, 10), E_FAIL);
  std::string expected;
  for (int i = 0; i < 6; ++i) expected += "\n ####################### \nca marche pas";
  EXPECT_EQ(log("buildTemp.log"), expected);
}

TEST_F(ZetNorvDbStagingTest, PayloadIsLoggedAlsoWhenItIsNoXml) {
  debug();
  EXPECT_EQ(stage(kHeader + "100%s <not\nxml"), E_FAIL);
  EXPECT_EQ(log("buildTemp.log"), "\n ####################### \n100%s <not\nxml");
}

TEST_F(ZetNorvDbStagingTest, LoggedPayloadEndsAtItsFirstNul) {
  debug();
  EXPECT_EQ(stage(kHeader + std::string("abc\0def", 7)), E_FAIL);
  EXPECT_EQ(log("buildTemp.log"), "\n ####################### \nabc");
}

TEST_F(ZetNorvDbStagingTest, LoggedPayloadEndsWithTheMessage) {
  debug();
  // No NUL behind it: a byte read too far is one outside the allocation.
  const auto message = std::make_unique<char[]>(7);
  std::copy_n("1234<ab", 7, message.get());
  EXPECT_EQ(ZetNorvDb().buildTemp(message.get(), 7), E_FAIL);
  EXPECT_EQ(log("buildTemp.log"), "\n ####################### \n<ab");
}

TEST_F(ZetNorvDbStagingTest, NothingIsLoggedOutsideDebugMode) {
  environment.set("App_ErrFile", scratch.file("err/"));
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  EXPECT_FALSE(exists(scratch.file("err")));
}

}  // namespace
}  // namespace staging_test
