#include "ZetNorvToolBox.h"

#include "Guard.h"
#include "KelEnv.h"
#include "KelError.h"
#include "KelFile.h"
#include "MFile.h"
#include "NullReference.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

using zetnorv::ensureDirectory;
using zetnorv::guarded;
using zetnorv::isNullReference;
using zetnorv::RefusedMemory;

namespace {

// Sets `value` to the text of the variable `name`; one without a text counts as missing, and so
// does any when there is no memory for it or an old host handed in no string to put it in.
bool readVariable(const char* name, MString& value) {
  const char* text = nullptr;
  if (isNullReference(value) || KelGetEnvValue(name, &text) != S_OK) return false;
  value.set(text);
  return !value.isNull();
}

// Runs what puts a text together: one that lacks a piece for want of memory is a failure.
template <class Body>
long composed(const char* operation, Body&& body) {
  return guarded(operation, [&] {
    const long result = body();
    return RefusedMemory::wasMet() ? E_FAIL : result;
  });
}

// Reports a missing variable under the name that the reader of the trace is used to.
void traceMissing(const char* line) { ZetNorvTrace.TraPutLN(2, line); }

constexpr const char* kNoTestName = "Problem (ZET_LOG_NAME): tselection == NULL.";
constexpr const char* kNoConfiguration = "Problem (App_CfgFile): tselection == NULL.";
constexpr const char* kNoReference = "Problem (App_RefFile): tselection == NULL.";
constexpr const char* kNoScenario = "Problem (App_SceFile): tselection == NULL.";
constexpr const char* kNoError = "Problem (App_ErrFile): tselection == NULL.";

bool debugging() { return KelGetEnv("ZETNORV_DEBUG") == S_OK; }

// Debug mode: root + test name + leaf. The directory before the leaf is made, the leaf is left to
// those who write into it.
long debugPath(const char* rootVariable, const char* missingLine, const char* leaf, MString& path) {
  if (!readVariable(rootVariable, path)) {
    traceMissing(missingLine);
    return E_FAIL;
  }
  MString name;
  if (!readVariable("ZET_LOG_NAME", name)) {
    traceMissing(kNoTestName);
    return E_FAIL;
  }
  path + name;
  ensureDirectory(path);
  path + MString(leaf);
  return S_OK;
}

// Outside debug mode: BIX_ZET_IN. A missing one is reported as App_SceFile, whatever was asked for:
// readers of the trace know that line.
long inputRoot(MString& path) {
  if (readVariable("BIX_ZET_IN", path)) return S_OK;
  traceMissing(kNoScenario);
  return E_FAIL;
}

// Outside debug mode: the directory `leaf` of the test's recording. A missing test name is reported
// and left out.
long recordingPath(const char* leaf, MString& path) {
  if (inputRoot(path) != S_OK) return E_FAIL;
  path + MString("\\");
  MString name;
  if (readVariable("ZET_LOG_NAME", name)) {
    path + name;
  } else {
    traceMissing(kNoTestName);
  }
  path + MString(leaf);
  return S_OK;
}

// Debug mode: the directory as it is given.
long configuredPath(MString& path) {
  if (readVariable("App_CfgFile", path)) return S_OK;
  traceMissing(kNoConfiguration);
  return E_FAIL;
}

long configurationPath(MString& path) {
  if (inputRoot(path) != S_OK) return E_FAIL;
  path + MString("\\Configuration\\");
  return S_OK;
}

// S_OK when the run mode is `keyword` or a beginning of it.
long modeIs(const char* keyword) {
  MString mode;
  if (ZetNorvToolBox::getModeValue(mode) != S_OK) return E_FAIL;
  return mode.compare(keyword) ? S_OK : E_FAIL;
}

// Appends `text` to the file `path`.
long appendText(const MString& path, const char* text) {
  MFile file;
  if (file.open(path.gchar(), "a+") != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvToolBox::writeLog with KelFOpen");
    return E_FAIL;
  }
  const long written = file.puts(text);
  const long closed = file.close();
  if (written != S_OK || closed != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvToolBox::writeLog with file.puts");
    return E_FAIL;
  }
  return S_OK;
}

// The error directory, made when missing. `announce` adds the line that tells so.
long logDirectory(MString& path, bool announce) {
  if (ZetNorvToolBox::getErrPath(path) != S_OK) {
    // The line names the reference directory although the error directory was asked for; those who
    // search their traces know it so.
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvToolBox::writeLog with ZetNorvToolBox::getRefPath");
    return E_FAIL;
  }
  ZetNorvTrace.TraPutLN(2, path.gchar());
  if (ensureDirectory(path) && announce) {
    ZetNorvTrace.TraPutLN(2, "After KelCreateDirectory(Path)==KelLibSucces");
  }
  return S_OK;
}

// Appends `text` to `file` of the error directory, in debug mode.
long appendToLog(const MString& file, const char* text, bool announce) {
  if (!debugging()) return S_OK;
  MString path;
  if (logDirectory(path, announce) != S_OK) return E_FAIL;
  path + file;
  ZetNorvTrace.TraPutLN(2, path.gchar());
  return appendText(path, text);
}

// Looks for `n` in the list, and prints what it passes. The list ends with its mark, so it is not
// begun when there was no memory to put that there.
long findNumber(int n, MString& numbers) {
  numbers + MString(",END");
  if (RefusedMemory::wasMet()) return E_FAIL;
  numbers.split(',');
  for (MString token = numbers.splitNext(); !token.compare("END"); token = numbers.splitNext()) {
    token.print();
    if (token.parseInt() == n) {
      ZetNorvTrace.TraPutLN(2, "#### EXIT Cf. : ", n);
      return S_OK;
    }
  }
  return E_FAIL;
}

}  // namespace

