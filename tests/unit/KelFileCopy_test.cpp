// Copying, removing and renaming files.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"
#include "SpecialFiles.h"

using Call = FaultyFileSystem::Call;

namespace {

// Somebody who puts a thing under every name that a file is about to be made by.
class Intruder : public FaultyFileSystem {
 public:
  explicit Intruder(std::string linked) : _linked(std::move(linked)) {}

  long Open(const std::string& path, Mode mode, int* handle) override {
    if (mode == Mode::kCreate) {
      if (_linked.empty()) {
        writeBytes(path, "intruder");
      } else {
        std::filesystem::create_symlink(_linked, path);
      }
      taken = path;
    }
    return FaultyFileSystem::Open(path, mode, handle);
  }

  std::string taken;

 private:
  std::string _linked;
};

class KelFileCopyTest : public testing::Test {
 protected:
  static long copy(const std::string& source, const std::string& target, int mode) {
    return KelFCopy(KelUnicodeString(source.c_str()).ConvertToWide(),
                    KelUnicodeString(target.c_str()).ConvertToWide(), mode);
  }

  static long remove(const std::string& path) {
    return KelFRemove(KelUnicodeString(path.c_str()).ConvertToWide());
  }

  static long rename(const std::string& from, const std::string& to) {
    return KelFRename(KelUnicodeString(from.c_str()).ConvertToWide(),
                      KelUnicodeString(to.c_str()).ConvertToWide());
  }

  std::vector<std::string> names() const { return namesIn(scratch.path().string()); }

  Environment environment;
  ScratchDirectory scratch;
  const std::string source = scratch.file("source");
  const std::string target = scratch.file("target");
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(KelFileCopyTest, CopiesEveryByte) {
  for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 300000u}) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 7 + i / 256);
    writeBytes(source, bytes);
    EXPECT_EQ(copy(source, target, 0), S_OK);
    EXPECT_EQ(readBytes(target), bytes);
    EXPECT_EQ(names(), (Names{"source", "target"}));
  }
}

TEST_F(KelFileCopyTest, Mode0ReplacesTheTarget) {
  writeBytes(source, "new");
  writeBytes(target, "a longer text");
  EXPECT_EQ(copy(source, target, 0), S_OK);
  EXPECT_EQ(readBytes(target), "new");
  EXPECT_EQ(readBytes(source), "new");
}

TEST_F(KelFileCopyTest, OtherModesRefuseATargetThatIsThere) {
  writeBytes(source, "new");
  writeBytes(target, "old");
  for (const int mode : {1, -1, 2}) {
    EXPECT_EQ(copy(source, target, mode), E_FAIL);
    EXPECT_EQ(readBytes(target), "old");
  }
  EXPECT_EQ(names(), (Names{"source", "target"}));
}

TEST_F(KelFileCopyTest, OtherModesRefuseALinkToAFile) {
  writeBytes(source, "new");
  writeBytes(target, "old");
  std::filesystem::create_symlink(target, scratch.file("link"));
  EXPECT_EQ(copy(source, scratch.file("link"), 1), E_FAIL);
  EXPECT_TRUE(std::filesystem::is_symlink(scratch.file("link")));
  EXPECT_EQ(readBytes(target), "old");
}

TEST_F(KelFileCopyTest, OtherModesCopyToANewTarget) {
  writeBytes(source, "new");
  EXPECT_EQ(copy(source, target, 1), S_OK);
  EXPECT_EQ(readBytes(target), "new");
}

TEST_F(KelFileCopyTest, CopyOntoItselfKeepsTheBytes) {
  writeBytes(source, "bytes");
  EXPECT_EQ(copy(source, source, 0), S_OK);
  EXPECT_EQ(readBytes(source), "bytes");
}

