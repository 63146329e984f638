#include "KelDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"

using Call = FaultyFileSystem::Call;
using Calls = std::vector<Call>;
using Times = FaultyFileSystem::Times;

namespace {

// Both calls make the same promise.
class KelDirectoryTest : public testing::TestWithParam<long (*)(const wchar_t*)> {
 protected:
  static long make(const std::string& path) {
    return GetParam()(KelUnicodeString(path.c_str()).ConvertToWide());
  }

  static bool isDirectory(const std::string& path) { return std::filesystem::is_directory(path); }

  Environment environment;
  ScratchDirectory scratch;
};

INSTANTIATE_TEST_SUITE_P(EveryCall, KelDirectoryTest,
                         testing::Values(&KelCreateDirectory, &KelMakePath), [](const auto& call) {
                           return call.index == 0 ? "KelCreateDirectory" : "KelMakePath";
                         });

}  // namespace

TEST_P(KelDirectoryTest, MakesTheDirectory) {
  EXPECT_EQ(make(scratch.file("a")), KelLibSucces);
  EXPECT_TRUE(isDirectory(scratch.file("a")));
}

TEST_P(KelDirectoryTest, MakesTheMissingParents) {
  EXPECT_EQ(make(scratch.file("a/b\\c/d")), KelLibSucces);
  EXPECT_TRUE(isDirectory(scratch.file("a/b/c/d")));
}

TEST_P(KelDirectoryTest, SucceedsWhenItIsThereAlready) {
  writeBytes(scratch.file("a/file"), "bytes");
  EXPECT_EQ(make(scratch.file("a")), KelLibSucces);
  EXPECT_EQ(readBytes(scratch.file("a/file")), "bytes");
  EXPECT_EQ(make("/"), KelLibSucces);
  EXPECT_EQ(make("."), KelLibSucces);
}

TEST_P(KelDirectoryTest, SeparatorsAtTheEndAndInARowChangeNothing) {
  EXPECT_EQ(make(scratch.file("a/")), KelLibSucces);
  EXPECT_EQ(make(scratch.file("a//b///c//")), KelLibSucces);
  EXPECT_EQ(make(scratch.file("d\\\\e\\")), KelLibSucces);
  EXPECT_TRUE(isDirectory(scratch.file("a/b/c")));
  EXPECT_TRUE(isDirectory(scratch.file("d/e")));
}

TEST_P(KelDirectoryTest, DotsInThePathKeepTheirMeaning) {
  EXPECT_EQ(make(scratch.file("a/./b/../c")), KelLibSucces);
  EXPECT_TRUE(isDirectory(scratch.file("a/c")));
}

TEST_P(KelDirectoryTest, MakesTheDirectoryUnderTheRootOfTheDrive) {
  environment.set("KEL_DRIVE_ROOT", scratch.file("drive"));
  EXPECT_EQ(make("C:\\a\\b"), KelLibSucces);
  EXPECT_TRUE(isDirectory(scratch.file("drive/a/b")));
  EXPECT_EQ(make("\\"), KelLibSucces);
}

TEST_P(KelDirectoryTest, FailsWhenAFileHasTheName) {
  writeBytes(scratch.file("a"), "bytes");
  EXPECT_EQ(make(scratch.file("a")), E_FAIL);
  EXPECT_EQ(make(scratch.file("a/b/c")), E_FAIL);
  EXPECT_EQ(readBytes(scratch.file("a")), "bytes");
}

TEST_P(KelDirectoryTest, FollowsALinkToADirectory) {
  std::filesystem::create_directory(scratch.file("a"));
  std::filesystem::create_directory_symlink(scratch.file("a"), scratch.file("link"));
  EXPECT_EQ(make(scratch.file("link/b")), KelLibSucces);
  EXPECT_TRUE(isDirectory(scratch.file("a/b")));
}

TEST_P(KelDirectoryTest, FailsOnALinkToNothing) {
  std::filesystem::create_directory_symlink(scratch.file("missing"), scratch.file("link"));
  EXPECT_EQ(make(scratch.file("link")), E_FAIL);
}

TEST_P(KelDirectoryTest, RefusesNullAndEmptyPaths) {
  EXPECT_EQ(GetParam()(nullptr), E_FAIL);
  EXPECT_EQ(make(""), E_FAIL);
}

TEST_P(KelDirectoryTest, RefusesAPathThatIsTooLong) {
  EXPECT_EQ(make(scratch.file(std::string(300, 'x'))), E_FAIL);
  std::string deep;
  for (int i = 0; i < 5000; ++i) deep += "x/";
  FaultyFileSystem files;
  files.fail(Call::kMakeDirectory, 1, Times::kAlways);
  EXPECT_EQ(make(scratch.file(deep)), E_FAIL);
}

TEST_P(KelDirectoryTest, ReportsARefusal) {
  for (int nth = 1; nth <= 3; ++nth) {
    FaultyFileSystem files;
    files.fail(Call::kMakeDirectory, nth, Times::kAlways);
    EXPECT_EQ(make(scratch.file(std::to_string(nth) + "/a/b")), E_FAIL);
  }
}

// Somebody else makes the directory between the look and the making.
TEST_P(KelDirectoryTest, SucceedsWhenSomebodyElseIsFaster) {
  std::filesystem::create_directories(scratch.file("a/b"));
  FaultyFileSystem files;
  files.fail(Call::kFindDirectory);
  EXPECT_EQ(make(scratch.file("a/b")), KelLibSucces);
  EXPECT_EQ(files.count(Call::kMakeDirectory), 1);
}

TEST_P(KelDirectoryTest, ADirectoryThatIsThereCostsOneLook) {
  FaultyFileSystem files;
  EXPECT_EQ(make(scratch.path().string()), KelLibSucces);
  EXPECT_EQ(files.calls(), Calls{Call::kFindDirectory});
}
