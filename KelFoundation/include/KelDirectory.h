// Directories. Paths are those of KelFile.h.
#pragma once

#include <memory>

#include "KelExport.h"

// Makes the directory `path` with its missing parents.
//
// Returns KelLibSucces when it is there afterwards, also when it was before; E_FAIL otherwise.
KEL_FOUNDATION_EXPORT long KelCreateDirectory(const wchar_t* path);

// The same; a client's own foundation may leave parents to this call.
KEL_FOUNDATION_EXPORT long KelMakePath(const wchar_t* path);

// --- Beyond what a client's own foundation offers (see the README's table) ---

// Tells whether names may have gone from a directory since the last time it was asked, so that
// what is known of its content can be kept from one call to the next.
class KEL_FOUNDATION_EXPORT KelDirectoryWatch {
 public:
  // Starts watching the directory `path`. One that cannot be watched always reports a change.
  explicit KelDirectoryWatch(const wchar_t* path);
  ~KelDirectoryWatch();
  KelDirectoryWatch(const KelDirectoryWatch&) = delete;
  KelDirectoryWatch& operator=(const KelDirectoryWatch&) = delete;

  // Whether, since the last call or the construction, something in the directory was removed,
  // renamed, replaced by a rename or made unreadable, or the path came to name another directory:
  // true also when that cannot be told. New files alone are no change. A directory that was
  // replaced is watched from then on.
  bool Changed();

 private:
  struct State;
  std::unique_ptr<State> _state;
};
