#include "ZetNorvToolBox.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Environment.h"
#include "Files.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"

namespace {

using Strings = std::vector<std::string>;
using PathOperation = long (*)(MString&);

constexpr const char* kNoDebugValue =
    "Problem in ZetNorvToolBox::getModeValue with (ZETNORV_DEBUG): tselection == NULL.";
constexpr const char* kCommand = "#### MODE COMMAND ####";
constexpr const char* kNoName = "Problem (ZET_LOG_NAME): tselection == NULL.";
constexpr const char* kNoScenarioRoot = "Problem (App_SceFile): tselection == NULL.";

class ZetNorvToolBoxTest : public testing::Test {
 protected:
  // Debug mode, without any directory.
  void debug(const std::string& mode = "REPLAY") { _environment.set("ZETNORV_DEBUG", mode); }

  // The root directory `name` in the scratch directory, with a separator at its end.
  std::string root(const std::string& name) const { return _scratch.file(name) + "/"; }

  Strings filesInScratch() const { return namesIn(_scratch.path().string()); }

  void expectTraces(const Strings& texts) {
    EXPECT_EQ(_trace.texts(), texts);
    for (const TraceRecorder::Line& line : _trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
    _trace.clear();
  }

  // What `operation` gives, called with a path that read "before".
  std::string composed(PathOperation operation, long result = S_OK) {
    MString path("before");
    EXPECT_EQ(operation(path), result);
    return path.gchar();
  }

  ScratchDirectory _scratch;
  Environment _environment;
  TraceRecorder _trace;
};

// --- The run mode ---

struct ModeVariables {
  std::optional<std::string> debug;
  std::optional<std::string> command;
  std::optional<std::string> mode;
};

void set(Environment& environment, const ModeVariables& variables) {
  const std::pair<const char*, std::optional<std::string>> all[] = {
      {"ZETNORV_DEBUG", variables.debug},
      {"ZETNORV_CMD", variables.command},
      {"ZETNORV_MODE", variables.mode},
  };
  for (const auto& [name, value] : all) {
    if (value) {
      environment.set(name, *value);
    } else {
      environment.unset(name);
    }
  }
}

TEST_F(ZetNorvToolBoxTest, ModeComesFromTheFirstVariableThatHasASay) {
  const struct {
    ModeVariables variables;
    std::string mode;
    Strings traces;
  } cases[] = {
      {{{}, {}, "SAVE"}, "SAVE", {}},
      {{{}, "SCAN", "SAVE"}, "SCAN", {kCommand}},
      {{{}, "SCAN", {}}, "SCAN", {kCommand}},
      {{{}, "", "SAVE"}, "SAVE", {}},
      {{"REPLAY", "SCAN", "SAVE"}, "REPLAY", {}},
      {{"REPLAY", {}, "SAVE"}, "REPLAY", {}},
      {{"OLDREPLAY", {}, {}}, "OLDREPLAY", {}},
      {{{}, {}, "anything else"}, "anything else", {}},
  };
  for (const auto& [variables, expected, traces] : cases) {
    set(_environment, variables);
    MString mode("before");
    EXPECT_EQ(ZetNorvToolBox::getModeValue(mode), S_OK);
    EXPECT_STREQ(mode.gchar(), expected.c_str());
    expectTraces(traces);
  }
}

TEST_F(ZetNorvToolBoxTest, NoModeIsAFailureThatLeavesTheArgument) {
  const struct {
    ModeVariables variables;
    Strings traces;
  } cases[] = {
      {{{}, {}, {}}, {}},
      {{{}, {}, ""}, {}},
      {{{}, "", {}}, {}},
      {{{}, "", ""}, {}},
      {{"", {}, {}}, {kNoDebugValue}},
      {{"", {}, "SAVE"}, {kNoDebugValue}},  // a debug switch without a value hides the others
      {{"", "SCAN", "SAVE"}, {kNoDebugValue}},
  };
  for (const auto& [variables, traces] : cases) {
    set(_environment, variables);
    MString mode("before");
    EXPECT_EQ(ZetNorvToolBox::getModeValue(mode), E_FAIL);
    EXPECT_STREQ(mode.gchar(), "before");
    expectTraces(traces);
  }
}

TEST_F(ZetNorvToolBoxTest, ModeIsCutAtALineFeed) {
  const std::pair<const char*, const char*> cases[] = {{"SAVE\nX", "SAVE"}, {"\nSAVE", ""}};
  for (const char* variable : {"ZETNORV_MODE", "ZETNORV_CMD", "ZETNORV_DEBUG"}) {
    for (const auto& [value, expected] : cases) {
      _environment.set(variable, value);
      MString mode;
      EXPECT_EQ(ZetNorvToolBox::getModeValue(mode), S_OK);
      EXPECT_STREQ(mode.gchar(), expected) << variable;
    }
  }
}

TEST_F(ZetNorvToolBoxTest, DebugModeIsOnWhenItsVariableIsDefinedAtAll) {
  EXPECT_EQ(ZetNorvToolBox::inDebugMode(), E_FAIL);
  for (const char* value : {"REPLAY", "0", ""}) {
    _environment.set("ZETNORV_DEBUG", value);
    EXPECT_EQ(ZetNorvToolBox::inDebugMode(), S_OK) << value;
  }
  expectTraces({});
}

TEST_F(ZetNorvToolBoxTest, ModeTestsTakeABeginningOfTheirKeyword) {
  const struct {
    const char* mode;
    bool replay;
    bool old;
  } cases[] = {
      {"REPLAY", true, false},   {"REP", true, false},
      {"R", true, false},        {"OLDREPLAY", false, true},
      {"OLD", false, true},      {"O", false, true},
      {"SAVE", false, false},    {"SCAN", false, false},
      {"PLAY", false, false},    {"REPLAYS", false, false},
      {"replay", false, false},  {" REPLAY", false, false},
      {"REPLAY ", false, false}, {"OLDREPLAY1", false, false},
      {"\nSAVE", true, true},  // empty after the cut: passes every test
  };
  for (const char* variable : {"ZETNORV_MODE", "ZETNORV_CMD", "ZETNORV_DEBUG"}) {
    for (const auto& [mode, replay, old] : cases) {
      _environment.set(variable, mode);
      EXPECT_EQ(ZetNorvToolBox::inReplayMode(), replay ? S_OK : E_FAIL) << variable << mode;
      EXPECT_EQ(ZetNorvToolBox::inOldMode(), old ? S_OK : E_FAIL) << variable << mode;
      EXPECT_EQ(ZetNorvToolBox::inZetMode(), S_OK) << variable << mode;
    }
  }
}

TEST_F(ZetNorvToolBoxTest, ModeTestsFailWithoutAMode) {
  EXPECT_EQ(ZetNorvToolBox::inZetMode(), E_FAIL);
  EXPECT_EQ(ZetNorvToolBox::inReplayMode(), E_FAIL);
  EXPECT_EQ(ZetNorvToolBox::inOldMode(), E_FAIL);
  expectTraces({});
}

TEST_F(ZetNorvToolBoxTest, EveryModeTestTracesACommandMode) {
  set(_environment, {{}, "REPLAY", "SAVE"});
  for (long (*test)() :
       {ZetNorvToolBox::inZetMode, ZetNorvToolBox::inReplayMode, ZetNorvToolBox::inOldMode}) {
    test();
    expectTraces({kCommand});
  }
}

TEST_F(ZetNorvToolBoxTest, ReplayTestsFailOnADebugSwitchWithoutAValue) {
  set(_environment, {"", "REPLAY", "REPLAY"});
  EXPECT_EQ(ZetNorvToolBox::inReplayMode(), E_FAIL);
  expectTraces({kNoDebugValue});
  set(_environment, {"", "OLDREPLAY", "OLDREPLAY"});
  EXPECT_EQ(ZetNorvToolBox::inOldMode(), E_FAIL);
  expectTraces({kNoDebugValue});
}

TEST_F(ZetNorvToolBoxTest, AnyModeTestTakesAnOrdinaryReplayBehindADebugSwitchWithoutAValue) {
  const std::pair<std::optional<std::string>, long> cases[] = {
      {"REPLAY", S_OK}, {"REP", S_OK},         {"\nSAVE", S_OK}, {"SAVE", E_FAIL},
      {"SCAN", E_FAIL}, {"OLDREPLAY", E_FAIL}, {"", E_FAIL},     {std::nullopt, E_FAIL},
  };
  for (const auto& [mode, result] : cases) {
    set(_environment, {"", "SCAN", mode});
    EXPECT_EQ(ZetNorvToolBox::inZetMode(), result) << mode.value_or("(not set)");
    expectTraces({kNoDebugValue});
  }
}

TEST_F(ZetNorvToolBoxTest, ModeIsReadAfreshByEveryCall) {
  _environment.set("ZETNORV_MODE", "SAVE");
  EXPECT_EQ(ZetNorvToolBox::inReplayMode(), E_FAIL);
  _environment.set("ZETNORV_MODE", "REPLAY");
  EXPECT_EQ(ZetNorvToolBox::inReplayMode(), S_OK);
}

// --- The test's name ---

TEST_F(ZetNorvToolBoxTest, TestNameIsItsVariable) {
  _environment.set("ZET_LOG_NAME", "test 1");
  EXPECT_EQ(composed(ZetNorvToolBox::getZetName), "test 1");
  expectTraces({});
}

TEST_F(ZetNorvToolBoxTest, MissingOrEmptyTestNameIsAFailure) {
  EXPECT_EQ(composed(ZetNorvToolBox::getZetName, E_FAIL), "before");
  expectTraces({kNoName});
  _environment.set("ZET_LOG_NAME", "");
  EXPECT_EQ(composed(ZetNorvToolBox::getZetName, E_FAIL), "before");
  expectTraces({kNoName});
}

// --- The configuration ---

TEST_F(ZetNorvToolBoxTest, VariableFileIsInTheConfigurationDirectoryInBothModes) {
  for (const bool debugging : {false, true}) {
    if (debugging) debug();
    _environment.set("App_CfgFile", "/a/cfg/");
    EXPECT_EQ(composed(ZetNorvToolBox::getVarEnvPath), "/a/cfg/varEnv.txt");
    _environment.set("App_CfgFile", "/a/cfg");  // no separator is added
    EXPECT_EQ(composed(ZetNorvToolBox::getVarEnvPath), "/a/cfgvarEnv.txt");
    expectTraces({});
    _environment.set("App_CfgFile", "");
    EXPECT_EQ(composed(ZetNorvToolBox::getVarEnvPath, E_FAIL), "before");
    _environment.unset("App_CfgFile");
    EXPECT_EQ(composed(ZetNorvToolBox::getVarEnvPath, E_FAIL), "before");
    expectTraces(Strings(2, "Problem (App_CfgFile): tselection == NULL."));
  }
}

TEST_F(ZetNorvToolBoxTest, ConfigurationDirectoryInDebugModeIsItsVariable) {
  debug();
  _environment.set("BIX_ZET_IN", "/b");
  _environment.set("App_CfgFile", "/a/cfg");
  EXPECT_EQ(composed(ZetNorvToolBox::getCfgPath), "/a/cfg");
  expectTraces({});
  _environment.set("App_CfgFile", "");
  EXPECT_EQ(composed(ZetNorvToolBox::getCfgPath, E_FAIL), "before");
  _environment.unset("App_CfgFile");
  EXPECT_EQ(composed(ZetNorvToolBox::getCfgPath, E_FAIL), "before");
  expectTraces(Strings(2, "Problem (App_CfgFile): tselection == NULL."));
}

TEST_F(ZetNorvToolBoxTest, ConfigurationDirectoryOutsideDebugModeIsInTheInputRoot) {
  _environment.set("App_CfgFile", "/a/cfg");
  _environment.set("BIX_ZET_IN", "/b");
  EXPECT_EQ(composed(ZetNorvToolBox::getCfgPath), "/b\\Configuration\\");
  expectTraces({});
}

// --- The recording's directories in debug mode ---

struct DebugDirectory {
  PathOperation operation;
  const char* variable;
  const char* leaf;
  const char* missing;
};

constexpr DebugDirectory kDebugDirectories[] = {
    {ZetNorvToolBox::getRefPath, "App_RefFile", "/Reference",
     "Problem (App_RefFile): tselection == NULL."},
    {ZetNorvToolBox::getScePath, "App_SceFile", "/Scenario",
     "Problem (App_SceFile): tselection == NULL."},
    {ZetNorvToolBox::getErrPath, "App_ErrFile", "/Error",
     "Problem (App_ErrFile): tselection == NULL."},
};

TEST_F(ZetNorvToolBoxTest, DebugDirectoriesStandInRootsOfTheirOwn) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  _environment.set("BIX_ZET_IN", root("in"));
  for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
    _environment.set(variable, root(variable));
    EXPECT_EQ(composed(operation), root(variable) + "test1" + leaf);
  }
  expectTraces({});
}

