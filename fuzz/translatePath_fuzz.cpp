// Path translation against a plain second implementation of its rules.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Expect.h"
#include "FuzzInput.h"
#include "KelFile.h"
#include "KelUnicodeString.h"

namespace {

bool separates(char c) { return c == '/' || c == '\\'; }

// Character by character: separators become '/', and a start at the root of a drive, with all its
// separators, becomes the directory that stands for it.
std::string translated(const std::string& path, const std::string& root) {
  const bool letter = !path.empty() && std::string(
                                           "abcdefghijklmnopqrstuvwxyz"
                                           "ABCDEFGHIJKLMNOPQRSTUVWXYZ")
                                               .find(path[0]) != std::string::npos;
  const bool drive = letter && path.size() > 2 && path[1] == ':' && separates(path[2]);
  std::string result;
  std::size_t at = 0;
  if (drive || (!path.empty() && path[0] == '\\')) {
    result = root + "/";
    at = drive ? 2 : 0;
    while (at < path.size() && separates(path[at])) ++at;
  }
  for (; at < path.size(); ++at) result += path[at] == '\\' ? '/' : path[at];
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const int set = setenv("KEL_DRIVE_ROOT", "/drive", 1);
  fuzz::expect(set == 0, "the drive's root is set");
  const std::string path = fuzz::Input(bytes, size).textTo('\0');
  const KelUnicodeString wide(path.c_str());
  const std::string native = KelNativePath(wide.ConvertToWide());
  fuzz::expectEqual(native, translated(path, "/drive"), "a path is translated by its rules");
  const KelUnicodeString again(native.c_str());
  fuzz::expectEqual(KelNativePath(again.ConvertToWide()), native, "a native path stays as it is");
  return 0;
}
