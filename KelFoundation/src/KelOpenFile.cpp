#include "KelOpenFile.h"

#include <algorithm>
#include <cstring>

#include "KelLib.h"

namespace kel {
namespace {

// What is read ahead: an index of some hundred lines.
constexpr std::size_t kBufferBytes = 16384;

}  // namespace

long OpenFile::ReadLine(char* buffer, std::size_t room, std::size_t* count) {
  *count = 0;
  if (!CanRead()) return E_FAIL;
  while (*count < room) {
    if (Buffered() == 0 && Fill() != S_OK) break;
    if (Buffered() == 0) break;
    const char* const start = _buffer.get() + _begin;
    const std::size_t most = std::min(room - *count, Buffered());
    const void* const lineFeed = std::memchr(start, '\n', most);
    const std::size_t n =
        lineFeed == nullptr
            ? most
            : static_cast<std::size_t>(static_cast<const char*>(lineFeed) - start) + 1;
    Take(buffer + *count, n);
    *count += n;
    if (lineFeed != nullptr) break;
  }
  return *count > 0 ? S_OK : E_FAIL;
}

long OpenFile::Read(char* buffer, std::size_t n, std::size_t* count) {
  *count = 0;
  if (!CanRead()) return E_FAIL;
  while (*count < n) {
    std::size_t got = std::min(n - *count, Buffered());
    if (got > 0) {
      Take(buffer + *count, got);
    } else if (n - *count >= kBufferBytes) {
      if (_fileSystem->Read(_handle, buffer + *count, n - *count, &got) != S_OK) return E_FAIL;
      if (got == 0) break;
    } else {
      if (Fill() != S_OK) return E_FAIL;
      if (Buffered() == 0) break;
    }
    *count += got;
  }
  return S_OK;
}

long OpenFile::Write(const char* buffer, std::size_t n, std::size_t* count) {
  *count = 0;
  if (!CanWrite()) return E_FAIL;
  while (*count < n) {
    std::size_t taken = 0;
    const long result = _fileSystem->Write(_handle, buffer + *count, n - *count, &taken);
    // A file system that takes nothing and reports no failure must not keep the host for ever.
    if (result != S_OK || taken == 0) {
      TakeBack(count);
      return E_FAIL;
    }
    *count += taken;
  }
  return S_OK;
}

// A line that was appended in part would be read as a part of the next one, so it goes again.
void OpenFile::TakeBack(std::size_t* count) {
  std::int64_t size = 0;
  if (_mode != KelFileSystem::Mode::kAppend || *count == 0) return;
  if (_fileSystem->Size(_handle, &size) != S_OK) return;
  const std::int64_t before = size - static_cast<std::int64_t>(*count);
  if (before >= 0 && _fileSystem->Truncate(_handle, before) == S_OK) *count = 0;
}

bool OpenFile::HasMore() {
  if (!CanRead()) return false;
  if (Buffered() == 0 && Fill() != S_OK) return false;
  return Buffered() > 0;
}

long OpenFile::Fill() {
  if (_buffer == nullptr) _buffer = std::make_unique_for_overwrite<char[]>(kBufferBytes);
  _begin = 0;
  _end = 0;
  return _fileSystem->Read(_handle, _buffer.get(), kBufferBytes, &_end);
}

void OpenFile::Take(char* buffer, std::size_t n) {
  std::memcpy(buffer, _buffer.get() + _begin, n);
  _begin += n;
}

}  // namespace kel
