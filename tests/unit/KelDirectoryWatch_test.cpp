// Whether names may have gone from a directory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelDirectory.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"

namespace fs = std::filesystem;

using Call = FaultyFileSystem::Call;
using Calls = std::vector<Call>;
using Times = FaultyFileSystem::Times;

namespace {

class KelDirectoryWatchTest : public testing::Test {
 protected:
  KelDirectoryWatchTest() { fs::create_directory(directory); }

  static std::unique_ptr<KelDirectoryWatch> watch(const std::string& path) {
    return std::make_unique<KelDirectoryWatch>(KelUnicodeString(path.c_str()).ConvertToWide());
  }

  std::string in(const std::string& name) const { return directory + "/" + name; }

  Environment environment;
  ScratchDirectory scratch;
  const std::string directory = scratch.file("watched");
};

using KelDirectoryWatchDeathTest = KelDirectoryWatchTest;

}  // namespace

TEST_F(KelDirectoryWatchTest, NothingHappenedAtFirst) {
  writeBytes(in("file"), "bytes");
  const auto watched = watch(directory);
  EXPECT_FALSE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, NewFilesAndTheirBytesAreNoChange) {
  const auto watched = watch(directory);
  for (const char* mode : {"w", "a+"}) {
    int descriptor = 0;
    const KelUnicodeString name(in(mode).c_str());
    ASSERT_EQ(KelFOpen(name.ConvertToWide(), mode, &descriptor), 0);
    EXPECT_EQ(KelFPuts("text", descriptor, nullptr), 0);
    EXPECT_EQ(KelFClose(descriptor), 0);
    EXPECT_FALSE(watched->Changed()) << mode;
  }
  writeBytes(in("w"), "other bytes");
  EXPECT_EQ(readBytes(in("a+")), "text");
  fs::create_directory(in("directory"));
  EXPECT_FALSE(watched->Changed());
}

struct Change {
  const char* what;
  std::function<void(const std::string& directory)> make;
};

// Each finds the files "one" and "two" in the directory.
class KelDirectoryWatchChangesTest : public KelDirectoryWatchTest,
                                     public testing::WithParamInterface<Change> {
 protected:
  KelDirectoryWatchChangesTest() {
    writeBytes(in("one"), "1");
    writeBytes(in("two"), "2");
  }
};

INSTANTIATE_TEST_SUITE_P(
    Every, KelDirectoryWatchChangesTest,
    testing::Values(
        Change{"Removed", [](const std::string& d) { fs::remove(d + "/one"); }},
        Change{"RenamedWithin", [](const std::string& d) { fs::rename(d + "/one", d + "/three"); }},
        Change{"RenamedAway", [](const std::string& d) { fs::rename(d + "/one", d + "/../one"); }},
        Change{"ReplacedByARename",
               [](const std::string& d) {
                 writeBytes(d + "/../other", "3");
                 fs::rename(d + "/../other", d + "/one");
               }},
        Change{"MadeUnreadable",
               [](const std::string& d) { fs::permissions(d + "/one", fs::perms::none); }},
        Change{"DirectoryMadeUnreadable",
               [](const std::string& d) {
                 fs::permissions(d, fs::perms::none);
                 fs::permissions(d, fs::perms::owner_all);
               }},
        Change{"DirectoryReplaced",
               [](const std::string& d) {
                 fs::rename(d, d + ".old");
                 fs::create_directory(d);
               }},
        Change{"DirectoryMovedAndMovedBack",
               [](const std::string& d) {
                 fs::rename(d, d + ".old");
                 fs::rename(d + ".old", d);
               }},
        Change{"DirectoryRemovedAndMadeAgain",
               [](const std::string& d) {
                 fs::remove_all(d);
                 fs::create_directory(d);
               }}),
    [](const auto& change) { return change.param.what; });

