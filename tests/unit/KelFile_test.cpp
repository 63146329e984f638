// Files by descriptor: opening, reading, writing and closing.
#include "KelFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"
#include "SpecialFiles.h"

using Call = FaultyFileSystem::Call;
using Calls = std::vector<Call>;
using Times = FaultyFileSystem::Times;

namespace {

class KelFileTest : public testing::Test {
 protected:
  // Opens the file of this path; 0 when it does not open.
  static int open(const std::string& path, const char* mode) {
    int descriptor = -1;
    const long result = KelFOpen(KelUnicodeString(path.c_str()).ConvertToWide(), mode, &descriptor);
    EXPECT_EQ(result == S_OK, descriptor > 0);
    EXPECT_TRUE(result == S_OK || (result == E_FAIL && descriptor == 0));
    return descriptor;
  }

  // A file of `bytes`, open in `mode`.
  int openOn(const std::string& bytes, const char* mode) {
    writeBytes(path, bytes);
    return open(path, mode);
  }

  // What KelFGets reads into a buffer of `n` bytes; "(end)" when it fails and leaves the buffer.
  static std::string gets(int descriptor, int n) {
    std::vector<char> buffer(static_cast<std::size_t>(n) + 1, '#');
    if (KelFGets(buffer.data(), n, descriptor) != S_OK) {
      EXPECT_EQ(std::string(buffer.begin(), buffer.end()), std::string(buffer.size(), '#'));
      return "(end)";
    }
    EXPECT_EQ(buffer.back(), '#');
    return buffer.data();
  }

  // What KelFRead reads when asked for `n` bytes.
  static std::string read(int descriptor, int n) {
    std::string buffer(static_cast<std::size_t>(n), '#');
    int count = -1;
    EXPECT_EQ(KelFRead(descriptor, buffer.data(), n, &count), S_OK);
    EXPECT_GE(count, 0);
    EXPECT_LE(count, n);
    return buffer.substr(0, static_cast<std::size_t>(count));
  }

  Environment environment;
  ScratchDirectory scratch;
  const std::string path = scratch.file("file.txt");
};

}  // namespace

// --- Opening ---

TEST_F(KelFileTest, OpenForReadingNeedsTheFile) { EXPECT_EQ(open(path, "r"), 0); }

TEST_F(KelFileTest, OpenForWritingCreatesTheFile) {
  EXPECT_EQ(KelFClose(open(path, "w")), S_OK);
  EXPECT_EQ(readBytes(path), "");
}

TEST_F(KelFileTest, OpenForWritingEmptiesTheFile) {
  EXPECT_EQ(KelFClose(openOn("before", "w")), S_OK);
  EXPECT_EQ(readBytes(path), "");
}

TEST_F(KelFileTest, OpenForAppendingCreatesTheFile) {
  EXPECT_EQ(KelFClose(open(path, "a+")), S_OK);
  EXPECT_EQ(readBytes(path), "");
}

TEST_F(KelFileTest, OpenForAppendingKeepsTheFile) {
  EXPECT_EQ(KelFClose(openOn("before", "a+")), S_OK);
  EXPECT_EQ(readBytes(path), "before");
}

TEST_F(KelFileTest, OpenMakesNoDirectory) {
  EXPECT_EQ(open(scratch.file("missing/file.txt"), "w"), 0);
  EXPECT_EQ(open(scratch.file("missing/file.txt"), "a+"), 0);
  EXPECT_FALSE(exists(scratch.file("missing")));
}

TEST_F(KelFileTest, OpenKnowsFourModes) {
  writeBytes(path, "before");
  for (const char* mode : {"", "a", "rb", "wb", "r+", "w+", "R", "x", "wxx", "xw", "a+b", "rw"}) {
    EXPECT_EQ(open(path, mode), 0) << mode;
  }
  EXPECT_EQ(readBytes(path), "before");
}

