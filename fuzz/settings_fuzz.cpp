// Any values of the environment's variables, and one exchange under them: the mode and the paths
// are those of a plain second implementation, and the exchange goes on.
//
// An input: for each variable below, up to a NUL, '=' and its value; anything else leaves it unset.
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>

#include "FuzzInput.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "PlainReplay.h"
#include "ZetNorvToolBox.h"

using fuzz::expect;
using fuzz::expectEqual;
using Text = std::optional<std::string>;

namespace {

constexpr const char* kVariables[] = {"ZETNORV_DEBUG", "ZETNORV_CMD", "ZETNORV_MODE",
                                      "ZET_LOG_NAME",  "BIX_ZET_IN",  "App_CfgFile",
                                      "App_RefFile",   "App_SceFile", "App_ErrFile"};

class Settings {
 public:
  Settings(fuzz::Input& input, Environment& environment) {
    for (const char* const name : kVariables) {
      const std::string value = input.textTo('\0');
      if (value.empty() || value[0] != '=') continue;
      _values[name] = value.substr(1);
      environment.set(name, _values[name]);
    }
  }

  bool debug() const { return _values.contains("ZETNORV_DEBUG"); }

  // The first line of a variable's value; an empty value is none.
  Text valueOf(const std::string& name) const {
    const auto found = _values.find(name);
    if (found == _values.end() || found->second.empty()) return std::nullopt;
    return fuzz::firstLine(found->second);
  }

  Text mode() const {
    if (debug()) return valueOf("ZETNORV_DEBUG");
    const Text command = valueOf("ZETNORV_CMD");
    return command ? command : valueOf("ZETNORV_MODE");
  }

  Text configuration() const {
    if (debug()) return valueOf("App_CfgFile");
    return behind(valueOf("BIX_ZET_IN"), "\\Configuration\\");
  }

  Text directory(const std::string& root, const std::string& leaf) const {
    const Text name = valueOf("ZET_LOG_NAME");
    if (!debug()) {
      return behind(valueOf("BIX_ZET_IN"), "\\" + name.value_or("") + ".rec\\" + leaf);
    }
    return name ? behind(valueOf(root), *name + "/" + leaf) : std::nullopt;
  }

  Text reference() const { return directory("App_RefFile", "Reference"); }
  Text scenario() const { return directory("App_SceFile", "Scenario"); }
  Text errors() const { return debug() ? directory("App_ErrFile", "Error") : std::nullopt; }

 private:
  static Text behind(const Text& root, const std::string& path) {
    return root ? Text(*root + path) : std::nullopt;
  }

  std::map<std::string, std::string> _values;
};

std::string native(const std::string& path) {
  return KelNativePath(KelUnicodeString(path.c_str()).ConvertToWide());
}

void isPath(long (*operation)(MString&), const Text& expected, const char* statement) {
  MString path;
  expect(operation(path) == (expected ? S_OK : E_FAIL), statement);
  if (expected) expectEqual(path.gchar(), *expected, statement);
}

bool isOneOf(const Text& mode, std::initializer_list<const char*> keywords) {
  for (const char* const keyword : keywords) {
    if (mode && fuzz::starts(keyword, *mode)) return true;
  }
  return false;
}

class OneExchange {
 public:
  OneExchange(const Settings& settings, fuzz::Emulated& emulated)
      : _settings(settings), _files(fuzz::Emulated::files()), _trace(emulated.trace) {}

  void run() {
    const Text mode = _settings.mode();
    const std::string sent = request(6, "sent");
    _trace.clear();
    const long result = fuzz::send(sent);
    const bool checks = isOneOf(mode, {"REPLAY", "SCAN", "OLDREPLAY"});
    const bool records = !checks && isOneOf(mode, {"SAVE"});
    expect(ZetNorvEmul::_nOp == 6 && ZetNorvEmul::_posCursPre == 1, "the request is counted");
    if (checks || !mode) expect(result == E_FAIL, "nothing is there to check against");
    expect(_trace.has("ZetNorvEmul STOP") == (mode && !checks && !records),
           "a mode that is none stops the hook");
    if (records) {
      recorded(result, "save6_0.txt", sent, "Scenario.txt");
    } else {
      expect(!checks || _trace.has(problemOfCheck()), "a failed check is told of");
    }
    receives(mode);
    nothingElse();
  }

 private:
  std::string problemOfCheck() const {
    return _settings.scenario()
               ? "Problem in ZetNorvEmul::preWensnd with KelFOpen!"
               : "Problem in ZetNorvEmul::preWensnd with ZetNorvToolBox::getScePath";
  }