TEST_P(KelDirectoryWatchChangesTest, IsReportedOnce) {
  const auto watched = watch(directory);
  EXPECT_FALSE(watched->Changed());
  GetParam().make(directory);
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_P(KelDirectoryWatchChangesTest, IsReportedAtTheFirstLook) {
  const auto watched = watch(directory);
  GetParam().make(directory);
  EXPECT_TRUE(watched->Changed());
}

TEST_P(KelDirectoryWatchChangesTest, IsFollowedByTheNext) {
  const auto watched = watch(directory);
  GetParam().make(directory);
  EXPECT_TRUE(watched->Changed());
  writeBytes(in("later"), "3");
  EXPECT_FALSE(watched->Changed());
  fs::remove(in("later"));
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_P(KelDirectoryWatchChangesTest, IsReportedToEveryWatch) {
  const auto first = watch(directory);
  const auto second = watch(directory);
  GetParam().make(directory);
  EXPECT_TRUE(first->Changed());
  EXPECT_FALSE(first->Changed());
  EXPECT_TRUE(second->Changed());
  EXPECT_FALSE(second->Changed());
  fs::create_directory(in("later"));
  fs::remove(in("later"));
  EXPECT_TRUE(second->Changed());
  EXPECT_TRUE(first->Changed());
}

TEST_P(KelDirectoryWatchChangesTest, BeforeTheWatchIsNotReported) {
  const auto first = watch(directory);
  GetParam().make(directory);
  const auto second = watch(directory);
  EXPECT_FALSE(second->Changed());
  EXPECT_TRUE(first->Changed());
}

TEST_F(KelDirectoryWatchTest, ADirectoryThatIsNotThereReportsAChange) {
  const auto watched = watch(scratch.file("missing"));
  EXPECT_TRUE(watched->Changed());
  EXPECT_TRUE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, ADirectoryThatComesIsWatchedFromThenOn) {
  const auto watched = watch(scratch.file("later"));
  EXPECT_TRUE(watched->Changed());
  writeBytes(scratch.file("later/file"), "bytes");
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
  fs::remove(scratch.file("later/file"));
  EXPECT_TRUE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, ADirectoryThatVanishedReportsAChangeUntilItIsBack) {
  const auto watched = watch(directory);
  fs::remove(directory);
  EXPECT_TRUE(watched->Changed());
  EXPECT_TRUE(watched->Changed());
  fs::create_directory(directory);
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, AFileIsNoDirectory) {
  writeBytes(in("file"), "bytes");
  EXPECT_TRUE(watch(in("file"))->Changed());
}

TEST_F(KelDirectoryWatchTest, NullAndEmptyPathsReportAChange) {
  KelDirectoryWatch null(nullptr);
  EXPECT_TRUE(null.Changed());
  EXPECT_TRUE(null.Changed());
  EXPECT_TRUE(watch("")->Changed());
}

TEST_F(KelDirectoryWatchTest, AnotherDirectoryUnderThePathIsAChange) {
  fs::create_directory(scratch.file("other"));
  fs::create_directory_symlink(directory, scratch.file("link"));
  const auto watched = watch(scratch.file("link"));
  EXPECT_FALSE(watched->Changed());
  fs::remove(scratch.file("link"));
  fs::create_directory_symlink(scratch.file("other"), scratch.file("link"));
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
  writeBytes(in("file"), "bytes");
  fs::remove(in("file"));
  EXPECT_FALSE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, AnotherRootOfTheDriveIsAChange) {
  fs::create_directory(scratch.file("other"));
  environment.set("KEL_DRIVE_ROOT", directory);
  const auto watched = watch("\\");
  EXPECT_FALSE(watched->Changed());
  environment.set("KEL_DRIVE_ROOT", scratch.file("other"));
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, EachDirectoryHasItsOwnChanges) {
  fs::create_directory(scratch.file("other"));
  writeBytes(in("file"), "bytes");
  const auto watched = watch(directory);
  const auto other = watch(scratch.file("other"));
  fs::remove(in("file"));
  EXPECT_FALSE(other->Changed());
  EXPECT_TRUE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, AWatchThatGoesLeavesTheOthers) {
  writeBytes(in("file"), "bytes");
  auto first = watch(directory);
  const auto second = watch(directory);
  first.reset();
  EXPECT_FALSE(second->Changed());
  fs::remove(in("file"));
  EXPECT_TRUE(second->Changed());
}

// The system hands out few queues a process, and few watches a queue.
TEST_F(KelDirectoryWatchTest, ManyWatchesStandAtATime) {
  std::vector<std::unique_ptr<KelDirectoryWatch>> watches;
  for (int i = 0; i < 300; ++i) {
    writeBytes(in(std::to_string(i) + "/file"), "bytes");
    watches.push_back(watch(in(std::to_string(i))));
  }
  fs::remove(in("150/file"));
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(watches[static_cast<std::size_t>(i)]->Changed(), i == 150) << i;
  }
}

// More than the system keeps for one who does not look.
TEST_F(KelDirectoryWatchTest, ChangesThatTheSystemHadNoRoomForAreChanges) {
  fs::create_directory(scratch.file("busy"));
  const auto quiet = watch(directory);
  const auto busy = watch(scratch.file("busy"));
  writeBytes(scratch.file("busy/a"), "bytes");
  writeBytes(in("file"), "bytes");
  // Two notes for each renaming; systems keep 16,384 of them by default.
  for (int i = 0; i < 10000; ++i) {
    fs::rename(scratch.file("busy/a"), scratch.file("busy/b"));
    fs::rename(scratch.file("busy/b"), scratch.file("busy/a"));
  }
  fs::remove(in("file"));
  EXPECT_TRUE(quiet->Changed());
  EXPECT_TRUE(busy->Changed());
  EXPECT_FALSE(quiet->Changed());
  EXPECT_FALSE(busy->Changed());
}

TEST_F(KelDirectoryWatchTest, AQuietDirectoryCostsTwoCalls) {
  FaultyFileSystem files;
  const auto watched = watch(directory);
  files.forgetCalls();
  EXPECT_FALSE(watched->Changed());
  EXPECT_EQ(files.calls(), (Calls{Call::kFindDirectory, Call::kPollWatch}));
}

TEST_F(KelDirectoryWatchTest, AWatchThatIsRefusedReportsAChange) {
  FaultyFileSystem files;
  files.fail(Call::kStartWatch, 1, Times::kAlways);
  const auto watched = watch(directory);
  EXPECT_TRUE(watched->Changed());
  EXPECT_TRUE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, AWatchThatIsRefusedOnceIsStartedAgain) {
  FaultyFileSystem files;
  files.fail(Call::kStartWatch);
  const auto watched = watch(directory);
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, AnyCallThatFailsIsAChangeAndNoLeak) {
  for (const Call call : {Call::kFindDirectory, Call::kStartWatch, Call::kPollWatch}) {
    for (int nth = 1; nth <= 4; ++nth) {
      SCOPED_TRACE(static_cast<int>(call) * 100 + nth);
      FaultyFileSystem files;
      files.fail(call, nth);
      auto watched = watch(directory);
      bool reported = false;
      for (int i = 0; i < 5; ++i) reported |= watched->Changed();
      EXPECT_EQ(reported, files.faults() > 0);
      EXPECT_FALSE(watched->Changed());
      watched.reset();
      const int refused = files.faults() > 0 && call == Call::kStartWatch ? 1 : 0;
      EXPECT_EQ(files.count(Call::kStartWatch) - refused, files.count(Call::kStopWatch));
    }
  }
}

TEST_F(KelDirectoryWatchTest, AnotherFileSystemInUseIsAChange) {
  const auto watched = watch(directory);
  EXPECT_FALSE(watched->Changed());
  {
    FaultyFileSystem files;
    EXPECT_TRUE(watched->Changed());
    EXPECT_FALSE(watched->Changed());
    EXPECT_EQ(files.count(Call::kStartWatch), 1);
  }
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
  writeBytes(in("file"), "bytes");
  fs::remove(in("file"));
  EXPECT_TRUE(watched->Changed());
}

TEST_F(KelDirectoryWatchTest, AWatchOutlivesTheFileSystemItStartedOn) {
  auto files = std::make_unique<FaultyFileSystem>();
  auto watched = watch(directory);
  files.reset();
  watched.reset();
  // Another one, perhaps at the same address, knows nothing of the watch.
  FaultyFileSystem other;
  EXPECT_EQ(other.count(Call::kStopWatch), 0);
}

// Replaces the directory just before a watch of it starts.
class SwappingFileSystem : public FaultyFileSystem {
 public:
  long StartWatch(const std::string& path, int* watch) override {
    if (count(Call::kStartWatch) == 0) {
      fs::rename(path, path + ".old");
      fs::create_directory(path);
    }
    return FaultyFileSystem::StartWatch(path, watch);
  }
};

TEST_F(KelDirectoryWatchTest, ADirectoryReplacedWhileTheWatchStartsIsAChange) {
  SwappingFileSystem files;
  const auto watched = watch(directory);
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
  writeBytes(in("file"), "bytes");
  fs::remove(in("file"));
  EXPECT_TRUE(watched->Changed());
}

// A process that a host forks has its own notes and leaves its parent's alone.
TEST_F(KelDirectoryWatchDeathTest, AForkedProcessTakesNothingFromItsParent) {
  writeBytes(in("one"), "1");
  writeBytes(in("two"), "2");
  const auto watched = watch(directory);
  fs::remove(in("one"));
  EXPECT_EXIT(
      {
        const bool first = watched->Changed();
        const bool second = watched->Changed();
        fs::remove(in("two"));
        const bool third = watched->Changed();
        std::_Exit(first && !second && third ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_TRUE(watched->Changed());
  EXPECT_FALSE(watched->Changed());
}

TEST_F(KelDirectoryWatchDeathTest, AForkedProcessStopsNoWatchOfItsParent) {
  auto watched = watch(directory);
  EXPECT_FALSE(watched->Changed());
  EXPECT_EXIT(
      {
        watched.reset();
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_FALSE(watched->Changed());
  writeBytes(in("file"), "bytes");
  fs::remove(in("file"));
  EXPECT_TRUE(watched->Changed());
}
