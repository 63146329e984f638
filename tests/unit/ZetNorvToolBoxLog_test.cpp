// The operations of ZetNorvToolBox that write, copy and print.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "Environment.h"
#include "FaultyFileSystem.h"
#include "Files.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"
#include "ZetNorvToolBox.h"

namespace {

using Strings = std::vector<std::string>;
using Call = FaultyFileSystem::Call;

constexpr const char* kNoErrorRoot = "Problem (App_ErrFile): tselection == NULL.";
constexpr const char* kNoName = "Problem (ZET_LOG_NAME): tselection == NULL.";
constexpr const char* kNoPath =
    "Problem in ZetNorvToolBox::writeLog with ZetNorvToolBox::getRefPath";
constexpr const char* kMade = "After KelCreateDirectory(Path)==KelLibSucces";
constexpr const char* kNotOpened = "Problem in ZetNorvToolBox::writeLog with KelFOpen";
constexpr const char* kNotWritten = "Problem in ZetNorvToolBox::writeLog with file.puts";

class ZetNorvToolBoxLogTest : public testing::Test {
 protected:
  // Debug mode with an error directory that is not there yet.
  void debug() {
    _environment.set("ZETNORV_DEBUG", "REPLAY");
    _environment.set("App_ErrFile", _scratch.file("err") + "/");
    _environment.set("ZET_LOG_NAME", "test1");
  }

  std::string errorDirectory() const { return _scratch.file("err") + "/test1/Error"; }

  void expectTraces(const Strings& texts) {
    EXPECT_EQ(_trace.texts(), texts);
    for (const TraceRecorder::Line& line : _trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
    _trace.clear();
  }

  ScratchDirectory _scratch;
  Environment _environment;
  TraceRecorder _trace;
};

TEST_F(ZetNorvToolBoxLogTest, WritesNothingOutsideDebugMode) {
  _environment.set("ZETNORV_MODE", "REPLAY");
  _environment.set("App_ErrFile", _scratch.file("err") + "/");
  _environment.set("ZET_LOG_NAME", "test1");
  EXPECT_EQ(ZetNorvToolBox::writeLog("text\n"), S_OK);
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("own.log"), "text\n"), S_OK);
  EXPECT_EQ(ZetNorvToolBox::writeLog(nullptr), S_OK);
  expectTraces({});
  EXPECT_EQ(namesIn(_scratch.path().string()), Strings{});
}

TEST_F(ZetNorvToolBoxLogTest, AppendsTheTextExactlyAsGiven) {
  debug();
  for (const char* text : {"one\n", "two", "", "%s%n\r\n", "\xE9 three\nfour\n"}) {
    EXPECT_EQ(ZetNorvToolBox::writeLog(text), S_OK);
  }
  EXPECT_EQ(readBytes(errorDirectory() + "/trace.log"), "one\ntwo%s%n\r\n\xE9 three\nfour\n");
  EXPECT_EQ(namesIn(errorDirectory()), Strings{"trace.log"});
}

TEST_F(ZetNorvToolBoxLogTest, AppendsALongTextWhole) {
  debug();
  const std::string text(100'000, 'x');
  EXPECT_EQ(ZetNorvToolBox::writeLog(text.c_str()), S_OK);
  EXPECT_EQ(readBytes(errorDirectory() + "/trace.log"), text);
}

TEST_F(ZetNorvToolBoxLogTest, AppendsToWhatIsThere) {
  debug();
  writeBytes(errorDirectory() + "/trace.log", "before\n");
  EXPECT_EQ(ZetNorvToolBox::writeLog("after\n"), S_OK);
  EXPECT_EQ(readBytes(errorDirectory() + "/trace.log"), "before\nafter\n");
}

TEST_F(ZetNorvToolBoxLogTest, WritesFilesOfAnyName) {
  debug();
  const MString name("own.log");
  EXPECT_EQ(ZetNorvToolBox::writeLog(name, "one\n"), S_OK);
  EXPECT_EQ(ZetNorvToolBox::writeLog(name, "two\n"), S_OK);
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("other.log"), "three"), S_OK);
  EXPECT_STREQ(name.gchar(), "own.log");
  EXPECT_EQ(readBytes(errorDirectory() + "/own.log"), "one\ntwo\n");
  EXPECT_EQ(readBytes(errorDirectory() + "/other.log"), "three");
  EXPECT_EQ(namesIn(errorDirectory()), (Strings{"other.log", "own.log"}));
}

