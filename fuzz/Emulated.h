// The library as one input finds it: as loaded, with an empty file system in memory and a fixed
// environment.
#pragma once

#include <cstdlib>
#include <string>

#include "EmulatorState.h"
#include "Environment.h"
#include "MString.h"
#include "MemoryFileSystem.h"
#include "QuietConsole.h"
#include "TraceRecorder.h"

namespace fuzz {

class Emulated {
 public:
  // `mode` is the run mode.
  explicit Emulated(const char* mode) {
    files().clear();
    resetEmulator();
    this->mode(mode);
  }
  ~Emulated() { resetEmulator(); }
  Emulated(const Emulated&) = delete;
  Emulated& operator=(const Emulated&) = delete;

  static void mode(const char* value) { environment().set("ZETNORV_MODE", value); }

  // For the whole process: what the library remembers of directories outlives an input.
  static MemoryFileSystem& files() {
    static MemoryFileSystem all;
    return all;
  }

  static std::string reference(const std::string& name) {
    return "/drive/in/case1.rec/Reference/" + name;
  }
  static std::string scenario(const std::string& name) {
    return "/drive/in/case1.rec/Scenario/" + name;
  }
  static constexpr const char* kScript = "/drive/in/Configuration/xmlStruct.xml";

  TraceRecorder trace;

 private:
  static Environment& environment() {
    static Environment fixed;
    static const bool set = [] {
      fixed.set("BIX_ZET_IN", "\\in");
      fixed.set("BIX_ZET_TMP", "/tmp");
      fixed.set("ZET_LOG_NAME", "case1");
      fixed.set("KEL_DRIVE_ROOT", "/drive");
      return true;
    }();
    static_cast<void>(set);
    return fixed;
  }

  QuietConsole _console;
};

// The text of a string; empty for a null one.
inline std::string textOf(const MString& string) {
  if (string.isNull() != 0) return "";
  return {string.gchar(), static_cast<std::size_t>(string.glength())};
}

}  // namespace fuzz