TEST_F(ZetNorvToolBoxTest, DebugDirectoriesAreMadeWithoutTheirLeaf) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
    _environment.set(variable, root(variable) + "deep/down/");
    composed(operation);
    EXPECT_EQ(namesIn(root(variable) + "deep/down"), Strings{"test1"});
    EXPECT_EQ(namesIn(root(variable) + "deep/down/test1"), Strings{});
    composed(operation);  // it may be there already
    EXPECT_EQ(namesIn(root(variable) + "deep/down"), Strings{"test1"});
  }
}

TEST_F(ZetNorvToolBoxTest, DebugRootIsGluedToTheTestName) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
    _environment.set(variable, _scratch.file(variable));
    EXPECT_EQ(composed(operation), _scratch.file(variable) + "test1" + leaf);
    EXPECT_TRUE(exists(_scratch.file(variable) + "test1"));
    EXPECT_FALSE(exists(_scratch.file(variable)));
  }
}

TEST_F(ZetNorvToolBoxTest, DebugModeWithoutAValueTakesTheSameDirectories) {
  debug("");
  _environment.set("ZET_LOG_NAME", "test1");
  for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
    _environment.set(variable, root(variable));
    EXPECT_EQ(composed(operation), root(variable) + "test1" + leaf);
  }
  expectTraces({});
}

