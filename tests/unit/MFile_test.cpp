#include "MFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <memory>
#include <string>

#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "ScratchDirectory.h"

namespace {

using std::string_literals::operator""s;
using Call = FaultyFileSystem::Call;
using Times = FaultyFileSystem::Times;

class MFileTest : public testing::Test {
 protected:
  // The path of the file that most tests work on.
  std::string path() const { return _scratch.file("file.txt"); }
  std::string path(const std::string& name) const { return _scratch.file(name); }

  MFile opened(const char* mode) const {
    MFile file;
    EXPECT_EQ(file.open(path().c_str(), mode), S_OK);
    return file;
  }

  ScratchDirectory _scratch;
};

// What gets(MString*) gives; its result is expected to be `result`.
std::string nextLine(MFile& file, long result = S_OK) {
  MString line("before");
  EXPECT_EQ(file.gets(&line), result);
  if (line.isNull()) return "(null)";
  return {line.gchar(), static_cast<std::size_t>(line.glength())};
}

TEST_F(MFileTest, StartsWithNoFileOpen) {
  const MFile file;
  EXPECT_EQ(file._descriptor, 0);
}

TEST_F(MFileTest, OpensAndClosesWithADescriptorInBetween) {
  writeBytes(path(), "x");
  MFile file;
  ASSERT_EQ(file.open(path().c_str(), "r"), S_OK);
  EXPECT_GT(file._descriptor, 0);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(file._descriptor, 0);
}

TEST_F(MFileTest, OpenForReadingNeedsTheFile) {
  MFile file;
  EXPECT_EQ(file.open(path().c_str(), "r"), E_FAIL);
  EXPECT_EQ(file._descriptor, 0);
  EXPECT_FALSE(exists(path()));
}

TEST_F(MFileTest, OpenForWritingEmptiesTheFile) {
  writeBytes(path(), "before");
  MFile file = opened("w");
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "");
}

TEST_F(MFileTest, OpenRefusesADirectoryInEveryMode) {
  std::filesystem::create_directory(path());
  for (const char* mode : {"r", "w", "a+"}) {
    MFile file;
    EXPECT_EQ(file.open(path().c_str(), mode), E_FAIL) << mode;
    EXPECT_EQ(file._descriptor, 0);
  }
}

TEST_F(MFileTest, OpenRefusesNullEmptyAndUnknownArguments) {
  MFile file;
  EXPECT_EQ(file.open(nullptr, "r"), E_FAIL);
  EXPECT_EQ(file.open(path().c_str(), nullptr), E_FAIL);
  EXPECT_EQ(file.open("", "w"), E_FAIL);
  EXPECT_EQ(file.open(path().c_str(), ""), E_FAIL);
  EXPECT_EQ(file.open(path().c_str(), "x"), E_FAIL);
  EXPECT_EQ(file._descriptor, 0);
  EXPECT_FALSE(exists(path()));
}

TEST_F(MFileTest, OpensANameThatIsNotUtf8) {
  const std::string name = path("caf\xE9");
  MFile file;
  ASSERT_EQ(file.open(name.c_str(), "w"), S_OK);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(name), "");
}

TEST_F(MFileTest, BackslashSeparatesDirectories) {
  std::filesystem::create_directory(path("sub"));
  MFile file;
  ASSERT_EQ(file.open((_scratch.path().string() + "\\sub\\a.txt").c_str(), "w"), S_OK);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(namesIn(path("sub")), std::vector<std::string>{"a.txt"});
}

TEST_F(MFileTest, PutsWritesTheTextAsItIs) {
  MFile file = opened("w");
  EXPECT_EQ(file.puts("a\r\nb%s\n"), S_OK);
  EXPECT_EQ(file.puts(""), S_OK);
  EXPECT_EQ(file.puts("\xE9"), S_OK);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "a\r\nb%s\n\xE9");
}

TEST_F(MFileTest, WriteWritesExactlyTheBytes) {
  const std::string bytes = "a\0b\r\n\x1A\xFF"s;
  MFile file = opened("w");
  EXPECT_EQ(file.write(bytes.data(), static_cast<int>(bytes.size())), S_OK);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), bytes);
}

