// What the other tests rely on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "ConsoleCapture.h"
#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelDirectory.h"
#include "KelFile.h"
#include "KelLib.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"
#include "ZetNorvTrace.h"

namespace {

using Strings = std::vector<std::string>;
using Call = FaultyFileSystem::Call;

TEST(ConsoleCaptureTest, TakesWhatIsWrittenWhileItLives) {
  const ConsoleCapture outer;
  {
    const ConsoleCapture inner;
    std::cout << "inside" << std::flush;
    EXPECT_EQ(inner.text(), "inside");
  }
  std::cout << "outside";
  EXPECT_EQ(outer.text(), "outside");
}

TEST(EnvironmentTest, StartsWithoutTheLibrarysVariablesAndPutsEverythingBack) {
  Environment outer;
  outer.set("ZETNORV_MODE", "SAVE");
  outer.set("ZETNORV_TEST_OWN", "own");
  {
    Environment inner;
    EXPECT_EQ(std::getenv("ZETNORV_MODE"), nullptr);
    inner.set("ZETNORV_MODE", "SCAN");
    inner.set("ZETNORV_MODE", "REPLAY");
    EXPECT_STREQ(std::getenv("ZETNORV_MODE"), "REPLAY");
    inner.unset("ZETNORV_TEST_OWN");
    EXPECT_EQ(std::getenv("ZETNORV_TEST_OWN"), nullptr);
    inner.set("ZETNORV_TEST_OTHER", "other");
  }
  EXPECT_STREQ(std::getenv("ZETNORV_MODE"), "SAVE");
  EXPECT_STREQ(std::getenv("ZETNORV_TEST_OWN"), "own");
  EXPECT_EQ(std::getenv("ZETNORV_TEST_OTHER"), nullptr);
}

TEST(FilesTest, BytesSurviveAndNamesAreSorted) {
  const ScratchDirectory scratch;
  const std::string bytes("a\0b\r\n\xFF", 6);
  writeBytes(scratch.file("sub/b"), bytes);
  writeBytes(scratch.file("sub/a"), "longer");
  writeBytes(scratch.file("sub/a"), "");
  EXPECT_EQ(readBytes(scratch.file("sub/b")), bytes);
  EXPECT_EQ(readBytes(scratch.file("sub/a")), "");
  EXPECT_EQ(namesIn(scratch.file("sub")), (Strings{"a", "b"}));
  EXPECT_TRUE(namesIn(scratch.file("missing")).empty());
  EXPECT_TRUE(exists(scratch.file("sub/a")));
  EXPECT_FALSE(exists(scratch.file("missing")));
}

TEST(ScratchDirectoryTest, IsFreshAndGoesWithItsObject) {
  std::filesystem::path gone;
  {
    const ScratchDirectory first;
    const ScratchDirectory second;
    EXPECT_NE(first.path(), second.path());
    EXPECT_TRUE(std::filesystem::is_empty(first.path()));
    writeBytes(first.file("deep/file"), "x");
    gone = first.path();
  }
  EXPECT_FALSE(std::filesystem::exists(gone));
}

TEST(TraceRecorderTest, HearsEveryTraceButTellsTheLibrarysOwnTextsApart) {
  KelTrace other("Other", "Another trace", 0, "STDERR", 80);
  TraceRecorder trace;
  ZetNorvTrace.TraPutLN(2, "one");
  other.TraPutLN(1, "one");
  ZetNorvTrace.TraPutLN(2, "two");
  ZetNorvTrace.TraPutLN(2, "one");
  EXPECT_EQ(trace.lines().size(), 4U);
  EXPECT_EQ(trace.lines()[1].trace, "Other");
  EXPECT_EQ(trace.texts(), (Strings{"one", "two", "one"}));
  EXPECT_EQ(trace.count("one"), 2);
  EXPECT_FALSE(trace.has("on"));
  trace.clear();
  EXPECT_TRUE(trace.texts().empty());
}

TEST(TraceRecorderTest, GivesTheLinesBackToTheOneBefore) {
  const TraceRecorder outer;
  {
    const TraceRecorder inner;
    ZetNorvTrace.TraPutLN(2, "inner");
    EXPECT_TRUE(inner.has("inner"));
  }
  ZetNorvTrace.TraPutLN(2, "outer");
  EXPECT_EQ(outer.texts(), Strings{"outer"});
}

class FaultyFileSystemTest : public testing::Test {
 protected:
  // Whether the file opens for writing; it is closed again.
  bool opens() {
    int descriptor = 0;
    if (KelFOpen(_name.c_str(), "w", &descriptor) != S_OK) return false;
    EXPECT_EQ(_fileSystem.openFiles(), 1);
    EXPECT_EQ(KelFClose(descriptor), S_OK);
    EXPECT_EQ(_fileSystem.openFiles(), 0);
    return true;
  }

