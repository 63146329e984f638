#include "KelFileSystem.h"

#include "KelFileSystemInUse.h"

namespace {

// Null stands for the operating system's own.
constinit KelFileSystem* installed = nullptr;
constinit std::uint64_t changes = 0;

}  // namespace

namespace kel {

std::uint64_t FileSystemChanges() { return changes; }

}  // namespace kel

KelFileSystem& KelFileSystem::Current() { return installed == nullptr ? Native() : *installed; }

KelFileSystem* KelFileSystem::Install(KelFileSystem* fileSystem) {
  KelFileSystem* const before = &Current();
  installed = fileSystem;
  ++changes;
  return before;
}