TEST_F(KelFileCopyTest, CopyNeedsARegularSource) {
  writeBytes(target, "old");
  std::filesystem::create_directory(scratch.file("directory"));
  makeFifo(scratch.file("fifo"));
  EXPECT_EQ(copy(scratch.file("missing"), target, 0), E_FAIL);
  EXPECT_EQ(copy(scratch.file("directory"), target, 0), E_FAIL);
  EXPECT_EQ(copy(scratch.file("fifo"), target, 0), E_FAIL);
  EXPECT_EQ(copy(nullDevice(), target, 0), E_FAIL);
  EXPECT_EQ(readBytes(target), "old");
  EXPECT_EQ(names(), (Names{"directory", "fifo", "target"}));
}

TEST_F(KelFileCopyTest, CopyOntoADirectoryFails) {
  writeBytes(source, "bytes");
  std::filesystem::create_directory(target);
  EXPECT_EQ(copy(source, target, 0), E_FAIL);
  EXPECT_EQ(copy(source, target, 1), E_FAIL);
  EXPECT_EQ(names(), (Names{"source", "target"}));
  EXPECT_TRUE(namesIn(target).empty());
}

TEST_F(KelFileCopyTest, CopyReplacesNothingButFilesAndLinks) {
  writeBytes(source, "bytes");
  makeFifo(target);
  makeSocket(scratch.file("socket"));
  EXPECT_EQ(copy(source, target, 0), E_FAIL);
  EXPECT_EQ(copy(source, scratch.file("socket"), 0), E_FAIL);
  EXPECT_EQ(rename(source, target), E_FAIL);
  EXPECT_TRUE(std::filesystem::is_fifo(target));
  EXPECT_TRUE(std::filesystem::is_socket(scratch.file("socket")));
  EXPECT_EQ(names(), (Names{"socket", "source", "target"}));
  std::filesystem::create_symlink(source, scratch.file("link"));
  EXPECT_EQ(copy(source, scratch.file("link"), 0), S_OK);
  EXPECT_FALSE(std::filesystem::is_symlink(scratch.file("link")));
  EXPECT_EQ(readBytes(scratch.file("link")), "bytes");
}

TEST_F(KelFileCopyTest, CopyMakesNoDirectory) {
  writeBytes(source, "bytes");
  EXPECT_EQ(copy(source, scratch.file("missing/target"), 0), E_FAIL);
  EXPECT_EQ(names(), (Names{"source"}));
}

TEST_F(KelFileCopyTest, CopyTakesANameAsLongAsTheSystemDoes) {
  writeBytes(source, "bytes");
  const std::string name(255, 'x');
  EXPECT_EQ(copy(source, scratch.file(name), 0), S_OK);
  EXPECT_EQ(readBytes(scratch.file(name)), "bytes");
}

TEST_F(KelFileCopyTest, CopyRefusesNullAndEmptyPaths) {
  writeBytes(source, "bytes");
  const KelUnicodeString name(source.c_str());
  EXPECT_EQ(KelFCopy(nullptr, L"target", 0), E_FAIL);
  EXPECT_EQ(KelFCopy(name.ConvertToWide(), nullptr, 0), E_FAIL);
  EXPECT_EQ(copy("", target, 0), E_FAIL);
  EXPECT_EQ(copy(source, "", 0), E_FAIL);
  EXPECT_EQ(names(), (Names{"source"}));
}

TEST_F(KelFileCopyTest, ACopyThatFailsAnywhereLeavesTheTargetAsItWas) {
  const std::string bytes(200000, 'n');
  writeBytes(source, bytes);
  for (const Call call : {Call::kOpen, Call::kRead, Call::kWrite, Call::kClose, Call::kRename}) {
    for (int nth = 1;; ++nth) {
      SCOPED_TRACE(static_cast<int>(call) * 100 + nth);
      writeBytes(target, "old");
      FaultyFileSystem files;
      files.fail(call, nth);
      const long result = copy(source, target, 0);
      EXPECT_EQ(names(), (Names{"source", "target"}));
      EXPECT_EQ(files.openFiles(), 0);
      if (files.faults() == 0) {
        EXPECT_EQ(result, S_OK);
        EXPECT_EQ(readBytes(target), bytes);
        EXPECT_GT(nth, 1);
        break;
      }
      // Only the source's own close has nothing to lose.
      const bool harmless = call == Call::kClose && nth == 2;
      EXPECT_EQ(result, harmless ? S_OK : E_FAIL);
      EXPECT_EQ(readBytes(target), harmless ? bytes : "old");
    }
  }
}