int ZetNorvToolBox::_rec = 0;

ZetNorvToolBox& ZetNorvToolBox::operator=(const ZetNorvToolBox&) { return *this; }

long ZetNorvToolBox::getModeValue(MString& mode) {
  if (debugging()) {
    if (readVariable("ZETNORV_DEBUG", mode)) return S_OK;
    ZetNorvTrace.TraPutLN(
        2, "Problem in ZetNorvToolBox::getModeValue with (ZETNORV_DEBUG): tselection == NULL.");
    return E_FAIL;
  }
  if (readVariable("ZETNORV_CMD", mode)) {
    ZetNorvTrace.TraPutLN(2, "#### MODE COMMAND ####");
    return S_OK;
  }
  return readVariable("ZETNORV_MODE", mode) ? S_OK : E_FAIL;
}

long ZetNorvToolBox::inDebugMode() { return debugging() ? S_OK : E_FAIL; }

long ZetNorvToolBox::inZetMode() {
  MString mode;
  if (getModeValue(mode) == S_OK) return S_OK;
  // A debug switch without a value leaves the ordinary mode its say.
  return readVariable("ZETNORV_MODE", mode) && mode.compare("REPLAY") ? S_OK : E_FAIL;
}

long ZetNorvToolBox::inReplayMode() { return modeIs("REPLAY"); }

long ZetNorvToolBox::inOldMode() { return modeIs("OLDREPLAY"); }

long ZetNorvToolBox::getZetName(MString& name) {
  if (readVariable("ZET_LOG_NAME", name)) return S_OK;
  traceMissing(kNoTestName);
  return E_FAIL;
}

long ZetNorvToolBox::getVarEnvPath(MString& path) {
  return composed("ZetNorvToolBox::getVarEnvPath", [&] {
    if (!readVariable("App_CfgFile", path)) {
      traceMissing(kNoConfiguration);
      return E_FAIL;
    }
    path + MString("varEnv.txt");
    return S_OK;
  });
}

long ZetNorvToolBox::getCfgPath(MString& path) {
  return composed("ZetNorvToolBox::getCfgPath",
                  [&] { return debugging() ? configuredPath(path) : configurationPath(path); });
}

long ZetNorvToolBox::getRefPath(MString& path) {
  return composed("ZetNorvToolBox::getRefPath", [&] {
    return debugging() ? debugPath("App_RefFile", kNoReference, "/Reference", path)
                       : recordingPath(".rec\\Reference", path);
  });
}

long ZetNorvToolBox::getScePath(MString& path) {
  return composed("ZetNorvToolBox::getScePath", [&] {
    return debugging() ? debugPath("App_SceFile", kNoScenario, "/Scenario", path)
                       : recordingPath(".rec\\Scenario", path);
  });
}

long ZetNorvToolBox::getErrPath(MString& path) {
  if (!debugging()) return S_OK;
  return composed("ZetNorvToolBox::getErrPath",
                  [&] { return debugPath("App_ErrFile", kNoError, "/Error", path); });
}

long ZetNorvToolBox::writeLog(const char* text) {
  return guarded("ZetNorvToolBox::writeLog",
                 [&] { return appendToLog(MString("\\trace.log"), text, false); });
}

long ZetNorvToolBox::writeLog(MString fileName, const char* text) {
  return guarded("ZetNorvToolBox::writeLog", [&] {
    MString file("\\");
    file + fileName;
    return appendToLog(file, text, true);
  });
}

long ZetNorvToolBox::StreamFromEmul(const char* source, KelUnicodeString& target) {
  ZetNorvTrace.TraPutLN(2, "ZetNorvToolBox::StreamFromEmul");
  if (isNullReference(target)) return E_FAIL;
  return guarded("ZetNorvToolBox::StreamFromEmul", [&] {
    const KelUnicodeString name = KelUnicodeString(source).Strip(KelStripBoth);
    if (target.IsNull()) {
      target = name;
      return KelError::GetReturn(1, "ZetNorvEmulator.m/src/ZetNorvToolBox", 445);
    }
    ZetNorvTrace.TraPutLN(4, "> Recopie du document ", name.ConvertToChar());
    return KelFCopy(name.ConvertToWide(), target.ConvertToWide(), 0);
  });
}

long ZetNorvToolBox::magicTool(int n) {
  if (!debugging()) return E_FAIL;
  return composed("ZetNorvToolBox::magicTool", [&] {
    MString numbers;
    return readVariable("ZETNORV_CONST", numbers) ? findNumber(n, numbers) : E_FAIL;
  });
}