TEST_F(ZetNorvToolBoxLogTest, TracesTheDirectoryThenTheFile) {
  debug();
  ZetNorvToolBox::writeLog("text");
  expectTraces({errorDirectory(), errorDirectory() + "\\trace.log"});
}

TEST_F(ZetNorvToolBoxLogTest, TracesThatTheDirectoryIsThereForAFileOfItsOwnName) {
  debug();
  for (int time = 0; time < 2; ++time) {  // made by the first, found by the second
    ZetNorvToolBox::writeLog(MString("own.log"), "text");
    expectTraces({errorDirectory(), kMade, errorDirectory() + "\\own.log"});
  }
}

TEST_F(ZetNorvToolBoxLogTest, WritesAlsoWhenTheDebugSwitchHasNoValue) {
  debug();
  _environment.set("ZETNORV_DEBUG", "");
  EXPECT_EQ(ZetNorvToolBox::writeLog("text"), S_OK);
  EXPECT_EQ(readBytes(errorDirectory() + "/trace.log"), "text");
}

TEST_F(ZetNorvToolBoxLogTest, FailsWithoutAnErrorDirectory) {
  debug();
  for (const char* value : {"(not set)", ""}) {
    if (*value == '\0') {
      _environment.set("App_ErrFile", "");
    } else {
      _environment.unset("App_ErrFile");
    }
    EXPECT_EQ(ZetNorvToolBox::writeLog("text"), E_FAIL);
    expectTraces({kNoErrorRoot, kNoPath});
    EXPECT_EQ(ZetNorvToolBox::writeLog(MString("own.log"), "text"), E_FAIL);
    expectTraces({kNoErrorRoot, kNoPath});
  }
  EXPECT_EQ(namesIn(_scratch.path().string()), Strings{});
}

TEST_F(ZetNorvToolBoxLogTest, FailsWithoutATestName) {
  debug();
  _environment.unset("ZET_LOG_NAME");
  EXPECT_EQ(ZetNorvToolBox::writeLog("text"), E_FAIL);
  expectTraces({kNoName, kNoPath});
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("own.log"), "text"), E_FAIL);
  expectTraces({kNoName, kNoPath});
  EXPECT_EQ(namesIn(_scratch.path().string()), Strings{});
}

TEST_F(ZetNorvToolBoxLogTest, FailsWhenTheLogCannotBeOpened) {
  debug();
  std::filesystem::create_directories(errorDirectory() + "/trace.log");
  EXPECT_EQ(ZetNorvToolBox::writeLog("text"), E_FAIL);
  expectTraces({errorDirectory(), errorDirectory() + "\\trace.log", kNotOpened});
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("missing/own.log"), "text"), E_FAIL);
  expectTraces({errorDirectory(), kMade, errorDirectory() + "\\missing/own.log", kNotOpened});
  EXPECT_EQ(namesIn(errorDirectory()), Strings{"trace.log"});
}

TEST_F(ZetNorvToolBoxLogTest, FailsAtTheFileWhenTheDirectoryCannotBeMade) {
  debug();
  writeBytes(_scratch.file("err"), "a file where a directory is wanted");
  EXPECT_EQ(ZetNorvToolBox::writeLog("text"), E_FAIL);
  expectTraces({errorDirectory(), errorDirectory() + "\\trace.log", kNotOpened});
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("own.log"), "text"), E_FAIL);
  expectTraces({errorDirectory(), errorDirectory() + "\\own.log", kNotOpened});
}

TEST_F(ZetNorvToolBoxLogTest, FailsWhenTheTextCannotBeWrittenOrDoesNotReachTheFile) {
  debug();
  for (const Call call : {Call::kWrite, Call::kClose}) {
    FaultyFileSystem fileSystem;
    fileSystem.fail(call);
    EXPECT_EQ(ZetNorvToolBox::writeLog("text"), E_FAIL);
    EXPECT_EQ(fileSystem.faults(), 1);
    EXPECT_EQ(fileSystem.openFiles(), 0);
    expectTraces({errorDirectory(), errorDirectory() + "\\trace.log", kNotWritten});
  }
}

TEST_F(ZetNorvToolBoxLogTest, NullTextCannotBeWritten) {
  debug();
  EXPECT_EQ(ZetNorvToolBox::writeLog(nullptr), E_FAIL);
  expectTraces({errorDirectory(), errorDirectory() + "\\trace.log", kNotWritten});
  EXPECT_EQ(ZetNorvToolBox::writeLog(MString("own.log"), nullptr), E_FAIL);
  expectTraces({errorDirectory(), kMade, errorDirectory() + "\\own.log", kNotWritten});
}