  void receives(const Text& mode) {
    _trace.clear();
    const fuzz::Received received = fuzz::receive("received", 3);
    expectEqual(received.bytes, "received", "the answer stays as it is");
    expect(received.status == 3, "and so does its status");
    const bool replays = isOneOf(mode, {"REPLAY", "OLDREPLAY"});
    const bool records = !replays && isOneOf(mode, {"SAVE"});
    expect(_trace.has("ZetNorvEmul STOP") == (!replays && !records), "other modes stop the hook");
    if (records) {
      recorded(received.result, "rep6_0.txt", "received", "Scenario2.txt");
    } else {
      const bool failed = replays && !_settings.scenario();
      expect(received.result == (failed ? E_FAIL : S_OK), "without a recording nothing is served");
    }
  }

  // Whether the recording was done as `result` says.
  void recorded(long result, const std::string& name, const std::string& bytes,
                const std::string& index) {
    const Text reference = _settings.reference();
    const Text scenario = _settings.scenario();
    const bool isAnswer = name[0] == 'r';
    if (!scenario || (!reference && !isAnswer))
      expect(result == E_FAIL, "there is no place for it");
    if (scenario) _allowed[native(*scenario + "\\" + index)] = "";
    if (!scenario || !reference) return;
    const std::string file = native(*reference + "\\" + name);
    const std::string lines = native(*scenario + "\\" + index);
    const bool written = _files.exists(file);
    if (written) _allowed[file] = bytes;
    if (result != S_OK) {
      expect(isAnswer || !written || !_files.exists(lines), "what is not recorded has no file");
      return;
    }
    if (!isAnswer) expect(written, "a recorded request has its file");
    if (written) expectEqual(_files.bytes(file), bytes, "a recorded file has its bytes");
    expect(_files.bytes(lines).find(name) != std::string::npos, "a recorded file has its line");
  }

  void nothingElse() const {
    const Text errors = _settings.errors();
    for (const std::string& path : _files.files()) {
      if (errors && sameFile(path, native(*errors), true)) continue;
      bool allowed = false;
      for (const auto& [file, content] : _allowed) allowed = allowed || sameFile(path, file, false);
      if (!allowed) expectEqual(path, "(none)", "nothing is written elsewhere");
    }
  }

  // Whether `path` is the file `named`, or lies in the directory of that name.
  bool sameFile(const std::string& path, const std::string& named, bool isDirectory) const {
    KelFileStamp a;
    KelFileStamp b;
    KelFileSystem& files = KelFileSystem::Current();
    if (isDirectory) {
      const std::string above = path.substr(0, path.rfind('/') + 1);
      return files.FindDirectory(above, &a) == S_OK && files.FindDirectory(named, &b) == S_OK &&
             a.file == b.file;
    }
    return files.Stamp(path, &a) == S_OK && files.Stamp(named, &b) == S_OK && a.file == b.file;
  }

  const Settings& _settings;
  const MemoryFileSystem& _files;
  TraceRecorder& _trace;
  std::map<std::string, std::string> _allowed;
};

void modesAndPaths(const Settings& settings) {
  const Text mode = settings.mode();
  MString value;
  expect(ZetNorvToolBox::getModeValue(value) == (mode ? S_OK : E_FAIL), "there is a mode, or none");
  if (mode) expectEqual(value.gchar(), *mode, "the mode is the first variable's that has a say");
  expect((ZetNorvToolBox::inReplayMode() == S_OK) == isOneOf(mode, {"REPLAY"}), "replay mode");
  expect((ZetNorvToolBox::inOldMode() == S_OK) == isOneOf(mode, {"OLDREPLAY"}), "old replay mode");
  expect((ZetNorvToolBox::inDebugMode() == S_OK) == settings.debug(), "debug mode");
  isPath(ZetNorvToolBox::getCfgPath, settings.configuration(), "the configuration's directory");
  isPath(ZetNorvToolBox::getRefPath, settings.reference(), "the reference directory");
  isPath(ZetNorvToolBox::getScePath, settings.scenario(), "the scenario directory");
  if (settings.debug()) {
    isPath(ZetNorvToolBox::getErrPath, settings.errors(), "the error directory");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  fuzz::Emulated emulated("");
  // In the place of the usual one.
  Environment environment;
  environment.set("KEL_DRIVE_ROOT", "/drive");
  const Settings settings(input, environment);
  modesAndPaths(settings);
  OneExchange(settings, emulated).run();
  expect(fuzz::Emulated::files().openFiles() == 0, "no file stays open");
  return 0;
}
