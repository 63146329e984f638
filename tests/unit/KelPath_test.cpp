// How the client's paths become the system's (KelNativePath, and every call that takes a path).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Environment.h"
#include "Files.h"
#include "KelDirectory.h"
#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"

namespace {

class KelPathTest : public testing::Test {
 protected:
  static std::string native(const std::string& path) {
    return KelNativePath(KelUnicodeString(path.c_str()).ConvertToWide());
  }

  // Writes `text` to the file `path` as the foundation understands it. Whether it worked.
  static bool write(const std::string& path, const char* text) {
    int descriptor = 0;
    const KelUnicodeString name(path.c_str());
    if (KelFOpen(name.ConvertToWide(), "w", &descriptor) != S_OK) return false;
    const long written = KelFPuts(text, descriptor, nullptr);
    return KelFClose(descriptor) == S_OK && written == S_OK;
  }

  Environment environment;
  ScratchDirectory scratch;
};

struct PathCase {
  const char* path;
  const char* expected;
};

}  // namespace

TEST_F(KelPathTest, BothSlashesSeparateDirectories) {
  const PathCase cases[] = {
      {"a", "a"},        {"a/b", "a/b"},    {"a\\b", "a/b"},        {"a\\b/c\\d", "a/b/c/d"},
      {".\\a", "./a"},   {"..\\a", "../a"}, {"a\\..\\b", "a/../b"}, {"/a/b", "/a/b"},
      {"/a\\b", "/a/b"}, {"a\\", "a/"},
  };
  for (const PathCase& c : cases) EXPECT_EQ(native(c.path), c.expected) << c.path;
}

TEST_F(KelPathTest, TheRootOfTheDriveIsTheDirectoryThatTheEnvironmentNames) {
  environment.set("KEL_DRIVE_ROOT", "/root dir/drive");
  const PathCase cases[] = {
      {"\\", "/root dir/drive/"},
      {"\\a\\b", "/root dir/drive/a/b"},
      {"\\a/b", "/root dir/drive/a/b"},
      {"C:\\a\\b", "/root dir/drive/a/b"},
      {"C:/a/b", "/root dir/drive/a/b"},
      {"z:\\a", "/root dir/drive/a"},
      {"C:\\", "/root dir/drive/"},
      {"C:/", "/root dir/drive/"},
      {"\\\\server\\share", "/root dir/drive/server/share"},
      {"C:\\\\a", "/root dir/drive/a"},
      {"\\..\\a", "/root dir/drive/../a"},
  };
  for (const PathCase& c : cases) EXPECT_EQ(native(c.path), c.expected) << c.path;
}

TEST_F(KelPathTest, OtherPathsAreNotTakenFromTheRootOfTheDrive) {
  environment.set("KEL_DRIVE_ROOT", "/root");
  const PathCase cases[] = {
      {"a", "a"},          {"/a", "/a"},        {"C:", "C:"},
      {"C:a", "C:a"},      {"C:a\\b", "C:a/b"}, {"1:\\a", "1:/a"},
      {"CC:\\a", "CC:/a"}, {":\\a", ":/a"},     {"\xC3\xA9:\\a", "\xC3\xA9:/a"},
  };
  for (const PathCase& c : cases) EXPECT_EQ(native(c.path), c.expected) << c.path;
}

TEST_F(KelPathTest, WithoutARootTheDriveStartsInTheWorkingDirectory) {
  environment.unset("KEL_DRIVE_ROOT");
  EXPECT_EQ(native("\\a"), "./a");
  EXPECT_EQ(native("C:\\a"), "./a");
  environment.set("KEL_DRIVE_ROOT", "");
  EXPECT_EQ(native("\\a"), "./a");
  EXPECT_EQ(native("C:/a"), "./a");
}

TEST_F(KelPathTest, TheRootIsANativePathReadAfreshAtEveryCall) {
  environment.set("KEL_DRIVE_ROOT", "/a\\b");
  EXPECT_EQ(native("\\c\\d"), "/a\\b/c/d");
  environment.set("KEL_DRIVE_ROOT", "/second/");
  EXPECT_EQ(native("\\c"), "/second/c");
  environment.set("KEL_DRIVE_ROOT", "/");
  EXPECT_EQ(native("\\c"), "/c");
  environment.set("KEL_DRIVE_ROOT", "relative");
  EXPECT_EQ(native("\\c"), "relative/c");
}

TEST_F(KelPathTest, NullAndEmptyPathsStayEmpty) {
  environment.set("KEL_DRIVE_ROOT", "/root");
  EXPECT_EQ(KelNativePath(nullptr), "");
  EXPECT_EQ(KelNativePath(L""), "");
}

TEST_F(KelPathTest, AnyBytesOfANameSurvive) {
  std::string name;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/' && byte != '\\') name += static_cast<char>(byte);
  }
  // A name of all bytes is longer than most systems take, so that it is written in three parts.
  for (std::size_t i = 0; i < 3; ++i) {
    const std::string part = name.substr(i * 85, 85);
    EXPECT_EQ(native(part), part);
    EXPECT_TRUE(write(scratch.file(part), "text"));
    EXPECT_EQ(readBytes(scratch.file(part)), "text");
  }
}

TEST_F(KelPathTest, FilesAreOpenedOnTheTranslatedPath) {
  environment.set("KEL_DRIVE_ROOT", scratch.path().string());
  std::filesystem::create_directory(scratch.path() / "dir");
  EXPECT_TRUE(write("\\dir\\one.txt", "1"));
  EXPECT_TRUE(write("C:\\dir\\two.txt", "2"));
  EXPECT_TRUE(write("C:/dir/three.txt", "3"));
  EXPECT_TRUE(write(scratch.path().string() + "\\dir\\four.txt", "4"));
  EXPECT_EQ(readBytes(scratch.file("dir/one.txt")), "1");
  EXPECT_EQ(readBytes(scratch.file("dir/two.txt")), "2");
  EXPECT_EQ(readBytes(scratch.file("dir/three.txt")), "3");
  EXPECT_EQ(readBytes(scratch.file("dir/four.txt")), "4");
}

TEST_F(KelPathTest, EveryCallTranslatesItsPaths) {
  environment.set("KEL_DRIVE_ROOT", scratch.path().string());
  KelFileStamp stamp;
  EXPECT_EQ(KelCreateDirectory(L"C:\\dir"), KelLibSucces);
  EXPECT_EQ(KelMakePath(L"\\dir\\sub"), KelLibSucces);
  writeBytes(scratch.file("dir/sub/file"), "bytes");
  EXPECT_EQ(KelFStamp(L"\\dir\\sub\\file", &stamp), S_OK);
  EXPECT_EQ(KelFCopy(L"\\dir\\sub\\file", L"C:\\dir\\copy", 0), S_OK);
  EXPECT_EQ(KelFRename(L"C:/dir/copy", L"\\dir\\renamed"), S_OK);
  EXPECT_EQ(readBytes(scratch.file("dir/renamed")), "bytes");
  EXPECT_EQ(KelFRemove(L"\\dir\\renamed"), S_OK);
  EXPECT_FALSE(exists(scratch.file("dir/renamed")));
}

TEST_F(KelPathTest, AFileStreamOpensTheNativeForm) {
  environment.set("KEL_DRIVE_ROOT", scratch.path().string());
  EXPECT_TRUE(write("\\\xE9t\xC3\xA9.txt", "text"));
  std::ifstream stream(native("C:\\\xE9t\xC3\xA9.txt"), std::ios::binary);
  std::string text;
  EXPECT_TRUE(static_cast<bool>(std::getline(stream, text)));
  EXPECT_EQ(text, "text");
}
