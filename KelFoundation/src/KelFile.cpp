#include "KelFile.h"

#include <climits>
#include <cstring>
#include <optional>

#include "KelFileSystem.h"
#include "KelFileTable.h"
#include "KelGuard.h"
#include "KelLib.h"
#include "KelPath.h"

using kel::Guarded;
using kel::NativePath;
using kel::OpenFile;

namespace {

// Ready before any library that stands on this one, and there until after the last of them.
constinit kel::FileTable openFiles;

std::optional<KelFileSystem::Mode> ModeOf(const char* mode) {
  if (std::strcmp(mode, "r") == 0) return KelFileSystem::Mode::kRead;
  if (std::strcmp(mode, "w") == 0) return KelFileSystem::Mode::kWrite;
  if (std::strcmp(mode, "wx") == 0) return KelFileSystem::Mode::kCreate;
  if (std::strcmp(mode, "a+") == 0) return KelFileSystem::Mode::kAppend;
  return std::nullopt;
}

// Hands a number of bytes, at most what an int holds, to a caller who may not want it.
void Report(std::size_t bytes, int* count) {
  if (count != nullptr) *count = static_cast<int>(bytes);
}

long WriteBytes(int descriptor, const char* bytes, std::size_t n, int* count) {
  Report(0, count);
  if (n > INT_MAX) return E_FAIL;
  return Guarded([&] {
    OpenFile* const file = openFiles.Find(descriptor);
    if (file == nullptr) return E_FAIL;
    std::size_t taken = 0;
    const long result = file->Write(bytes, n, &taken);
    Report(taken, count);
    return result;
  });
}

}  // namespace

long KelFOpen(const wchar_t* name, const char* mode, int* descriptor) {
  if (descriptor == nullptr) return E_FAIL;
  *descriptor = 0;
  if (name == nullptr || *name == L'\0' || mode == nullptr) return E_FAIL;
  const auto wanted = ModeOf(mode);
  if (!wanted) return E_FAIL;
  return Guarded([&] {
    openFiles.Reserve();
    KelFileSystem& fileSystem = KelFileSystem::Current();
    int handle = 0;
    if (fileSystem.Open(NativePath(name), *wanted, &handle) != S_OK) return E_FAIL;
    *descriptor = openFiles.Add(OpenFile(fileSystem, *wanted, handle));
    return S_OK;
  });
}

long KelFClose(int descriptor) {
  OpenFile* const found = openFiles.Find(descriptor);
  if (found == nullptr) return E_FAIL;
  OpenFile file = std::move(*found);
  openFiles.Remove(found);
  return Guarded([&] { return file.Close(); });
}

long KelFGets(char* buffer, int n, int descriptor) {
  if (buffer == nullptr || n < 2) return E_FAIL;
  return Guarded([&] {
    OpenFile* const file = openFiles.Find(descriptor);
    if (file == nullptr) return E_FAIL;
    std::size_t count = 0;
    if (file->ReadLine(buffer, static_cast<std::size_t>(n) - 1, &count) != S_OK) return E_FAIL;
    buffer[count] = '\0';
    return S_OK;
  });
}

long KelFPuts(const char* text, int descriptor, int* count) {
  Report(0, count);
  if (text == nullptr) return E_FAIL;
  return WriteBytes(descriptor, text, std::strlen(text), count);
}

long KelFRead(int descriptor, char* buffer, int n, int* count) {
  if (count == nullptr) return E_FAIL;
  *count = 0;
  if (n < 0 || (buffer == nullptr && n > 0)) return E_FAIL;
  return Guarded([&] {
    OpenFile* const file = openFiles.Find(descriptor);
    if (file == nullptr) return E_FAIL;
    std::size_t got = 0;
    const long result = file->Read(buffer, static_cast<std::size_t>(n), &got);
    Report(got, count);
    return result;
  });
}

long KelFWrite(int descriptor, const char* buffer, int n, int* count) {
  Report(0, count);
  if (n < 0 || (buffer == nullptr && n > 0)) return E_FAIL;
  return WriteBytes(descriptor, buffer, static_cast<std::size_t>(n), count);
}

long KelFSize(int descriptor, int* size) {
  if (size == nullptr) return E_FAIL;
  return Guarded([&] {
    OpenFile* const file = openFiles.Find(descriptor);
    std::int64_t bytes = 0;
    if (file == nullptr || file->Size(&bytes) != S_OK || bytes > INT_MAX) return E_FAIL;
    *size = static_cast<int>(bytes);
    return S_OK;
  });
}

long KelFEof(int descriptor) {
  long more = 0;
  Guarded([&] {
    OpenFile* const file = openFiles.Find(descriptor);
    if (file != nullptr && file->HasMore()) more = 1;
    return S_OK;
  });
  return more;
}

long KelFRemove(const wchar_t* name) {
  if (name == nullptr || *name == L'\0') return E_FAIL;
  return Guarded([&] { return KelFileSystem::Current().Remove(NativePath(name)); });
}

long KelFRename(const wchar_t* from, const wchar_t* to) {
  if (from == nullptr || *from == L'\0' || to == nullptr || *to == L'\0') return E_FAIL;
  return Guarded([&] { return KelFileSystem::Current().Rename(NativePath(from), NativePath(to)); });
}

long KelFStamp(const wchar_t* name, KelFileStamp* stamp) {
  if (name == nullptr || *name == L'\0' || stamp == nullptr) return E_FAIL;
  return Guarded([&] { return KelFileSystem::Current().Stamp(NativePath(name), stamp); });
}
