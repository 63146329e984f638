#include "KelPath.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "KelFile.h"
#include "KelUtf8.h"

namespace kel {
namespace {

constexpr bool IsSeparator(char c) { return c == '/' || c == '\\'; }

constexpr bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The number of bytes before the first name of a path that starts at the root of a drive ("\",
// "C:\", "C:/"), or 0 for any other path. "C:name" is a file name like any other: without drives
// there is no directory of its own that a drive could stand in.
std::size_t DriveRootBytes(std::string_view path) {
  std::size_t bytes = 0;
  if (path.size() > 2 && IsLetter(path[0]) && path[1] == ':' && IsSeparator(path[2])) bytes = 2;
  if (bytes == 0 && !path.starts_with('\\')) return 0;
  while (bytes < path.size() && IsSeparator(path[bytes])) ++bytes;
  return bytes;
}

// The directory that stands for the root of the current drive, with a '/' at its end.
std::string DriveRoot() {
  const char* const setting = std::getenv("KEL_DRIVE_ROOT");
  std::string root = setting == nullptr || *setting == '\0' ? "." : setting;
  root.erase(root.find_last_not_of('/') + 1);
  root += '/';
  return root;
}

}  // namespace

std::string NativePath(const wchar_t* name) {
  if (name == nullptr) return {};
  std::string path = Utf8FromWide(name);
  const std::size_t rootBytes = DriveRootBytes(path);
  std::replace(path.begin(), path.end(), '\\', '/');
  // The root itself is a native path: its bytes stay as they are.
  if (rootBytes > 0) path.replace(0, rootBytes, DriveRoot());
  return path;
}

}  // namespace kel

std::string KelNativePath(const wchar_t* name) {
  try {
    return kel::NativePath(name);
  } catch (...) {
    // An empty path opens nothing.
    return {};
  }
}