TEST_F(MFileTest, WriteOfNoBytesSucceedsAndWritesNothing) {
  MFile file = opened("w");
  EXPECT_EQ(file.write("abc", 0), S_OK);
  EXPECT_EQ(file.write(nullptr, 0), S_OK);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "");
}

TEST_F(MFileTest, WriteRefusesANullBufferAndNegativeSizes) {
  MFile file = opened("w");
  EXPECT_EQ(file.write(nullptr, 1), E_FAIL);
  EXPECT_EQ(file.write(nullptr, INT_MAX), E_FAIL);
  EXPECT_EQ(file.write("abc", -1), E_FAIL);
  EXPECT_EQ(file.write("abc", INT_MIN), E_FAIL);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "");
}

TEST_F(MFileTest, NullPointersAreRefused) {
  writeBytes(path(), "abc\n");
  MFile file = opened("a+");
  EXPECT_EQ(file.puts(nullptr), E_FAIL);
  EXPECT_EQ(file.gets(nullptr, 10), E_FAIL);
  EXPECT_EQ(file.gets(nullptr), E_FAIL);
  EXPECT_EQ(file.read(nullptr, 10), E_FAIL);
  EXPECT_EQ(nextLine(file), "abc");  // nothing was read by the calls before
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "abc\n");
}

TEST_F(MFileTest, AppendReadsFromTheStartAndWritesAtTheEnd) {
  writeBytes(path(), "one\ntwo\n");
  MFile file = opened("a+");
  EXPECT_EQ(nextLine(file), "one");
  EXPECT_EQ(file.puts("three\n"), S_OK);
  EXPECT_EQ(nextLine(file), "two");
  EXPECT_EQ(nextLine(file), "three");
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "one\ntwo\nthree\n");
}

TEST_F(MFileTest, AppendCreatesTheFile) {
  MFile file = opened("a+");
  EXPECT_EQ(file.puts("one\n"), S_OK);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "one\n");
}

TEST_F(MFileTest, AppendersWriteBehindOneAnother) {
  MFile first = opened("a+");
  MFile second = opened("a+");
  EXPECT_EQ(first.puts("1\n"), S_OK);
  EXPECT_EQ(second.puts("2\n"), S_OK);
  EXPECT_EQ(first.puts("3\n"), S_OK);
  EXPECT_EQ(first.close(), S_OK);
  EXPECT_EQ(second.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "1\n2\n3\n");
}

TEST_F(MFileTest, OnlyReadingWorksInModeRAndOnlyWritingInModeW) {
  writeBytes(path(), "abc\n");
  char buffer[8] = "before";
  MFile reader = opened("r");
  EXPECT_EQ(reader.puts("x"), E_FAIL);
  EXPECT_EQ(reader.write("x", 1), E_FAIL);
  EXPECT_EQ(reader.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "abc\n");
  MFile writer = opened("w");
  EXPECT_EQ(writer.gets(buffer, 8), E_FAIL);
  EXPECT_EQ(writer.read(buffer, 8), E_FAIL);
  EXPECT_EQ(writer.eof(), 0);
  EXPECT_EQ(writer.close(), S_OK);
  EXPECT_STREQ(buffer, "before");
}

