// What the tests of staging documents and of looking their files up share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "DatabaseState.h"
#include "Environment.h"
#include "Files.h"
#include "KelLib.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace staging_test {

using Texts = std::vector<std::string>;

inline const std::string kHeader("\x41\x01\0\0", 4);

inline std::string document(const std::string& path) {
  return "<Document FilePath=\"" + path + "\"/>";
}
inline std::string request(const std::string& content) {
  return kHeader + "<Request>" + content + "</Request>";
}

// Text of a string; "(null)" for a null one.
inline std::string text(const MString& string) {
  return string.isNull() ? "(null)" : string.gchar();
}

// A test "T1" outside debug mode, with a document to stage.
class ZetNorvDbStagingTest : public testing::Test {
 protected:
  ZetNorvDbStagingTest() {
    environment.set("BIX_ZET_IN", scratch.file("in"));
    environment.set("ZET_LOG_NAME", "T1");
    environment.set("KEL_DRIVE_ROOT", scratch.file("drive"));
    writeBytes(source(), "content");
  }

  // A document of 7 bytes.
  std::string source() const { return scratch.file("work/PN-7.KelPart"); }
  std::string staging() const { return scratch.file("in/T1.rec/Reference/Kel_Files_Temp"); }
  Texts staged() const { return namesIn(staging()); }
  // The log `name` of debug mode.
  std::string log(const std::string& name) const {
    return readBytes(scratch.file("err/T1/Error/" + name));
  }

  void debug() {
    environment.set("ZETNORV_DEBUG", "SAVE");
    environment.set("App_RefFile", scratch.file("ref/"));
    environment.set("App_ErrFile", scratch.file("err/"));
  }

  long stage(const std::string& message) {
    return ZetNorvDb().buildTemp(message.data(), static_cast<int>(message.size()));
  }

  // Everything below the test's directory, sorted: shows what appeared where.
  Texts everything() const {
    Texts names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch.path())) {
      names.push_back(std::filesystem::relative(entry.path(), scratch.path()).string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  ScratchDirectory scratch;
  Environment environment;
  // The database counts as loaded: constructing one leaves the trace alone.
  struct Loaded : DatabaseState {
    Loaded() { ZetNorvDb::_path.set("loaded"); }
  } state;
  TraceRecorder trace;
};

}  // namespace staging_test
