// KelFCopy: by way of a temporary file beside the target.
#include <memory>
#include <random>
#include <string>

#include "KelFile.h"
#include "KelFileSystem.h"
#include "KelGuard.h"
#include "KelLib.h"
#include "KelOpenFile.h"
#include "KelPath.h"

using kel::OpenFile;
using Mode = KelFileSystem::Mode;

namespace {

constexpr std::size_t kBlockBytes = 65536;

// A name in the directory of `target` that nobody else uses. Its length does not depend on that of
// the target's own name, which may be as long as the system allows.
std::string TemporaryBeside(const std::string& target) {
  std::random_device random;
  const std::size_t directoryBytes = target.find_last_of('/') + 1;
  return target.substr(0, directoryBytes) + "kelcopy-" + std::to_string(random()) +
         std::to_string(random()) + ".tmp";
}

// Copies what is left of `source` to `target`, block by block.
long CopyBlocks(OpenFile& source, OpenFile& target) {
  const auto block = std::make_unique_for_overwrite<char[]>(kBlockBytes);
  std::size_t got = 0;
  std::size_t taken = 0;
  do {
    if (source.Read(block.get(), kBlockBytes, &got) != S_OK) return E_FAIL;
    if (target.Write(block.get(), got, &taken) != S_OK) return E_FAIL;
  } while (got == kBlockBytes);
  return S_OK;
}

// Copies what is left of `source` to the new file `path`, which is gone again when that fails.
long WriteCopy(KelFileSystem& fileSystem, OpenFile& source, const std::string& path) {
  int handle = 0;
  if (fileSystem.Open(path, Mode::kCreate, &handle) != S_OK) return E_FAIL;
  OpenFile target(fileSystem, Mode::kCreate, handle);
  const long copied = kel::Guarded([&] { return CopyBlocks(source, target); });
  const long closed = target.Close();
  if (copied == S_OK && closed == S_OK) return S_OK;
  fileSystem.Remove(path);
  return E_FAIL;
}

// Gives `target` the bytes of `source` in one step, or leaves it as it was.
long Replace(KelFileSystem& fileSystem, OpenFile& source, const std::string& target) {
  const std::string temporary = TemporaryBeside(target);
  if (WriteCopy(fileSystem, source, temporary) != S_OK) return E_FAIL;
  if (fileSystem.Rename(temporary, target) == S_OK) return S_OK;
  fileSystem.Remove(temporary);
  return E_FAIL;
}

}  // namespace

long KelFCopy(const wchar_t* source, const wchar_t* target, int mode) {
  if (source == nullptr || *source == L'\0' || target == nullptr || *target == L'\0') return E_FAIL;
  return kel::Guarded([&] {
    KelFileSystem& fileSystem = KelFileSystem::Current();
    const std::string to = kel::NativePath(target);
    KelFileStamp present;
    if (mode != 0 && fileSystem.Stamp(to, &present) == S_OK) return E_FAIL;
    int handle = 0;
    if (fileSystem.Open(kel::NativePath(source), Mode::kRead, &handle) != S_OK) return E_FAIL;
    OpenFile from(fileSystem, Mode::kRead, handle);
    const long result = kel::Guarded([&] { return Replace(fileSystem, from, to); });
    from.Close();
    return result == S_OK ? S_OK : E_FAIL;
  });
}