TEST_F(ZetNorvToolBoxLogTest, NullOrEmptyFileNameCannotBeOpened) {
  debug();
  for (const MString& name : {MString(), MString("")}) {
    EXPECT_EQ(ZetNorvToolBox::writeLog(name, "text"), E_FAIL);
    expectTraces({errorDirectory(), kMade, errorDirectory() + "\\", kNotOpened});
  }
  EXPECT_EQ(namesIn(errorDirectory()), Strings{});
}

// --- StreamFromEmul ---

class ZetNorvToolBoxCopyTest : public testing::Test {
 protected:
  std::string source() const { return _scratch.file("source.doc"); }
  std::string target() const { return _scratch.file("target.doc"); }

  long copy(const std::string& from, const std::string& to) {
    KelUnicodeString document(to.c_str());
    const long result = ZetNorvToolBox::StreamFromEmul(from.c_str(), document);
    EXPECT_STREQ(document.ConvertToChar(), to.c_str());
    return result;
  }

  ScratchDirectory _scratch;
  TraceRecorder _trace;
};

TEST_F(ZetNorvToolBoxCopyTest, CopiesTheDocument) {
  const std::string bytes("a\0b\r\n\xFF", 6);
  writeBytes(source(), bytes);
  EXPECT_EQ(copy(source(), target()), S_OK);
  EXPECT_EQ(readBytes(target()), bytes);
  EXPECT_EQ(readBytes(source()), bytes);
}

TEST_F(ZetNorvToolBoxCopyTest, ReplacesTheTarget) {
  writeBytes(source(), "new");
  writeBytes(target(), "older and longer");
  EXPECT_EQ(copy(source(), target()), S_OK);
  EXPECT_EQ(readBytes(target()), "new");
}

TEST_F(ZetNorvToolBoxCopyTest, TracesTheCallAndTheCopyAtTheirLevels) {
  writeBytes(source(), "x");
  copy(source(), target());
  ASSERT_EQ(_trace.texts(),
            (Strings{"ZetNorvToolBox::StreamFromEmul", "> Recopie du document " + source()}));
  EXPECT_EQ(_trace.lines()[0].level, 2);
  EXPECT_EQ(_trace.lines()[1].level, 4);
}

TEST_F(ZetNorvToolBoxCopyTest, IgnoresBlanksAroundTheSource) {
  const std::string inner = _scratch.file("a b.doc");
  writeBytes(inner, "x");
  EXPECT_EQ(copy("  " + inner + " \t", target()), S_OK);
  EXPECT_EQ(readBytes(target()), "x");
  EXPECT_TRUE(_trace.has("> Recopie du document " + inner));
}

TEST_F(ZetNorvToolBoxCopyTest, FailsWithoutTheSourceOrATarget) {
  writeBytes(source(), "x");
  EXPECT_EQ(copy(_scratch.file("missing"), target()), E_FAIL);
  EXPECT_EQ(copy("", target()), E_FAIL);
  EXPECT_EQ(copy(_scratch.path().string(), target()), E_FAIL);
  EXPECT_EQ(copy(source(), ""), E_FAIL);
  EXPECT_EQ(copy(source(), _scratch.file("missing/target")), E_FAIL);
  EXPECT_EQ(namesIn(_scratch.path().string()), Strings{"source.doc"});
}

TEST_F(ZetNorvToolBoxCopyTest, NullSourceFails) {
  KelUnicodeString document(target().c_str());
  EXPECT_EQ(ZetNorvToolBox::StreamFromEmul(nullptr, document), E_FAIL);
  EXPECT_FALSE(exists(target()));
}

TEST_F(ZetNorvToolBoxCopyTest, NullTargetBecomesTheSourceAndTheErrorReturnReports) {
  writeBytes(source(), "x");
  KelUnicodeString document;
  EXPECT_EQ(ZetNorvToolBox::StreamFromEmul((" " + source() + " ").c_str(), document), E_FAIL);
  EXPECT_STREQ(document.ConvertToChar(), source().c_str());
  EXPECT_EQ(_trace.texts(), Strings{"ZetNorvToolBox::StreamFromEmul"});
  EXPECT_TRUE(std::any_of(_trace.lines().begin(), _trace.lines().end(), [](const auto& line) {
    return line.trace == "KelError" &&
           line.text.find("ZetNorvEmulator.m/src/ZetNorvToolBox") != std::string::npos &&
           line.text.find("445") != std::string::npos;
  }));
  EXPECT_EQ(namesIn(_scratch.path().string()), Strings{"source.doc"});
}

