// One open file: what was read ahead of the caller, and writing that goes on until all is taken.
#pragma once

#include <cstddef>
#include <memory>

#include "KelFileSystem.h"

namespace kel {

class OpenFile {
 public:
  OpenFile(KelFileSystem& fileSystem, KelFileSystem::Mode mode, int handle)
      : _fileSystem(&fileSystem), _mode(mode), _handle(handle) {}

  // Reads through '\n', at most `room` bytes; `*count` holds how many.
  long ReadLine(char* buffer, std::size_t room, std::size_t* count);

  // Reads until `n` bytes are there or the file ends; `*count` holds how many, also on failure.
  long Read(char* buffer, std::size_t n, std::size_t* count);

  // Writes all `n` bytes; `*count` holds how many the file has of them, also on failure: none when
  // it was opened to append, where a part of them is taken back.
  long Write(const char* buffer, std::size_t n, std::size_t* count);

  // Whether there are bytes left to read.
  bool HasMore();

  long Size(std::int64_t* size) { return _fileSystem->Size(_handle, size); }

  long Close() { return _fileSystem->Close(_handle); }

 private:
  bool CanRead() const {
    return _mode == KelFileSystem::Mode::kRead || _mode == KelFileSystem::Mode::kAppend;
  }
  bool CanWrite() const { return _mode != KelFileSystem::Mode::kRead; }
  std::size_t Buffered() const { return _end - _begin; }
  // Cuts off the last `*count` bytes of a file that is appended to.
  void TakeBack(std::size_t* count);
  // Fills the empty buffer; it stays empty at the end of the file.
  long Fill();
  // Moves the first `n` buffered bytes to `buffer`.
  void Take(char* buffer, std::size_t n);

  KelFileSystem* _fileSystem;
  KelFileSystem::Mode _mode;
  int _handle;
  std::unique_ptr<char[]> _buffer;  // made when it is first needed
  std::size_t _begin = 0;
  std::size_t _end = 0;
};

}  // namespace kel
