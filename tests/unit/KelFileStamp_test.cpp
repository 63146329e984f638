// What tells one state of a file from another.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"
#include "SpecialFiles.h"

using Call = FaultyFileSystem::Call;

namespace {

class KelFileStampTest : public testing::Test {
 protected:
  static KelFileStamp stampOf(const std::string& path) {
    KelFileStamp stamp;
    EXPECT_EQ(KelFStamp(KelUnicodeString(path.c_str()).ConvertToWide(), &stamp), S_OK);
    return stamp;
  }

  static bool hasStamp(const std::string& path) {
    KelFileStamp stamp;
    stamp.size = 77;
    const long result = KelFStamp(KelUnicodeString(path.c_str()).ConvertToWide(), &stamp);
    if (result != S_OK) {
      EXPECT_EQ(result, E_FAIL);
      EXPECT_EQ(stamp.size, 77);
    }
    return result == S_OK;
  }

  ScratchDirectory scratch;
  const std::string path = scratch.file("file");
};

}  // namespace

TEST_F(KelFileStampTest, AFileThatNobodyTouchesKeepsItsState) {
  writeBytes(path, "bytes");
  EXPECT_TRUE(stampOf(path).SameState(stampOf(path)));
  EXPECT_EQ(stampOf(path).size, 5);
}

TEST_F(KelFileStampTest, AnotherSizeIsAnotherState) {
  writeBytes(path, "bytes");
  const KelFileStamp before = stampOf(path);
  writeBytes(path, "more bytes");
  EXPECT_FALSE(before.SameState(stampOf(path)));
}

TEST_F(KelFileStampTest, AnotherTimeIsAnotherState) {
  writeBytes(path, "bytes");
  const KelFileStamp before = stampOf(path);
  std::filesystem::last_write_time(
      path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  EXPECT_FALSE(before.SameState(stampOf(path)));
  EXPECT_LT(stampOf(path).modified, before.modified);
}

TEST_F(KelFileStampTest, AnotherFileOfTheSameNameIsAnotherState) {
  writeBytes(path, "bytes");
  writeBytes(scratch.file("other"), "bytes");
  const KelFileStamp before = stampOf(path);
  std::filesystem::rename(scratch.file("other"), path);
  EXPECT_NE(before.file, stampOf(path).file);
  EXPECT_EQ(before.device, stampOf(path).device);
  EXPECT_FALSE(before.SameState(stampOf(path)));
}

TEST_F(KelFileStampTest, EveryFieldCounts) {
  const KelFileStamp stamp{1, 2, 3, 4, 5, true};
  EXPECT_TRUE(stamp.SameState({1, 2, 3, 4, 5, false}));
  EXPECT_FALSE(stamp.SameState({0, 2, 3, 4, 5, true}));
  EXPECT_FALSE(stamp.SameState({1, 0, 3, 4, 5, true}));
  EXPECT_FALSE(stamp.SameState({1, 2, 0, 4, 5, true}));
  EXPECT_FALSE(stamp.SameState({1, 2, 3, 0, 5, true}));
  EXPECT_FALSE(stamp.SameState({1, 2, 3, 4, 0, true}));
}

// The program that runs this test was linked before.
TEST_F(KelFileStampTest, AnOldFileIsSettled) {
  const std::string program = testing::internal::GetArgvs().front();
  EXPECT_TRUE(stampOf(program).settled);
}

// A loaded machine may take its time between the writing and the stamp, but not every time.
TEST_F(KelFileStampTest, AFileJustWrittenIsNotSettled) {
  bool seen = false;
  for (int i = 0; i < 100 && !seen; ++i) {
    writeBytes(path, "bytes");
    seen = !stampOf(path).settled;
  }
  EXPECT_TRUE(seen);
}

TEST_F(KelFileStampTest, AFileGivenAnOldTimeJustNowIsNotSettled) {
  bool seen = false;
  for (int i = 0; i < 100 && !seen; ++i) {
    writeBytes(path, "bytes");
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    seen = !stampOf(path).settled;
  }
  EXPECT_TRUE(seen);
}

TEST_F(KelFileStampTest, AFileFromTheFutureIsNotSettled) {
  writeBytes(path, "bytes");
  std::filesystem::last_write_time(
      path, std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
  EXPECT_FALSE(stampOf(path).settled);
}

TEST_F(KelFileStampTest, OnlyRegularFilesHaveOne) {
  makeFifo(scratch.file("fifo"));
  EXPECT_FALSE(hasStamp(path));
  EXPECT_FALSE(hasStamp(scratch.path().string()));
  EXPECT_FALSE(hasStamp(scratch.file("fifo")));
  EXPECT_FALSE(hasStamp(nullDevice()));
  EXPECT_FALSE(hasStamp(""));
}

TEST_F(KelFileStampTest, NullPointersAnswerFailure) {
  KelFileStamp stamp;
  EXPECT_EQ(KelFStamp(nullptr, &stamp), E_FAIL);
  EXPECT_EQ(KelFStamp(L"file", nullptr), E_FAIL);
}

TEST_F(KelFileStampTest, ARefusalIsReported) {
  writeBytes(path, "bytes");
  FaultyFileSystem files;
  files.fail(Call::kStamp);
  EXPECT_FALSE(hasStamp(path));
}