TEST_F(ZetNorvToolBoxCopyTest, NullReferenceForTheTargetFails) {
  writeBytes(source(), "x");
  EXPECT_EQ(ZetNorvToolBox::StreamFromEmul(source().c_str(), nullReferenceTo<KelUnicodeString>()),
            E_FAIL);
  EXPECT_EQ(_trace.texts(), Strings{"ZetNorvToolBox::StreamFromEmul"});
}

TEST_F(ZetNorvToolBoxCopyTest, CopyThatFailsHalfwayLeavesNoTarget) {
  writeBytes(source(), "x");
  for (const Call call : {Call::kOpen, Call::kRead, Call::kWrite, Call::kClose, Call::kRename}) {
    FaultyFileSystem fileSystem;
    fileSystem.fail(call);
    EXPECT_EQ(copy(source(), target()), E_FAIL);
    EXPECT_EQ(fileSystem.faults(), 1);
    EXPECT_EQ(fileSystem.openFiles(), 0);
    EXPECT_EQ(namesIn(_scratch.path().string()), Strings{"source.doc"});
  }
}

// --- magicTool ---

class ZetNorvToolBoxMagicTest : public testing::Test {
 protected:
  Environment _environment;
  TraceRecorder _trace;
};

TEST_F(ZetNorvToolBoxMagicTest, StopsAtAListedNumberAndPrintsTheListThere) {
  const struct {
    const char* list;
    int number;
    const char* printed;
    bool found;
  } cases[] = {
      {"3,7", 7, "37", true},     {"3,7", 3, "3", true},     {"3,7", 5, "37", false},
      {"7", 7, "7", true},        {"7,7", 7, "7", true},     {" 7", 7, " 7", true},
      {"7x", 7, "7x", true},      {"-1", -1, "-1", true},    {"3,,7", 7, "3NULL7", true},
      {"3,,7", 0, "3NULL", true}, {"3,", 5, "3NULL", false}, {",", 5, "NULLNULL", false},
      {"NULL", 0, "NULL", true},  {"abc", 0, "abc", true},   {"1,END,7", 7, "1", false},
      {"1,EN,7", 7, "1", false},  {"1,E,7", 7, "1", false},  {"ENDS,7", 7, "ENDS7", true},
      {"end,7", 7, "end7", true}, {"3\n,7", 7, "3", false},  {"\n7", 7, "NULL", false},
      {"\n7", 0, "NULL", true},   {"3;7", 7, "3;7", false},
  };
  _environment.set("ZETNORV_DEBUG", "");
  for (const auto& [list, number, printed, found] : cases) {
    _environment.set("ZETNORV_CONST", list);
    const ConsoleCapture console;
    EXPECT_EQ(ZetNorvToolBox::magicTool(number), found ? S_OK : E_FAIL) << list;
    EXPECT_EQ(console.text(), printed) << list;
    EXPECT_EQ(_trace.texts(),
              found ? Strings{"#### EXIT Cf. : " + std::to_string(number)} : Strings{});
    _trace.clear();
  }
}

TEST_F(ZetNorvToolBoxMagicTest, FailsSilentlyOutsideDebugMode) {
  _environment.set("ZETNORV_CONST", "7");
  _environment.set("ZETNORV_MODE", "REPLAY");
  const ConsoleCapture console;
  EXPECT_EQ(ZetNorvToolBox::magicTool(7), E_FAIL);
  EXPECT_EQ(console.text(), "");
  EXPECT_EQ(_trace.texts(), Strings{});
}

TEST_F(ZetNorvToolBoxMagicTest, FailsSilentlyWithoutAList) {
  _environment.set("ZETNORV_DEBUG", "REPLAY");
  const ConsoleCapture console;
  EXPECT_EQ(ZetNorvToolBox::magicTool(0), E_FAIL);
  _environment.set("ZETNORV_CONST", "");
  EXPECT_EQ(ZetNorvToolBox::magicTool(0), E_FAIL);
  EXPECT_EQ(console.text(), "");
  EXPECT_EQ(_trace.texts(), Strings{});
}

}  // namespace