TEST_F(ZetNorvToolBoxTest, MissingDebugRootLeavesTheArgumentAndMakesNothing) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  _environment.set("BIX_ZET_IN", root("in"));
  for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
    EXPECT_EQ(composed(operation, E_FAIL), "before");
    _environment.set(variable, "");
    EXPECT_EQ(composed(operation, E_FAIL), "before");
    expectTraces({missing, missing});
  }
  EXPECT_EQ(filesInScratch(), Strings{});
}

TEST_F(ZetNorvToolBoxTest, MissingTestNameInDebugModeLeavesTheRootAloneInTheArgument) {
  debug();
  for (const char* name : {"(not set)", ""}) {
    if (*name == '\0') _environment.set("ZET_LOG_NAME", name);
    for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
      _environment.set(variable, root(variable));
      EXPECT_EQ(composed(operation, E_FAIL), root(variable));
      expectTraces({kNoName});
    }
  }
  EXPECT_EQ(filesInScratch(), Strings{});
}

TEST_F(ZetNorvToolBoxTest, DirectoryThatCannotBeMadeIsNoFailureOfItsPath) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  writeBytes(_scratch.file("occupied"), "a file where a directory is wanted");
  for (const auto& [operation, variable, leaf, missing] : kDebugDirectories) {
    _environment.set(variable, root("occupied"));
    EXPECT_EQ(composed(operation), root("occupied") + "test1" + leaf);
  }
  expectTraces({});
}

