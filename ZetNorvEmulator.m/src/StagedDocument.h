// A copy of a document's file in the staging directory.
#pragma once

#include "MString.h"

namespace zetnorv {

// The content of a file, read whole; nothing when it cannot be read.
class FileContent {
 public:
  explicit FileContent(const MString& path);
  ~FileContent();
  FileContent(const FileContent&) = delete;
  FileContent& operator=(const FileContent&) = delete;

  bool wasRead() const { return _bytes != nullptr; }
  const char* bytes() const { return _bytes; }
  int size() const { return _size; }

 private:
  char* _bytes = nullptr;
  int _size = 0;
};

// The file name in `path`: what follows its last '/'.
//
// The search starts at the position `sourceSize`, the size of the document's file: a path without
// any '/' therefore loses its first sourceSize + 1 characters, and the name may be null. Recorded
// databases hold names that were cut so.
MString stagedName(const MString& path, int sourceSize);

// Whether a file of that name stands in its directory, or below it: no ".." among its parts, which
// both '/' and '\' separate.
bool staysInDirectory(const MString& name);

// Writes `content` to `name` in `directory`, whole or not at all: a copy that was there before is
// replaced in one step. A failure is silent.
void stageCopy(const MString& directory, const MString& name, const FileContent& content);

}  // namespace zetnorv