TEST_F(KelFileCopyTest, ACopyIsWrittenOverNothingAndThroughNoLink) {
  writeBytes(source, "new");
  writeBytes(target, "old");
  writeBytes(scratch.file("elsewhere"), "untouched");
  for (const char* linked : {"", "elsewhere", "nowhere"}) {
    Intruder files(*linked == '\0' ? "" : scratch.file(linked));
    EXPECT_EQ(copy(source, target, 0), E_FAIL);
    EXPECT_EQ(readBytes(target), "old");
    EXPECT_EQ(files.openFiles(), 0);
    // What it did not make is not taken away either.
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::symlink_status(files.taken)));
    std::filesystem::remove(files.taken);
  }
  EXPECT_EQ(names(), (Names{"elsewhere", "source", "target"}));
  EXPECT_EQ(readBytes(scratch.file("elsewhere")), "untouched");
}

TEST_F(KelFileCopyTest, ACopyGoesOnAfterShortReadsAndWrites) {
  std::string bytes;
  for (std::size_t i = 0; i < 5000; ++i) bytes += static_cast<char>(i * 7);
  writeBytes(source, bytes);
  FaultyFileSystem files;
  files.limitTransfers(13);
  EXPECT_EQ(copy(source, target, 0), S_OK);
  EXPECT_EQ(readBytes(target), bytes);
}

TEST_F(KelFileCopyTest, RemoveTakesAFileAway) {
  writeBytes(source, "bytes");
  EXPECT_EQ(remove(source), S_OK);
  EXPECT_FALSE(exists(source));
  EXPECT_EQ(remove(source), E_FAIL);
}

TEST_F(KelFileCopyTest, RemoveTakesNoDirectory) {
  std::filesystem::create_directory(target);
  EXPECT_EQ(remove(target), E_FAIL);
  EXPECT_TRUE(exists(target));
}

TEST_F(KelFileCopyTest, RemoveRefusesNullAndEmptyPaths) {
  EXPECT_EQ(KelFRemove(nullptr), E_FAIL);
  EXPECT_EQ(KelFRemove(L""), E_FAIL);
}

TEST_F(KelFileCopyTest, RemoveReportsARefusal) {
  writeBytes(source, "bytes");
  FaultyFileSystem files;
  files.fail(Call::kRemove);
  EXPECT_EQ(remove(source), E_FAIL);
  EXPECT_TRUE(exists(source));
}

TEST_F(KelFileCopyTest, RenameGivesAFileAnotherName) {
  writeBytes(source, "bytes");
  EXPECT_EQ(rename(source, target), S_OK);
  EXPECT_EQ(names(), (Names{"target"}));
  EXPECT_EQ(readBytes(target), "bytes");
}

TEST_F(KelFileCopyTest, RenameReplacesAFileOfThatName) {
  writeBytes(source, "new");
  writeBytes(target, "old");
  EXPECT_EQ(rename(source, target), S_OK);
  EXPECT_EQ(names(), (Names{"target"}));
  EXPECT_EQ(readBytes(target), "new");
}

TEST_F(KelFileCopyTest, RenameNeedsTheFileAndTheDirectory) {
  EXPECT_EQ(rename(source, target), E_FAIL);
  writeBytes(source, "bytes");
  EXPECT_EQ(rename(source, scratch.file("missing/target")), E_FAIL);
  EXPECT_EQ(names(), (Names{"source"}));
}

TEST_F(KelFileCopyTest, RenameRefusesNullAndEmptyPaths) {
  EXPECT_EQ(KelFRename(nullptr, L"target"), E_FAIL);
  EXPECT_EQ(KelFRename(L"source", nullptr), E_FAIL);
  EXPECT_EQ(KelFRename(L"", L"target"), E_FAIL);
  EXPECT_EQ(KelFRename(L"source", L""), E_FAIL);
}