TEST_F(ZetNorvToolBoxTest, BackslashesInADebugRootSeparateDirectories) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  _environment.set("App_RefFile", _scratch.path().string() + "\\ref\\");
  EXPECT_EQ(composed(ZetNorvToolBox::getRefPath),
            _scratch.path().string() + "\\ref\\test1/Reference");
  EXPECT_EQ(namesIn(_scratch.file("ref")), Strings{"test1"});
}

// --- The recording's directories outside debug mode ---

constexpr std::pair<PathOperation, const char*> kRecordingDirectories[] = {
    {ZetNorvToolBox::getRefPath, ".rec\\Reference"},
    {ZetNorvToolBox::getScePath, ".rec\\Scenario"},
};

TEST_F(ZetNorvToolBoxTest, RecordingDirectoriesStandInTheInputRootAndAreNotMade) {
  _environment.set("ZET_LOG_NAME", "test1");
  _environment.set("BIX_ZET_IN", _scratch.file("in"));
  _environment.set("App_RefFile", root("ref"));
  _environment.set("App_SceFile", root("sce"));
  for (const auto& [operation, leaf] : kRecordingDirectories) {
    EXPECT_EQ(composed(operation), _scratch.file("in") + "\\test1" + leaf);
  }
  composed(ZetNorvToolBox::getCfgPath);
  expectTraces({});
  EXPECT_EQ(filesInScratch(), Strings{});
}

