// The seam itself, and what the operating system's own side of it promises.
#include "KelFileSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"
#include "SpecialFiles.h"

using Mode = KelFileSystem::Mode;

using Call = FaultyFileSystem::Call;

namespace {

class KelFileSystemTest : public testing::Test {
 protected:
  KelFileSystem& native = KelFileSystem::Native();
  ScratchDirectory scratch;
  const std::string path = scratch.file("file");
};

}  // namespace

TEST_F(KelFileSystemTest, TheOperatingSystemsIsInUseAtFirst) {
  EXPECT_EQ(&KelFileSystem::Current(), &native);
}

TEST_F(KelFileSystemTest, InstallGivesTheOneBefore) {
  FaultyFileSystem first;
  EXPECT_EQ(&KelFileSystem::Current(), &first);
  {
    FaultyFileSystem second;
    EXPECT_EQ(&KelFileSystem::Current(), &second);
    EXPECT_EQ(KelFileSystem::Install(&first), &second);
    EXPECT_EQ(KelFileSystem::Install(&second), &first);
  }
  EXPECT_EQ(&KelFileSystem::Current(), &first);
  EXPECT_EQ(KelFileSystem::Install(nullptr), &first);
  EXPECT_EQ(&KelFileSystem::Current(), &native);
  EXPECT_EQ(KelFileSystem::Install(&first), &native);
}

TEST_F(KelFileSystemTest, OpenFilesStayWithTheOneThatOpenedThem) {
  writeBytes(path, "bytes");
  const KelUnicodeString name(path.c_str());
  FaultyFileSystem first;
  int descriptor = 0;
  ASSERT_EQ(KelFOpen(name.ConvertToWide(), "r", &descriptor), S_OK);
  FaultyFileSystem second;
  EXPECT_NE(KelFEof(descriptor), 0);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(first.count(Call::kClose), 1);
  EXPECT_EQ(second.count(Call::kClose), 0);
}

TEST_F(KelFileSystemTest, FailuresLeaveTheOutParametersAlone) {
  int handle = 77;
  EXPECT_EQ(native.Open(path, Mode::kRead, &handle), E_FAIL);
  EXPECT_EQ(native.Open(scratch.path().string(), Mode::kWrite, &handle), E_FAIL);
  EXPECT_EQ(native.StartWatch(path, &handle), E_FAIL);
  EXPECT_EQ(handle, 77);

  std::size_t count = 77;
  char byte = '#';
  EXPECT_EQ(native.Read(-1, &byte, 1, &count), E_FAIL);
  EXPECT_EQ(native.Write(-1, &byte, 1, &count), E_FAIL);
  EXPECT_EQ(count, 77u);

  std::int64_t size = 77;
  EXPECT_EQ(native.Size(-1, &size), E_FAIL);
  EXPECT_EQ(size, 77);

  KelFileStamp stamp;
  stamp.file = 77;
  EXPECT_EQ(native.Stamp(path, &stamp), E_FAIL);
  EXPECT_EQ(native.FindDirectory(path, &stamp), E_FAIL);
  EXPECT_EQ(stamp.file, 77u);

  bool changed = true;
  EXPECT_EQ(native.PollWatch(-1, &changed), E_FAIL);
  EXPECT_TRUE(changed);
  EXPECT_EQ(native.Close(-1), E_FAIL);
}

TEST_F(KelFileSystemTest, ReadGivesNoBytesOnlyAtTheEnd) {
  writeBytes(path, "bytes");
  int handle = 0;
  ASSERT_EQ(native.Open(path, Mode::kRead, &handle), S_OK);
  char buffer[8] = {};
  std::size_t count = 77;
  EXPECT_EQ(native.Read(handle, buffer, 8, &count), S_OK);
  EXPECT_EQ(count, 5u);
  EXPECT_EQ(native.Read(handle, buffer, 8, &count), S_OK);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(native.Close(handle), S_OK);
}

TEST_F(KelFileSystemTest, MakeDirectorySucceedsOnlyForTheOneThatMadeIt) {
  EXPECT_EQ(native.MakeDirectory(scratch.file("a")), S_OK);
  EXPECT_EQ(native.MakeDirectory(scratch.file("a")), E_FAIL);
  EXPECT_EQ(native.MakeDirectory(scratch.file("b/c")), E_FAIL);
  EXPECT_EQ(namesIn(scratch.path().string()), std::vector<std::string>{"a"});
}

TEST_F(KelFileSystemTest, FindDirectoryTellsDirectoriesApart) {
  std::filesystem::create_directory(scratch.file("a"));
  writeBytes(path, "bytes");
  KelFileStamp outer;
  KelFileStamp inner;
  KelFileStamp again;
  EXPECT_EQ(native.FindDirectory(scratch.path().string(), &outer), S_OK);
  EXPECT_EQ(native.FindDirectory(scratch.file("a"), &inner), S_OK);
  EXPECT_EQ(native.FindDirectory(scratch.file("a/../a"), &again), S_OK);
  EXPECT_NE(outer.file, inner.file);
  EXPECT_EQ(inner.file, again.file);
  EXPECT_EQ(inner.device, again.device);
}

TEST_F(KelFileSystemTest, AWatchIsForDirectoriesOnly) {
  writeBytes(path, "bytes");
  int watch = 77;
  EXPECT_EQ(native.StartWatch(path, &watch), E_FAIL);
  EXPECT_EQ(native.StartWatch(scratch.file("missing"), &watch), E_FAIL);
  EXPECT_EQ(watch, 77);
}

TEST_F(KelFileSystemTest, AStoppedWatchIsGone) {
  int watch = 0;
  ASSERT_EQ(native.StartWatch(scratch.path().string(), &watch), S_OK);
  bool changed = true;
  EXPECT_EQ(native.PollWatch(watch, &changed), S_OK);
  EXPECT_FALSE(changed);
  native.StopWatch(watch);
  EXPECT_EQ(native.PollWatch(watch, &changed), E_FAIL);
  native.StopWatch(watch);
}

TEST_F(KelFileSystemTest, AWatchOfALostDirectoryIsOfNoUse) {
  std::filesystem::create_directory(scratch.file("a"));
  int watch = 0;
  ASSERT_EQ(native.StartWatch(scratch.file("a"), &watch), S_OK);
  std::filesystem::remove(scratch.file("a"));
  std::filesystem::create_directory(scratch.file("a"));
  bool changed = false;
  EXPECT_EQ(native.PollWatch(watch, &changed), E_FAIL);
  native.StopWatch(watch);
}