TEST_F(MFileTest, GetsReadsALineThroughItsLineFeed) {
  writeBytes(path(), "one\r\n\nlast");
  MFile file = opened("r");
  char buffer[16];
  for (const char* line : {"one\r\n", "\n", "last"}) {
    EXPECT_EQ(file.gets(buffer, sizeof buffer), S_OK);
    EXPECT_STREQ(buffer, line);
  }
  EXPECT_EQ(file.gets(buffer, sizeof buffer), E_FAIL);
  EXPECT_STREQ(buffer, "last");  // left alone at the end
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsReadsALongLineInPieces) {
  writeBytes(path(), "abcdefg\nh");
  MFile file = opened("r");
  char buffer[4];
  for (const char* piece : {"abc", "def", "g\n", "h"}) {
    EXPECT_EQ(file.gets(buffer, sizeof buffer), S_OK);
    EXPECT_STREQ(buffer, piece);
  }
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsRefusesABufferWithoutRoom) {
  writeBytes(path(), "abc\n");
  MFile file = opened("r");
  char buffer[8] = "before";
  for (const int room : {1, 0, -1, INT_MIN}) EXPECT_EQ(file.gets(buffer, room), E_FAIL) << room;
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(nextLine(file), "abc");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsOfAStringDropsTheLineFeed) {
  writeBytes(path(), "one\r\n\n  two \nlast");
  MFile file = opened("r");
  EXPECT_EQ(nextLine(file), "one\r");
  EXPECT_EQ(nextLine(file), "");
  EXPECT_EQ(nextLine(file), "  two ");
  EXPECT_EQ(nextLine(file), "last");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsOfAStringFailsAtTheEndWithAnEmptyString) {
  writeBytes(path(), "one\n");
  MFile file = opened("r");
  EXPECT_EQ(nextLine(file), "one");
  EXPECT_EQ(nextLine(file, E_FAIL), "");
  EXPECT_EQ(nextLine(file, E_FAIL), "");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsOfAStringCutsTheLineAtANul) {
  writeBytes(path(), "a\0b\nc\n"s);
  MFile file = opened("r");
  EXPECT_EQ(nextLine(file), "a");
  EXPECT_EQ(nextLine(file), "c");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsOfAStringTakesALongLineInPiecesOf1023Bytes) {
  const std::string line = std::string(1023, 'a') + std::string(1023, 'b') + "c";
  writeBytes(path(), line + "\nnext\n");
  MFile file = opened("r");
  EXPECT_EQ(nextLine(file), std::string(1023, 'a'));
  EXPECT_EQ(nextLine(file), std::string(1023, 'b'));
  EXPECT_EQ(nextLine(file), "c");
  EXPECT_EQ(nextLine(file), "next");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, LineOf1023BytesLeavesItsLineFeedForTheNextCall) {
  writeBytes(path(), std::string(1022, 'a') + "\n" + std::string(1023, 'b') + "\nc\n");
  MFile file = opened("r");
  EXPECT_EQ(nextLine(file), std::string(1022, 'a'));
  EXPECT_EQ(nextLine(file), std::string(1023, 'b'));
  EXPECT_EQ(nextLine(file), "");
  EXPECT_EQ(nextLine(file), "c");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, GetsOfAStringLeavesItsTokenizerAlone) {
  writeBytes(path(), "a;b\nc;d\n");
  MFile file = opened("r");
  MString line;
  line.split(';');
  EXPECT_EQ(file.gets(&line), S_OK);
  line.splitNext();
  EXPECT_EQ(file.gets(&line), S_OK);
  EXPECT_STREQ(line.splitNext().gchar(), "d");
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, ReadTakesTheBytesAsTheyAre) {
  const std::string bytes = "a\0b\r\n\x1A\xFF"s;
  writeBytes(path(), bytes);
  MFile file = opened("r");
  std::string buffer(bytes.size(), '?');
  EXPECT_EQ(file.read(buffer.data(), 3), S_OK);
  EXPECT_EQ(file.read(buffer.data() + 3, static_cast<int>(bytes.size()) - 3), S_OK);
  EXPECT_EQ(buffer, bytes);
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, ReadOfMoreThanThereIsTakesWhatThereIs) {
  writeBytes(path(), "abc");
  MFile file = opened("r");
  std::string buffer(8, '?');
  EXPECT_EQ(file.read(buffer.data(), 8), S_OK);
  EXPECT_EQ(buffer, "abc?????");
  EXPECT_EQ(file.read(buffer.data(), 8), S_OK);
  EXPECT_EQ(buffer, "abc?????");
  EXPECT_EQ(file.read(buffer.data(), -1), E_FAIL);
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, EofIsZeroOnceNoByteIsLeft) {
  writeBytes(path(), "a\nb");
  MFile file = opened("r");
  EXPECT_NE(file.eof(), 0);
  nextLine(file);
  EXPECT_NE(file.eof(), 0);
  nextLine(file);
  EXPECT_EQ(file.eof(), 0);
  EXPECT_EQ(file.close(), S_OK);
  EXPECT_EQ(file.eof(), 0);
}

TEST_F(MFileTest, EofOfAnEmptyFileIsZero) {
  writeBytes(path(), "");
  MFile file = opened("r");
  EXPECT_EQ(file.eof(), 0);
  EXPECT_EQ(file.close(), S_OK);
}