TEST_F(KelFileTest, OpenRefusesNullPointersAndTheEmptyPath) {
  int descriptor = 77;
  EXPECT_EQ(KelFOpen(nullptr, "r", &descriptor), E_FAIL);
  EXPECT_EQ(descriptor, 0);
  descriptor = 77;
  EXPECT_EQ(KelFOpen(L"file.txt", nullptr, &descriptor), E_FAIL);
  EXPECT_EQ(descriptor, 0);
  EXPECT_EQ(KelFOpen(L"file.txt", "r", nullptr), E_FAIL);
  for (const char* mode : {"r", "w", "wx", "a+"}) EXPECT_EQ(open("", mode), 0);
}

TEST_F(KelFileTest, OpenForCreatingMakesAFileThatTakesBytes) {
  const int descriptor = open(path, "wx");
  EXPECT_EQ(KelFPuts("new", descriptor, nullptr), S_OK);
  EXPECT_EQ(KelFEof(descriptor), 0);
  EXPECT_EQ(gets(descriptor, 10), "(end)");
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(path), "new");
}

TEST_F(KelFileTest, OpenForCreatingTakesNoNameThatIsThere) {
  namespace fs = std::filesystem;
  writeBytes(path, "before");
  fs::create_directory(scratch.file("directory"));
  fs::create_symlink(path, scratch.file("to-file"));
  fs::create_symlink(scratch.file("nowhere"), scratch.file("to-nowhere"));
  makeFifo(scratch.file("fifo"));
  for (const char* name : {"file.txt", "directory", "to-file", "to-nowhere", "fifo"}) {
    EXPECT_EQ(open(scratch.file(name), "wx"), 0) << name;
  }
  EXPECT_EQ(readBytes(path), "before");
  EXPECT_FALSE(exists(scratch.file("nowhere")));
  EXPECT_EQ(open(nullDevice(), "wx"), 0);
}

TEST_F(KelFileTest, OpenRefusesAPathThatIsTooLong) {
  for (const char* mode : {"r", "w", "wx", "a+"}) {
    EXPECT_EQ(open(scratch.file(std::string(300, 'x')), mode), 0);
    EXPECT_EQ(open(scratch.file(std::string(100000, 'x')), mode), 0);
  }
}

TEST_F(KelFileTest, ADirectoryDoesNotOpen) {
  for (const char* mode : {"r", "w", "a+"}) EXPECT_EQ(open(scratch.path().string(), mode), 0);
}

TEST_F(KelFileTest, AFifoDoesNotOpenAndDoesNotBlock) {
  makeFifo(path);
  for (const char* mode : {"r", "w", "a+"}) EXPECT_EQ(open(path, mode), 0) << mode;
}

TEST_F(KelFileTest, ADeviceDoesNotOpenForReading) {
  EXPECT_EQ(open(nullDevice(), "r"), 0);
  EXPECT_EQ(open(fullDevice(), "r"), 0);
}

TEST_F(KelFileTest, ADeviceTakesWhatIsWrittenAndHasNothingToRead) {
  for (const char* mode : {"w", "a+"}) {
    const int descriptor = open(nullDevice(), mode);
    EXPECT_EQ(KelFEof(descriptor), 0);
    EXPECT_EQ(gets(descriptor, 10), "(end)");
    EXPECT_EQ(KelFPuts("text", descriptor, nullptr), S_OK);
    EXPECT_EQ(KelFClose(descriptor), S_OK);
  }
  const int full = open(fullDevice(), "a+");
  EXPECT_EQ(KelFEof(full), 0);
  EXPECT_EQ(read(full, 10), "");
  EXPECT_EQ(KelFClose(full), S_OK);
}

TEST_F(KelFileTest, ALinkOpensWhatItPointsTo) {
  writeBytes(path, "bytes");
  std::filesystem::create_symlink(path, scratch.file("link"));
  const int descriptor = open(scratch.file("link"), "r");
  EXPECT_EQ(read(descriptor, 10), "bytes");
  KelFClose(descriptor);
}

// --- Descriptors ---