  ScratchDirectory _scratch;
  std::wstring _name = (_scratch.path() / "file").wstring();
  FaultyFileSystem _fileSystem;
};

TEST_F(FaultyFileSystemTest, FailsNothingUnasked) {
  EXPECT_TRUE(opens());
  EXPECT_EQ(_fileSystem.faults(), 0);
}

TEST_F(FaultyFileSystemTest, FailsTheNthCallOnce) {
  _fileSystem.fail(Call::kOpen, 2);
  EXPECT_TRUE(opens());
  EXPECT_FALSE(opens());
  EXPECT_TRUE(opens());
  EXPECT_EQ(_fileSystem.faults(), 1);
}

TEST_F(FaultyFileSystemTest, FailsEveryCallFromTheNthOn) {
  _fileSystem.fail(Call::kOpen, 2, FaultyFileSystem::Times::kAlways);
  EXPECT_TRUE(opens());
  EXPECT_FALSE(opens());
  EXPECT_FALSE(opens());
  EXPECT_EQ(_fileSystem.faults(), 2);
}

TEST_F(FaultyFileSystemTest, FailsEachKindOfCall) {
  int descriptor = 0;
  int number = 0;
  char byte = 'x';
  _fileSystem.fail(Call::kWrite);
  _fileSystem.fail(Call::kClose);
  ASSERT_EQ(KelFOpen(_name.c_str(), "w", &descriptor), S_OK);
  EXPECT_EQ(KelFWrite(descriptor, &byte, 1, &number), E_FAIL);
  EXPECT_EQ(KelFClose(descriptor), E_FAIL);
  _fileSystem.fail(Call::kRead);
  _fileSystem.fail(Call::kSize);
  ASSERT_EQ(KelFOpen(_name.c_str(), "r", &descriptor), S_OK);
  EXPECT_EQ(KelFSize(descriptor, &number), E_FAIL);
  EXPECT_EQ(KelFRead(descriptor, &byte, 1, &number), E_FAIL);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  KelFileStamp stamp;
  _fileSystem.fail(Call::kStamp);
  EXPECT_EQ(KelFStamp(_name.c_str(), &stamp), E_FAIL);
  _fileSystem.fail(Call::kRename);
  EXPECT_EQ(KelFRename(_name.c_str(), _name.c_str()), E_FAIL);
  _fileSystem.fail(Call::kRemove);
  EXPECT_EQ(KelFRemove(_name.c_str()), E_FAIL);
  _fileSystem.fail(Call::kMakeDirectory);
  EXPECT_NE(KelCreateDirectory((_scratch.path() / "directory").wstring().c_str()), KelLibSucces);
  _fileSystem.fail(Call::kFindDirectory, 1, FaultyFileSystem::Times::kAlways);
  EXPECT_NE(KelCreateDirectory(_scratch.path().wstring().c_str()), KelLibSucces);
  EXPECT_TRUE(exists(_scratch.file("file")));
}

TEST_F(FaultyFileSystemTest, TellsTheKindsOfOpeningApart) {
  const std::pair<Call, const char*> kinds[] = {
      {Call::kOpenWrite, "w"}, {Call::kOpenRead, "r"}, {Call::kOpenAppend, "a+"}};
  writeBytes(_scratch.file("file"), "x");
  for (const auto& [call, failing] : kinds) {
    _fileSystem.fail(call);
    for (const auto& [other, mode] : kinds) {
      if (other == call) continue;
      int descriptor = 0;
      EXPECT_EQ(KelFOpen(_name.c_str(), mode, &descriptor), S_OK) << mode;
      EXPECT_EQ(KelFClose(descriptor), S_OK);
    }
    int descriptor = 0;
    EXPECT_EQ(KelFOpen(_name.c_str(), failing, &descriptor), E_FAIL) << failing;
  }
}

TEST_F(FaultyFileSystemTest, FullDiskTakesHalfAWriteAndNoMore) {
  int descriptor = 0;
  int count = 0;
  ASSERT_EQ(KelFOpen(_name.c_str(), "w", &descriptor), S_OK);
  _fileSystem.fillDiskAtWrite(2);
  EXPECT_EQ(KelFWrite(descriptor, "ab", 2, &count), S_OK);
  EXPECT_EQ(KelFWrite(descriptor, "cdef", 4, &count), E_FAIL);
  EXPECT_EQ(KelFWrite(descriptor, "g", 1, &count), E_FAIL);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(_scratch.file("file")), "abcd");
}

TEST_F(FaultyFileSystemTest, NotesTheCallsThatFailedToo) {
  _fileSystem.fail(Call::kWrite);
  int descriptor = 0;
  ASSERT_EQ(KelFOpen(_name.c_str(), "w", &descriptor), S_OK);
  EXPECT_EQ(KelFWrite(descriptor, "ab", 2, nullptr), E_FAIL);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(_fileSystem.calls(), (std::vector<Call>{Call::kOpen, Call::kWrite, Call::kClose}));
  EXPECT_EQ(_fileSystem.count(Call::kWrite), 1);
  _fileSystem.forgetCalls();
  EXPECT_TRUE(_fileSystem.calls().empty());
}

TEST_F(FaultyFileSystemTest, LimitsWhatOneTransferMoves) {
  _fileSystem.limitTransfers(2);
  int descriptor = 0;
  ASSERT_EQ(KelFOpen(_name.c_str(), "w", &descriptor), S_OK);
  EXPECT_EQ(KelFWrite(descriptor, "abcde", 5, nullptr), S_OK);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(_fileSystem.count(Call::kWrite), 3);
  EXPECT_EQ(readBytes(_scratch.file("file")), "abcde");
}

TEST(FaultyFileSystemLifeTest, LeavesTheFileSystemAsItFoundIt) {
  KelFileSystem* const before = &KelFileSystem::Current();
  {
    const FaultyFileSystem faulty;
    EXPECT_EQ(&KelFileSystem::Current(), &faulty);
  }
  EXPECT_EQ(&KelFileSystem::Current(), before);
}

}  // namespace
