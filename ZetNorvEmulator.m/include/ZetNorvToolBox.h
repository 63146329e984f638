// Run modes, directories and logs, all from the process's environment, which every call reads
// afresh.
//
// Directories and files are composed by plain concatenation: no separator is added that is not
// written below. Operations return S_OK or E_FAIL unless they say otherwise; a missing variable is
// one trace line, and the path argument may then hold a part of the path. Nothing is thrown.
#pragma once

#include "KelUnicodeString.h"
#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvToolBox {
 public:
  ZetNorvToolBox() = default;
  ZetNorvToolBox(const ZetNorvToolBox&) = default;
  // Copies nothing.
  ZetNorvToolBox& operator=(const ZetNorvToolBox& other);

  // The run mode: the value of ZETNORV_DEBUG when that is defined at all, else of ZETNORV_CMD, else
  // of ZETNORV_MODE. E_FAIL when there is none.
  static long getModeValue(MString& mode);

  // S_OK when ZETNORV_DEBUG is defined, with or without a value.
  static long inDebugMode();
  // S_OK when any run mode is set.
  static long inZetMode();
  // S_OK when the mode is "REPLAY", or a beginning of it ("REP").
  static long inReplayMode();
  // S_OK when the mode is "OLDREPLAY", or a beginning of it.
  static long inOldMode();

  // The name of the current test: ZET_LOG_NAME.
  static long getZetName(MString& name);

  // App_CfgFile + "varEnv.txt".
  static long getVarEnvPath(MString& path);
  // In debug mode App_CfgFile, otherwise BIX_ZET_IN + "\Configuration\".
  static long getCfgPath(MString& path);
  // In debug mode App_RefFile + ZET_LOG_NAME + "/Reference" (the directory before the leaf is
  // made), otherwise BIX_ZET_IN + "\" + ZET_LOG_NAME + ".rec\Reference".
  static long getRefPath(MString& path);
  // In debug mode App_SceFile + ZET_LOG_NAME + "/Scenario" (the directory before the leaf is made),
  // otherwise BIX_ZET_IN + "\" + ZET_LOG_NAME + ".rec\Scenario".
  static long getScePath(MString& path);
  // In debug mode App_ErrFile + ZET_LOG_NAME + "/Error" (the directory before the leaf is made);
  // otherwise S_OK with `path` untouched.
  static long getErrPath(MString& path);

  // Appends `text`, exactly as it is, to "trace.log" in the error directory; in debug mode only,
  // S_OK otherwise. A null text cannot be written: E_FAIL.
  static long writeLog(const char* text);
  // The same to the file `fileName` of that directory.
  static long writeLog(MString fileName, const char* text);

  // Copies the document file `source` (blanks around its name are ignored) to `target`. When
  // `target` is null it becomes the source's name and the call fails through KelError.
  static long StreamFromEmul(const char* source, KelUnicodeString& target);

  // A stop point: S_OK when `n` is one of the comma-separated numbers of ZETNORV_CONST, in debug
  // mode only. Prints the numbers up to and including that one to standard output.
  static long magicTool(int n);

 private:
  static int _rec;
};