TEST_F(MFileTest, NothingWorksOnAFileThatIsNotOpen) {
  MFile never;
  MFile closed = opened("w");
  MFile stale = closed;
  EXPECT_EQ(closed.close(), S_OK);
  for (MFile* file : {&never, &closed, &stale}) {
    char buffer[8] = "before";
    EXPECT_EQ(file->puts("x"), E_FAIL);
    EXPECT_EQ(file->write("x", 1), E_FAIL);
    EXPECT_EQ(file->gets(buffer, 8), E_FAIL);
    EXPECT_EQ(file->read(buffer, 8), E_FAIL);
    EXPECT_EQ(nextLine(*file, E_FAIL), "");
    EXPECT_EQ(file->eof(), 0);
    EXPECT_EQ(file->close(), E_FAIL);
    EXPECT_STREQ(buffer, "before");
  }
}

TEST_F(MFileTest, StaleCopyDoesNotReachAFileOpenedLater) {
  MFile first = opened("w");
  MFile stale = first;
  EXPECT_EQ(first.close(), S_OK);
  MFile second = opened("w");
  EXPECT_EQ(stale.puts("x"), E_FAIL);
  EXPECT_EQ(stale.close(), E_FAIL);
  EXPECT_EQ(second.puts("y"), S_OK);
  EXPECT_EQ(second.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "y");
}

TEST_F(MFileTest, AssignedFilesShareOneOpenFile) {
  writeBytes(path(), "one\ntwo\n");
  MFile file = opened("r");
  MFile other;
  EXPECT_EQ(&(other = file), &other);
  EXPECT_EQ(other._descriptor, file._descriptor);
  EXPECT_EQ(nextLine(file), "one");
  EXPECT_EQ(nextLine(other), "two");
  EXPECT_EQ(other.close(), S_OK);
  EXPECT_EQ(file.close(), E_FAIL);
}

TEST_F(MFileTest, DestructorDoesNotCloseTheFile) {
  MFile outer;
  {
    MFile inner = opened("w");
    outer = inner;
  }
  EXPECT_EQ(outer.puts("still open"), S_OK);
  EXPECT_EQ(outer.close(), S_OK);
  EXPECT_EQ(readBytes(path()), "still open");
}

TEST_F(MFileTest, FailedWriteAndCloseAreTold) {
  FaultyFileSystem fileSystem;
  MFile file = opened("w");
  fileSystem.fail(Call::kWrite, 1, Times::kAlways);
  EXPECT_EQ(file.puts("x"), E_FAIL);
  EXPECT_EQ(file.write("x", 1), E_FAIL);
  fileSystem.fail(Call::kClose);
  EXPECT_EQ(file.close(), E_FAIL);
  EXPECT_EQ(file._descriptor, 0);
  EXPECT_EQ(fileSystem.openFiles(), 0);
}

// --- load ---

// The content that load gives; owned here.
struct Loaded {
  long result;
  std::unique_ptr<char[]> bytes;
  int size;

  std::string text() const { return {bytes.get(), static_cast<std::size_t>(size)}; }
};

Loaded load(const std::string& name) {
  char* buffer = nullptr;
  int size = -7;
  MFile file;
  const long result = file.load(MString(name.c_str()), buffer, size);
  return {result, std::unique_ptr<char[]>(buffer), size};
}

