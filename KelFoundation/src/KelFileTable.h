// The open files by descriptor.
#pragma once

#include <climits>
#include <cstddef>
#include <utility>
#include <vector>

#include "KelOpenFile.h"

namespace kel {

// Descriptors count from 1 upwards and are not used again before the count has gone round, so that
// a stale one finds nothing. Few files are open at a time: they are searched one by one.
class FileTable {
 public:
  // Makes room for one more file, so that the next Add cannot fail.
  void Reserve() {
    if (_entries.size() == _entries.capacity()) _entries.reserve(2 * _entries.size() + 4);
  }

  int Add(OpenFile&& file) {
    do {
      _last = _last == INT_MAX ? 1 : _last + 1;
    } while (Find(_last) != nullptr);
    _entries.push_back({_last, std::move(file)});
    return _last;
  }

  // The open file `descriptor`, or null. Borrowed: valid until a file is added or removed.
  OpenFile* Find(int descriptor) {
    for (Entry& entry : _entries) {
      if (entry.descriptor == descriptor) return &entry.file;
    }
    return nullptr;
  }

  // Forgets the open file `file`, which Find gave.
  void Remove(OpenFile* file) {
    for (Entry& entry : _entries) {
      if (&entry.file != file) continue;
      if (&entry != &_entries.back()) entry = std::move(_entries.back());
      _entries.pop_back();
      return;
    }
  }

 private:
  struct Entry {
    int descriptor;
    OpenFile file;
  };

  std::vector<Entry> _entries;
  int _last = 0;
};

}  // namespace kel