TEST_F(ZetNorvToolBoxTest, MissingTestNameIsReportedAndLeftOutOfARecordingDirectory) {
  _environment.set("BIX_ZET_IN", "/b");
  for (const char* name : {"(not set)", ""}) {
    if (*name == '\0') _environment.set("ZET_LOG_NAME", name);
    for (const auto& [operation, leaf] : kRecordingDirectories) {
      EXPECT_EQ(composed(operation), std::string("/b\\") + leaf);
      expectTraces({kNoName});
    }
  }
}

TEST_F(ZetNorvToolBoxTest, MissingInputRootIsReportedAsTheScenarioRoot) {
  _environment.set("ZET_LOG_NAME", "test1");
  for (const char* variable : {"App_CfgFile", "App_RefFile", "App_SceFile"}) {
    _environment.set(variable, root(variable));
  }
  for (const char* value : {"(not set)", ""}) {
    if (*value == '\0') _environment.set("BIX_ZET_IN", value);
    for (PathOperation operation :
         {ZetNorvToolBox::getCfgPath, ZetNorvToolBox::getRefPath, ZetNorvToolBox::getScePath}) {
      EXPECT_EQ(composed(operation, E_FAIL), "before");
      expectTraces({kNoScenarioRoot});
    }
  }
}

TEST_F(ZetNorvToolBoxTest, ErrorDirectoryOutsideDebugModeLeavesTheArgument) {
  EXPECT_EQ(composed(ZetNorvToolBox::getErrPath), "before");
  _environment.set("ZET_LOG_NAME", "test1");
  _environment.set("App_ErrFile", root("err"));
  _environment.set("ZETNORV_MODE", "REPLAY");
  EXPECT_EQ(composed(ZetNorvToolBox::getErrPath), "before");
  MString null;
  EXPECT_EQ(ZetNorvToolBox::getErrPath(null), S_OK);
  EXPECT_EQ(null.isNull(), 1);
  expectTraces({});
  EXPECT_EQ(filesInScratch(), Strings{});
}

// --- The argument ---

TEST_F(ZetNorvToolBoxTest, PathOperationsTakeANullStringAsWell) {
  debug();
  _environment.set("ZET_LOG_NAME", "test1");
  _environment.set("App_RefFile", root("ref"));
  MString path;
  EXPECT_EQ(ZetNorvToolBox::getRefPath(path), S_OK);
  EXPECT_EQ(path.gchar(), root("ref") + "test1/Reference");
}

TEST_F(ZetNorvToolBoxTest, RootIsCutAtALineFeed) {
  _environment.set("BIX_ZET_IN", "/b\n/c");
  _environment.set("ZET_LOG_NAME", "test1\nX");
  EXPECT_EQ(composed(ZetNorvToolBox::getRefPath), "/b\\test1.rec\\Reference");
}

TEST_F(ZetNorvToolBoxTest, NullReferencesAreRefused) {
  const PathOperation operations[] = {
      ZetNorvToolBox::getModeValue, ZetNorvToolBox::getZetName, ZetNorvToolBox::getVarEnvPath,
      ZetNorvToolBox::getCfgPath,   ZetNorvToolBox::getRefPath, ZetNorvToolBox::getScePath,
  };
  for (const char* variable : {"ZETNORV_MODE", "ZET_LOG_NAME", "App_CfgFile", "App_RefFile",
                               "App_SceFile", "BIX_ZET_IN"}) {
    _environment.set(variable, root("set"));
  }
  for (const bool debugging : {false, true}) {
    if (debugging) debug();
    for (PathOperation operation : operations) {
      EXPECT_EQ(operation(nullReferenceTo<MString>()), E_FAIL);
    }
  }
  EXPECT_EQ(filesInScratch(), Strings{});
}

TEST_F(ZetNorvToolBoxTest, AssignmentReturnsItsTarget) {
  ZetNorvToolBox target;
  const ZetNorvToolBox source;
  EXPECT_EQ(&(target = source), &target);
  static_assert(std::is_empty_v<ZetNorvToolBox>);
}

}  // namespace