TEST_F(MFileTest, LoadReadsAWholeFileAndEndsItWithANul) {
  for (const std::string& bytes : {"abc"s, "a\0b\r\n\x1A\xFF"s, "\0"s, std::string(100'000, 'x')}) {
    writeBytes(path(), bytes);
    const Loaded content = load(path());
    ASSERT_EQ(content.result, S_OK);
    EXPECT_EQ(content.text(), bytes);
    EXPECT_EQ(content.bytes[bytes.size()], '\0');
  }
}

TEST_F(MFileTest, LoadOfAnEmptyFileGivesOneNulAndSizeZero) {
  writeBytes(path(), "");
  const Loaded content = load(path());
  ASSERT_EQ(content.result, S_OK);
  EXPECT_EQ(content.size, 0);
  ASSERT_NE(content.bytes, nullptr);
  EXPECT_EQ(content.bytes[0], '\0');
}

TEST_F(MFileTest, LoadThatFailsLeavesItsOutputsAlone) {
  std::filesystem::create_directory(path("directory"));
  char untouched[] = "untouched";
  for (const MString& name : {MString(), MString(""), MString(path("missing").c_str()),
                              MString(path("directory").c_str())}) {
    char* buffer = untouched;
    int size = -7;
    MFile file;
    EXPECT_EQ(file.load(name, buffer, size), E_FAIL);
    EXPECT_EQ(buffer, untouched);
    EXPECT_EQ(size, -7);
  }
}

TEST_F(MFileTest, LoadThatCannotReadFailsAndClosesTheFile) {
  writeBytes(path(), "abc");
  for (const Call call : {Call::kOpen, Call::kSize, Call::kRead}) {
    FaultyFileSystem fileSystem;
    fileSystem.fail(call);
    const Loaded content = load(path());
    EXPECT_EQ(content.result, E_FAIL);
    EXPECT_EQ(content.bytes, nullptr);
    EXPECT_EQ(content.size, -7);
    EXPECT_EQ(fileSystem.faults(), 1);
    EXPECT_EQ(fileSystem.openFiles(), 0);
  }
}

TEST_F(MFileTest, LoadClosesTheFile) {
  writeBytes(path(), "abc");
  const FaultyFileSystem fileSystem;
  EXPECT_EQ(load(path()).result, S_OK);
  EXPECT_EQ(fileSystem.openFiles(), 0);
}

TEST_F(MFileTest, LoadLeavesTheOpenFileAlone) {
  writeBytes(path(), "one\ntwo\n");
  MFile file = opened("r");
  EXPECT_EQ(nextLine(file), "one");
  char* buffer = nullptr;
  int size = 0;
  ASSERT_EQ(file.load(MString(path().c_str()), buffer, size), S_OK);
  const std::unique_ptr<char[]> owned(buffer);
  EXPECT_EQ(nextLine(file), "two");
  EXPECT_EQ(file.close(), S_OK);
}

// --- save ---

TEST_F(MFileTest, SaveWritesExactlyTheBytes) {
  for (const std::string& bytes : {"longer than the next"s, "a\0b\r\n\xFF"s, ""s}) {
    MFile file;
    EXPECT_EQ(file.save(path().c_str(), bytes.data(), static_cast<int>(bytes.size())), S_OK);
    EXPECT_EQ(readBytes(path()), bytes);
  }
}

TEST_F(MFileTest, SaveOfANullBufferIsAnEmptyFileOrAFailure) {
  MFile file;
  EXPECT_EQ(file.save(path().c_str(), nullptr, 0), S_OK);
  EXPECT_EQ(readBytes(path()), "");
  EXPECT_EQ(file.save(path().c_str(), nullptr, 1), E_FAIL);
  EXPECT_EQ(file.save(path().c_str(), "abc", -1), E_FAIL);
}

TEST_F(MFileTest, SaveRefusesANullName) {
  MFile file;
  EXPECT_EQ(file.save(nullptr, "abc", 3), E_FAIL);
}

TEST_F(MFileTest, SaveToADirectoryOrWithoutOneFails) {
  std::filesystem::create_directory(path("directory"));
  MFile file;
  EXPECT_EQ(file.save(path("directory").c_str(), "abc", 3), E_FAIL);
  EXPECT_EQ(file.save(path("missing/file").c_str(), "abc", 3), E_FAIL);
  EXPECT_EQ(namesIn(_scratch.path().string()), std::vector<std::string>{"directory"});
}

TEST_F(MFileTest, SaveFailsWhenOpenWriteOrCloseDo) {
  for (const Call call : {Call::kOpen, Call::kWrite, Call::kClose}) {
    FaultyFileSystem fileSystem;
    fileSystem.fail(call);
    MFile file;
    EXPECT_EQ(file.save(path().c_str(), "abc", 3), E_FAIL);
    EXPECT_EQ(fileSystem.faults(), 1);
    EXPECT_EQ(fileSystem.openFiles(), 0);
  }
}

TEST_F(MFileTest, SaveLeavesTheOpenFileAlone) {
  writeBytes(path(), "one\n");
  MFile file = opened("r");
  EXPECT_EQ(file.save(path("other").c_str(), "abc", 3), S_OK);
  EXPECT_EQ(nextLine(file), "one");
  EXPECT_EQ(file.close(), S_OK);
}

}  // namespace