TEST_F(KelFileTest, AClosedDescriptorIsNotGivenOutAgain) {
  std::set<int> seen;
  for (int i = 0; i < 100; ++i) {
    const int descriptor = openOn("bytes", "r");
    EXPECT_TRUE(seen.insert(descriptor).second);
    KelFClose(descriptor);
  }
}

TEST_F(KelFileTest, ManyFilesAreOpenAtATime) {
  std::vector<int> descriptors;
  for (int i = 0; i < 100; ++i) {
    const std::string name = scratch.file(std::to_string(i));
    writeBytes(name, "file " + std::to_string(i));
    descriptors.push_back(open(name, "r"));
  }
  for (int i = 0; i < 100; i += 2) KelFClose(descriptors[static_cast<std::size_t>(i)]);
  for (int i = 1; i < 100; i += 2) {
    const int descriptor = descriptors[static_cast<std::size_t>(i)];
    EXPECT_EQ(read(descriptor, 20), "file " + std::to_string(i));
    EXPECT_EQ(KelFClose(descriptor), S_OK);
  }
}

TEST_F(KelFileTest, EveryCallAnswersForADescriptorThatIsNotOpen) {
  const int closed = openOn("bytes", "a+");
  KelFClose(closed);
  const int open = openOn("bytes", "r");
  for (const int descriptor : {0, -1, INT_MIN, INT_MAX, closed}) {
    char buffer[4] = {'#', '#', '#', '#'};
    int count = 77;
    int size = 77;
    EXPECT_EQ(KelFGets(buffer, 4, descriptor), E_FAIL);
    EXPECT_EQ(KelFRead(descriptor, buffer, 4, &count), E_FAIL);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(std::string(buffer, 4), "####");
    count = 77;
    EXPECT_EQ(KelFPuts("text", descriptor, &count), E_FAIL);
    EXPECT_EQ(count, 0);
    count = 77;
    EXPECT_EQ(KelFWrite(descriptor, "text", 4, &count), E_FAIL);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(KelFSize(descriptor, &size), E_FAIL);
    EXPECT_EQ(KelFEof(descriptor), 0);
    EXPECT_EQ(KelFClose(descriptor), E_FAIL);
  }
  EXPECT_EQ(KelFClose(open), S_OK);
  EXPECT_EQ(readBytes(path), "bytes");
}

