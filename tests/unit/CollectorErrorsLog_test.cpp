// The section that a collector appends to "error.log"; what it holds is in
// CollectorErrors_test.cpp.
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>
#include <vector>

#include "CollectorErrors.h"
#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;

class CollectorErrorsLogTest : public testing::Test {
 protected:
  CollectorErrorsLogTest() { environment.set("KEL_DRIVE_ROOT", directory.path().string()); }

  std::string log() const { return readBytes(directory.file("error.log")); }

  long write(int messageNumber, const std::string& message) {
    return errors.writeLogFile(messageNumber, message.data(), static_cast<int>(message.size()));
  }

  // The section of message 7 with this text, and the lines of its findings.
  static std::string section(int size, const std::string& text, const std::string& findings = "") {
    return "\n###########   Message 07 \n\n## Taille " + std::to_string(size) + " \n## Buf:\n" +
           text + "\n## Fin buf\n" + findings;
  }

  ScratchDirectory directory;
  Environment environment;
  TraceRecorder trace;
  CollectorErrors errors{7};
};

TEST_F(CollectorErrorsLogTest, WritesOneSection) {
  errors.addError(10, "Error in hierarchy", "ReferenceDocument");
  errors.addError(10, "Problem", "Problem with reference file ...");
  EXPECT_EQ(S_OK, write(7, "HEADABCDEFGHIJKLMNOP"));
  EXPECT_EQ(
      "\n"
      "###########   Message 07 \n"
      "\n"
      "## Taille 20 \n"
      "## Buf:\n"
      "ABCDEFGHIJKLMNOP\n"
      "## Fin buf\n"
      "7 - 0 Error in hierarchy ReferenceDocument\n"
      "7 - 1 Problem Problem with reference file ...\n",
      log());
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST_F(CollectorErrorsLogTest, AppendsToWhatIsThere) {
  writeBytes(directory.file("error.log"), "before");
  EXPECT_EQ(S_OK, write(7, "HEADone"));
  EXPECT_EQ(S_OK, write(7, "HEADtwo"));
  EXPECT_EQ("before" + section(7, "one") + section(7, "two"), log());
}

TEST_F(CollectorErrorsLogTest, WritesNoFindingsWithoutAny) {
  EXPECT_EQ(S_OK, write(7, "HEADtext"));
  EXPECT_EQ(section(8, "text"), log());
}

TEST_F(CollectorErrorsLogTest, TheHeadingHasTheArgumentAndTheFindingsTheCollectorsNumber) {
  struct Case {
    int number;
    const char* heading;
  };
  errors.addError(0, "n", "d");
  std::string expected;
  for (const Case& c :
       {Case{0, "00"}, Case{9, "09"}, Case{10, "10"}, Case{321, "321"}, Case{-1, "-1"},
        Case{INT_MAX, "2147483647"}, Case{INT_MIN, "-2147483648"}}) {
    EXPECT_EQ(S_OK, errors.writeLogFile(c.number, nullptr, 0));
    expected += std::string("\n###########   Message ") + c.heading +
                " \n\n## Taille 0 \n## Buf:\n\n## Fin buf\n7 - 0 n d\n";
    EXPECT_EQ(expected, log());
  }
}

TEST_F(CollectorErrorsLogTest, ASizeOf4OrLessWritesNoText) {
  std::string expected;
  for (int size : {4, 3, 0, -1, INT_MIN}) {
    EXPECT_EQ(S_OK, errors.writeLogFile(7, "HEADtext", size));
    expected += section(size, "");
    EXPECT_EQ(expected, log()) << size;
  }
}

TEST_F(CollectorErrorsLogTest, TheTextEndsAtItsFirstNulOrAtTheSize) {
  struct Case {
    std::string message;
    const char* text;
  };
  std::string expected;
  for (const Case& c :
       {Case{std::string("\0\1\0\0text", 8), "text"}, Case{std::string("HEADte\0xt", 9), "te"},
        Case{std::string("HEAD\0xt", 7), ""}, Case{"HEADx", "x"},
        Case{std::string("HEADtext\0\0", 10), "text"}}) {
    // Exactly as long as it says, so that a byte read behind it is noticed.
    const std::vector<char> bytes(c.message.begin(), c.message.end());
    EXPECT_EQ(S_OK, errors.writeLogFile(7, bytes.data(), static_cast<int>(bytes.size())));
    expected += section(static_cast<int>(bytes.size()), c.text);
    EXPECT_EQ(expected, log());
  }
}

TEST_F(CollectorErrorsLogTest, TextGoesOutAsItIs) {
  const std::string text = "100%d %s %n\r\nline\n\n\xe9\xff\t";
  EXPECT_EQ(S_OK, write(7, "HEAD" + text));
  EXPECT_EQ(section(static_cast<int>(text.size()) + 4, text), log());
}

TEST_F(CollectorErrorsLogTest, FindingsGoOutAsTheyAre) {
  errors.addError(10, "%s%n", "100%");
  EXPECT_EQ(S_OK, errors.writeLogFile(7, nullptr, 0));
  EXPECT_EQ(section(0, "", "7 - 0 %s%n 100%\n"), log());
}

TEST_F(CollectorErrorsLogTest, ANullBufferWritesNoText) {
  EXPECT_EQ(S_OK, errors.writeLogFile(7, nullptr, 100));
  EXPECT_EQ(section(100, ""), log());
}

TEST_F(CollectorErrorsLogTest, EveryCodeIsWrittenAndNoneIsNamed) {
  for (int code : {0, 9, 10, 11, -5}) errors.addError(code, "n", "d");
  EXPECT_EQ(S_OK, errors.writeLogFile(7, nullptr, 0));
  EXPECT_EQ(section(0, "", "7 - 0 n d\n7 - 1 n d\n7 - 2 n d\n7 - 3 n d\n7 - 4 n d\n"), log());
}

TEST_F(CollectorErrorsLogTest, MissingTextsAreEmpty) {
  errors.addError(0, nullptr, "d");
  errors.addError(0, "n", nullptr);
  errors.addError(0, "", "");
  EXPECT_EQ(S_OK, errors.writeLogFile(7, nullptr, 0));
  EXPECT_EQ(section(0, "", "7 - 0  d\n7 - 1 n \n7 - 2  \n"), log());
}

TEST_F(CollectorErrorsLogTest, AnEmptySlotHasNoLineAndTheOthersKeepTheirNumbers) {
  for (const char* name : {"a", "b", "c"}) errors.addError(0, name, "d");
  delete errors._records[1];
  errors._records[1] = nullptr;
  EXPECT_EQ(S_OK, errors.writeLogFile(7, nullptr, 0));
  EXPECT_EQ(section(0, "", "7 - 0 a d\n7 - 2 c d\n"), log());
}

TEST_F(CollectorErrorsLogTest, LongLinesAreWrittenWhole) {
  const std::string text(100000, 't');
  const std::string name(1000, 'n');
  const std::string details(5000, 'd');
  errors.addError(10, name.c_str(), details.c_str());
  EXPECT_EQ(S_OK, write(7, "HEAD" + text));
  EXPECT_EQ(section(100004, text, "7 - 0 " + name + " " + details + "\n"), log());
}

TEST_F(CollectorErrorsLogTest, WritesNothingInDebugMode) {
  // Defined is enough, with or without a value.
  for (const char* value : {"", "REPLAY"}) {
    environment.set("ZETNORV_DEBUG", value);
    environment.set("App_ErrFile", directory.file("errors/"));
    environment.set("ZET_LOG_NAME", "test");
    EXPECT_EQ(S_OK, write(7, "HEADtext"));
    EXPECT_EQ(Lines{}, namesIn(directory.path().string()));
    EXPECT_EQ(Lines{}, trace.texts());
  }
}

TEST_F(CollectorErrorsLogTest, AFileThatDoesNotOpenIsTraced) {
  std::filesystem::create_directory(directory.path() / "error.log");
  EXPECT_EQ(E_FAIL, write(7, "HEADtext"));
  EXPECT_EQ(Lines{"Problem with KelFOpen writeLogFile!"}, trace.texts());
}

TEST_F(CollectorErrorsLogTest, AFaultIsTracedWhereverItStrikesAndLeavesNoFileOpen) {
  using Call = FaultyFileSystem::Call;
  struct Case {
    Call call;
    const char* line;
  };
  for (const Case& c : {Case{Call::kOpen, "Problem with KelFOpen writeLogFile!"},
                        Case{Call::kWrite, "Problem with KelFPuts writeLogFile!"},
                        Case{Call::kClose, "Problem with KelFPuts writeLogFile!"}}) {
    FaultyFileSystem files;
    files.fail(c.call);
    trace.clear();
    EXPECT_EQ(E_FAIL, write(7, "HEADtext"));
    EXPECT_EQ(1, files.faults());
    EXPECT_EQ(0, files.openFiles());
    EXPECT_EQ(Lines{c.line}, trace.texts());
    EXPECT_EQ(2, trace.lines()[0].level);
  }
}

TEST_F(CollectorErrorsLogTest, ASectionIsOneWrite) {
  errors.addError(10, "n", "d");
  FaultyFileSystem files;
  // Were there a second one, it would fail.
  files.fail(FaultyFileSystem::Call::kWrite, 2);
  EXPECT_EQ(S_OK, write(7, "HEADtext"));
  EXPECT_EQ(0, files.faults());
}

TEST_F(CollectorErrorsLogTest, WritingLeavesTheCollectorUnchanged) {
  errors.addError(10, "n", "d");
  EXPECT_EQ(S_OK, errors.writeLogFile(8, nullptr, 0));
  EXPECT_EQ(7, errors._messageNumber);
  EXPECT_EQ(1, errors._nbRecords);
  EXPECT_EQ(5, errors._capacity);
  EXPECT_EQ(0, errors.isEmpty());
}

}  // namespace