TEST_F(KelFileTest, NullPointersAnswerFailure) {
  const int descriptor = openOn("bytes", "a+");
  char byte = '#';
  int count = 77;
  EXPECT_EQ(KelFGets(nullptr, 4, descriptor), E_FAIL);
  EXPECT_EQ(KelFRead(descriptor, nullptr, 4, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(KelFRead(descriptor, &byte, 1, nullptr), E_FAIL);
  EXPECT_EQ(byte, '#');
  EXPECT_EQ(KelFPuts(nullptr, descriptor, &count), E_FAIL);
  EXPECT_EQ(KelFWrite(descriptor, nullptr, 4, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(KelFSize(descriptor, nullptr), E_FAIL);
  KelFClose(descriptor);
  EXPECT_EQ(readBytes(path), "bytes");
}

// --- Lines ---

TEST_F(KelFileTest, GetsReadsLinesThroughTheirLineFeed) {
  const int descriptor = openOn("one\n\nthree\r\nlast", "r");
  EXPECT_EQ(gets(descriptor, 80), "one\n");
  EXPECT_EQ(gets(descriptor, 80), "\n");
  EXPECT_EQ(gets(descriptor, 80), "three\r\n");
  EXPECT_EQ(gets(descriptor, 80), "last");
  EXPECT_EQ(gets(descriptor, 80), "(end)");
  EXPECT_EQ(gets(descriptor, 80), "(end)");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsCutsALongLineAndGoesOnWithIt) {
  const int descriptor = openOn("abcdefg\nh\n", "r");
  EXPECT_EQ(gets(descriptor, 4), "abc");
  EXPECT_EQ(gets(descriptor, 4), "def");
  EXPECT_EQ(gets(descriptor, 4), "g\n");
  EXPECT_EQ(gets(descriptor, 3), "h\n");
  EXPECT_EQ(gets(descriptor, 4), "(end)");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsReadsALineThatFillsTheBufferExactly) {
  const int descriptor = openOn("abc\nd\n", "r");
  EXPECT_EQ(gets(descriptor, 5), "abc\n");
  EXPECT_EQ(gets(descriptor, 2), "d");
  EXPECT_EQ(gets(descriptor, 2), "\n");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsWithoutRoomReadsNothing) {
  const int descriptor = openOn("abc\n", "r");
  for (const int n : {1, 0, -1, INT_MIN}) {
    char byte = '#';
    EXPECT_EQ(KelFGets(&byte, n, descriptor), E_FAIL);
    EXPECT_EQ(byte, '#');
  }
  EXPECT_EQ(gets(descriptor, 80), "abc\n");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsReadsNulsLikeAnyByte) {
  const int descriptor = openOn(std::string("a\0b\nc\n", 6), "r");
  char buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(KelFGets(buffer, 8, descriptor), S_OK);
  EXPECT_EQ(std::string(buffer, 6), std::string("a\0b\n\0#", 6));
  EXPECT_EQ(gets(descriptor, 8), "c\n");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsReadsLinesOfAnyLengthAcrossWhatIsReadAhead) {
  std::string bytes;
  std::vector<std::string> lines;
  for (std::size_t length = 1; length < 50000; length = length * 3 + 1) {
    lines.push_back(std::string(length, static_cast<char>('a' + lines.size())) + "\n");
    bytes += lines.back();
  }
  const int descriptor = openOn(bytes, "r");
  for (const std::string& line : lines) EXPECT_EQ(gets(descriptor, 100000), line);
  EXPECT_EQ(gets(descriptor, 100000), "(end)");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsOfAnEmptyFileFails) {
  const int descriptor = openOn("", "r");
  EXPECT_EQ(gets(descriptor, 80), "(end)");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsOfAFileOpenForWritingFails) {
  const int descriptor = open(path, "w");
  EXPECT_EQ(gets(descriptor, 80), "(end)");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, GetsGivesWhatItReadBeforeAReadFailed) {
  FaultyFileSystem files;
  files.limitTransfers(2);
  const int descriptor = openOn("abcd\n", "r");
  files.fail(Call::kRead, 2);
  EXPECT_EQ(gets(descriptor, 80), "ab");
  EXPECT_EQ(gets(descriptor, 80), "cd\n");
  files.fail(Call::kRead, 1, Times::kAlways);
  EXPECT_EQ(gets(descriptor, 80), "(end)");
  KelFClose(descriptor);
}

// --- Reading bytes ---

TEST_F(KelFileTest, ReadGivesFewerBytesOnlyAtTheEnd) {
  const int descriptor = openOn("abcdef", "r");
  EXPECT_EQ(read(descriptor, 4), "abcd");
  EXPECT_EQ(read(descriptor, 4), "ef");
  EXPECT_EQ(read(descriptor, 4), "");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadOfNoBytesSucceeds) {
  const int descriptor = openOn("abc", "r");
  int count = 77;
  EXPECT_EQ(KelFRead(descriptor, nullptr, 0, &count), S_OK);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(read(descriptor, 4), "abc");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadRefusesANegativeNumber) {
  const int descriptor = openOn("abc", "r");
  char byte = '#';
  int count = 77;
  EXPECT_EQ(KelFRead(descriptor, &byte, -1, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(byte, '#');
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadKeepsEveryByte) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  bytes += "\r\n\n\r\x1A";
  const int descriptor = openOn(bytes, "r");
  EXPECT_EQ(read(descriptor, 1000), bytes);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, LinesAndBytesAreReadOneBehindTheOther) {
  const std::string big(40000, 'x');
  const int descriptor = openOn("line\nab" + big + "\nend", "r");
  EXPECT_EQ(gets(descriptor, 80), "line\n");
  EXPECT_EQ(read(descriptor, 2), "ab");
  EXPECT_EQ(read(descriptor, 40000), big);
  EXPECT_EQ(gets(descriptor, 80), "\n");
  EXPECT_EQ(read(descriptor, 80), "end");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadGoesOnAfterShortReads) {
  FaultyFileSystem files;
  files.limitTransfers(7);
  std::string bytes;
  for (int i = 0; i < 30000; ++i) bytes += static_cast<char>('a' + i % 26);
  const int descriptor = openOn(bytes, "r");
  EXPECT_EQ(read(descriptor, 5), bytes.substr(0, 5));
  EXPECT_EQ(read(descriptor, 25000), bytes.substr(5, 25000));
  EXPECT_EQ(read(descriptor, 25000), bytes.substr(25005));
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadReportsWhatItGotBeforeAReadFailed) {
  FaultyFileSystem files;
  files.limitTransfers(2);
  const int descriptor = openOn("abcdef", "r");
  files.fail(Call::kRead, 3);
  char buffer[8] = {};
  int count = 77;
  EXPECT_EQ(KelFRead(descriptor, buffer, 6, &count), E_FAIL);
  EXPECT_EQ(count, 4);
  EXPECT_STREQ(buffer, "abcd");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadReportsWhatItGotBeforeALargeReadFailed) {
  FaultyFileSystem files;
  files.limitTransfers(20000);
  const int descriptor = openOn(std::string(60000, 'x'), "r");
  files.fail(Call::kRead, 3);
  std::string buffer(60000, '#');
  int count = 77;
  EXPECT_EQ(KelFRead(descriptor, buffer.data(), 60000, &count), E_FAIL);
  EXPECT_EQ(count, 40000);
  EXPECT_EQ(buffer, std::string(40000, 'x') + std::string(20000, '#'));
  KelFClose(descriptor);
}

TEST_F(KelFileTest, ReadOfAFileOpenForWritingFails) {
  const int descriptor = open(path, "w");
  char byte = '#';
  int count = 77;
  EXPECT_EQ(KelFRead(descriptor, &byte, 1, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  KelFClose(descriptor);
}

// --- The end of the file ---

TEST_F(KelFileTest, EofIsZeroOnlyWhenNoByteIsLeft) {
  const int descriptor = openOn("a\nb\n", "r");
  EXPECT_NE(KelFEof(descriptor), 0);
  EXPECT_EQ(gets(descriptor, 80), "a\n");
  EXPECT_NE(KelFEof(descriptor), 0);
  EXPECT_NE(KelFEof(descriptor), 0);
  EXPECT_EQ(gets(descriptor, 80), "b\n");
  EXPECT_EQ(KelFEof(descriptor), 0);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, EofOfAnEmptyFileIsZero) {
  const int descriptor = openOn("", "r");
  EXPECT_EQ(KelFEof(descriptor), 0);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, EofOfAFileOpenForWritingIsZero) {
  const int descriptor = open(path, "w");
  EXPECT_EQ(KelFPuts("text", descriptor, nullptr), S_OK);
  EXPECT_EQ(KelFEof(descriptor), 0);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, EofOfAFileThatCannotBeReadIsZero) {
  FaultyFileSystem files;
  const int descriptor = openOn("bytes", "r");
  files.fail(Call::kRead, 1, Times::kAlways);
  EXPECT_EQ(KelFEof(descriptor), 0);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, EofDoesNotMoveTheReading) {
  const int descriptor = openOn("abc", "r");
  EXPECT_NE(KelFEof(descriptor), 0);
  EXPECT_EQ(read(descriptor, 3), "abc");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, EofSeesWhatWasAppendedMeanwhile) {
  const int descriptor = openOn("a", "r");
  EXPECT_EQ(read(descriptor, 1), "a");
  EXPECT_EQ(KelFEof(descriptor), 0);
  const int writer = open(path, "a+");
  EXPECT_EQ(KelFPuts("b", writer, nullptr), S_OK);
  KelFClose(writer);
  EXPECT_NE(KelFEof(descriptor), 0);
  EXPECT_EQ(read(descriptor, 1), "b");
  KelFClose(descriptor);
}

// --- Writing ---

TEST_F(KelFileTest, PutsWritesTheTextWithoutItsNul) {
  const int descriptor = open(path, "w");
  int count = 0;
  EXPECT_EQ(KelFPuts("text\n", descriptor, &count), S_OK);
  EXPECT_EQ(count, 5);
  EXPECT_EQ(KelFPuts("", descriptor, &count), S_OK);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(KelFPuts("more", descriptor, nullptr), S_OK);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(path), "text\nmore");
}

TEST_F(KelFileTest, WriteKeepsEveryByte) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  bytes += "\r\n\n\r\x1A";
  const int descriptor = open(path, "w");
  int count = 0;
  EXPECT_EQ(KelFWrite(descriptor, bytes.data(), static_cast<int>(bytes.size()), &count), S_OK);
  EXPECT_EQ(count, static_cast<int>(bytes.size()));
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(path), bytes);
}

TEST_F(KelFileTest, WriteOfNoBytesSucceeds) {
  const int descriptor = open(path, "w");
  int count = 77;
  EXPECT_EQ(KelFWrite(descriptor, "x", 0, &count), S_OK);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(KelFWrite(descriptor, nullptr, 0, nullptr), S_OK);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(path), "");
}

TEST_F(KelFileTest, WriteRefusesANegativeNumber) {
  const int descriptor = open(path, "w");
  int count = 77;
  EXPECT_EQ(KelFWrite(descriptor, "x", -1, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  KelFClose(descriptor);
  EXPECT_EQ(readBytes(path), "");
}

TEST_F(KelFileTest, WriteToAFileOpenForReadingFails) {
  FaultyFileSystem files;
  const int descriptor = openOn("bytes", "r");
  int count = 77;
  EXPECT_EQ(KelFPuts("text", descriptor, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(KelFWrite(descriptor, "text", 4, nullptr), E_FAIL);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(files.count(Call::kWrite), 0);
  EXPECT_EQ(readBytes(path), "bytes");
}

TEST_F(KelFileTest, WhatIsWrittenIsInTheFileAtOnce) {
  const int descriptor = open(path, "w");
  KelFPuts("text", descriptor, nullptr);
  EXPECT_EQ(readBytes(path), "text");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, WriteGoesOnAfterShortWrites) {
  FaultyFileSystem files;
  files.limitTransfers(3);
  const int descriptor = open(path, "w");
  int count = 0;
  EXPECT_EQ(KelFPuts("abcdefgh", descriptor, &count), S_OK);
  EXPECT_EQ(count, 8);
  EXPECT_EQ(files.count(Call::kWrite), 3);
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(path), "abcdefgh");
}

TEST_F(KelFileTest, WriteReportsWhatWasTakenBeforeItFailed) {
  FaultyFileSystem files;
  files.limitTransfers(3);
  files.fail(Call::kWrite, 3, Times::kAlways);
  const int descriptor = open(path, "w");
  int count = 0;
  EXPECT_EQ(KelFWrite(descriptor, "abcdefgh", 8, &count), E_FAIL);
  EXPECT_EQ(count, 6);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, WhatCannotBeAppendedWholeIsTakenBack) {
  writeBytes(path, "before\n");
  FaultyFileSystem files;
  files.limitTransfers(3);
  files.fail(Call::kWrite, 3, Times::kAlways);
  const int descriptor = open(path, "a+");
  int count = 77;
  EXPECT_EQ(KelFPuts("abcdefgh\n", descriptor, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(readBytes(path), "before\n");
  EXPECT_EQ(KelFClose(descriptor), S_OK);
}

TEST_F(KelFileTest, AnAppendThatCannotBeTakenBackReportsWhatTheFileHas) {
  FaultyFileSystem files;
  files.limitTransfers(3);
  files.fail(Call::kWrite, 2, Times::kAlways);
  files.fail(Call::kTruncate, 1, Times::kAlways);
  const int descriptor = open(path, "a+");
  int count = 77;
  EXPECT_EQ(KelFPuts("abcdefgh\n", descriptor, &count), E_FAIL);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(readBytes(path), "abc");
  EXPECT_EQ(KelFClose(descriptor), S_OK);
}

TEST_F(KelFileTest, AFileSystemThatTakesNothingIsAFailure) {
  FaultyFileSystem files;
  files.limitTransfers(0);
  const int descriptor = open(path, "w");
  int count = 77;
  EXPECT_EQ(KelFPuts("text", descriptor, &count), E_FAIL);
  EXPECT_EQ(count, 0);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, AFullDeviceIsAFailureOfTheWrite) {
  for (const char* mode : {"w", "a+"}) {
    const int descriptor = open(fullDevice(), mode);
    int count = 77;
    EXPECT_EQ(KelFPuts("text", descriptor, &count), E_FAIL);
    EXPECT_EQ(count, 0);
    KelFClose(descriptor);
  }
}

TEST_F(KelFileTest, CloseFailsWhenTheBytesCouldNotReachTheFile) {
  FaultyFileSystem files;
  const int descriptor = open(path, "w");
  files.fail(Call::kClose);
  EXPECT_EQ(KelFClose(descriptor), E_FAIL);
  EXPECT_EQ(KelFPuts("text", descriptor, nullptr), E_FAIL);
  EXPECT_EQ(KelFClose(descriptor), E_FAIL);
  EXPECT_EQ(files.count(Call::kClose), 1);
}

// --- Appending ---

TEST_F(KelFileTest, AppendingReadsFromTheStartAndWritesAtTheEnd) {
  const int descriptor = openOn("one\ntwo\n", "a+");
  EXPECT_EQ(gets(descriptor, 80), "one\n");
  EXPECT_EQ(KelFPuts("three\n", descriptor, nullptr), S_OK);
  EXPECT_EQ(gets(descriptor, 80), "two\n");
  EXPECT_EQ(gets(descriptor, 80), "three\n");
  EXPECT_EQ(KelFEof(descriptor), 0);
  EXPECT_EQ(KelFPuts("four\n", descriptor, nullptr), S_OK);
  EXPECT_EQ(gets(descriptor, 80), "four\n");
  EXPECT_EQ(KelFClose(descriptor), S_OK);
  EXPECT_EQ(readBytes(path), "one\ntwo\nthree\nfour\n");
}

TEST_F(KelFileTest, AppendingBeforeAnyReadLeavesTheReadingAtTheStart) {
  const int descriptor = openOn("one\n", "a+");
  EXPECT_EQ(KelFPuts("two\n", descriptor, nullptr), S_OK);
  EXPECT_EQ(gets(descriptor, 80), "one\n");
  EXPECT_EQ(gets(descriptor, 80), "two\n");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, AppendingReadsOnBehindWhatIsReadAhead) {
  const std::string before(50000, 'x');
  const int descriptor = openOn(before, "a+");
  EXPECT_EQ(read(descriptor, 1), "x");
  EXPECT_EQ(KelFPuts("end", descriptor, nullptr), S_OK);
  EXPECT_EQ(read(descriptor, 60000), before.substr(1) + "end");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, TwoAppendersDoNotOverwriteEachOther) {
  const int first = open(path, "a+");
  const int second = open(path, "a+");
  KelFPuts("a\n", first, nullptr);
  KelFPuts("b\n", second, nullptr);
  KelFPuts("c\n", first, nullptr);
  EXPECT_EQ(gets(second, 80), "a\n");
  KelFClose(first);
  EXPECT_EQ(gets(second, 80), "b\n");
  EXPECT_EQ(gets(second, 80), "c\n");
  KelFClose(second);
  EXPECT_EQ(readBytes(path), "a\nb\nc\n");
}

// --- Sizes ---

TEST_F(KelFileTest, SizeIsThatOfTheFile) {
  int size = -1;
  const int empty = openOn("", "r");
  EXPECT_EQ(KelFSize(empty, &size), S_OK);
  EXPECT_EQ(size, 0);
  KelFClose(empty);
  const int descriptor = openOn("bytes", "a+");
  EXPECT_EQ(KelFSize(descriptor, &size), S_OK);
  EXPECT_EQ(size, 5);
  KelFPuts("more", descriptor, nullptr);
  EXPECT_EQ(KelFSize(descriptor, &size), S_OK);
  EXPECT_EQ(size, 9);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, SizeIsNoMatterOfTheReading) {
  const int descriptor = openOn("bytes", "r");
  EXPECT_EQ(read(descriptor, 3), "byt");
  int size = -1;
  EXPECT_EQ(KelFSize(descriptor, &size), S_OK);
  EXPECT_EQ(size, 5);
  EXPECT_EQ(read(descriptor, 3), "es");
  KelFClose(descriptor);
}

TEST_F(KelFileTest, SizeAboveWhatAnIntHoldsFails) {
  writeBytes(path, "");
  std::filesystem::resize_file(path, static_cast<std::uintmax_t>(INT_MAX));
  int descriptor = open(path, "r");
  int size = -1;
  EXPECT_EQ(KelFSize(descriptor, &size), S_OK);
  EXPECT_EQ(size, INT_MAX);
  KelFClose(descriptor);

  std::filesystem::resize_file(path, static_cast<std::uintmax_t>(INT_MAX) + 1);
  descriptor = open(path, "r");
  EXPECT_EQ(KelFSize(descriptor, &size), E_FAIL);
  KelFClose(descriptor);
}

TEST_F(KelFileTest, SizeThatCannotBeToldFails) {
  FaultyFileSystem files;
  const int descriptor = openOn("bytes", "r");
  files.fail(Call::kSize);
  int size = -1;
  EXPECT_EQ(KelFSize(descriptor, &size), E_FAIL);
  KelFClose(descriptor);
}

// --- What it costs ---

TEST_F(KelFileTest, WritingAFileTakesOneCallForEachStep) {
  FaultyFileSystem files;
  for (const char* mode : {"w", "a+"}) {
    files.forgetCalls();
    const std::string bytes(1000000, 'x');
    const int descriptor = open(path, mode);
    KelFWrite(descriptor, bytes.data(), static_cast<int>(bytes.size()), nullptr);
    KelFClose(descriptor);
    EXPECT_EQ(files.calls(), (Calls{Call::kOpen, Call::kWrite, Call::kClose}));
  }
}

TEST_F(KelFileTest, ReadingLinesReadsAhead) {
  std::string bytes;
  for (int i = 0; i < 500; ++i) bytes += "<line " + std::to_string(i) + ">\n";
  FaultyFileSystem files;
  const int descriptor = openOn(bytes, "r");
  while (KelFEof(descriptor) != 0) ASSERT_NE(gets(descriptor, 80), "(end)");
  KelFClose(descriptor);
  EXPECT_EQ(files.calls(), (Calls{Call::kOpen, Call::kRead, Call::kRead, Call::kClose}));
}

TEST_F(KelFileTest, ReadingAWholeFileOfKnownSizeReadsOnce) {
  FaultyFileSystem files;
  for (const int size : {100, 16384, 1000000}) {
    files.forgetCalls();
    const int descriptor = openOn(std::string(static_cast<std::size_t>(size), 'x'), "r");
    EXPECT_EQ(read(descriptor, size).size(), static_cast<std::size_t>(size));
    KelFClose(descriptor);
    EXPECT_EQ(files.calls(), (Calls{Call::kOpen, Call::kRead, Call::kClose}));
  }
}
