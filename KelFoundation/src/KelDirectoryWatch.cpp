#include <cstdint>
#include <string>

#include "KelDirectory.h"
#include "KelFileSystem.h"
#include "KelFileSystemInUse.h"
#include "KelGuard.h"
#include "KelLib.h"
#include "KelPath.h"

struct KelDirectoryWatch::State {
  explicit State(const wchar_t* path) : name(path) { Start(); }
  ~State() { Stop(); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  bool Changed();
  // Whether the watch stands, and on the directory that the path names now.
  bool Stands();
  void Start();
  void Stop();

  std::wstring name;
  KelFileSystem* fileSystem = nullptr;
  std::uint64_t changes = 0;  // of the file system in use, when the watch started
  bool watching = false;
  int watch = 0;
  KelFileStamp directory;  // device and file of the watched directory
};

namespace {

bool SameDirectory(const KelFileStamp& a, const KelFileStamp& b) {
  return a.device == b.device && a.file == b.file;
}

}  // namespace

bool KelDirectoryWatch::State::Changed() {
  bool changed = false;
  if (Stands() && fileSystem->PollWatch(watch, &changed) == S_OK) return changed;
  Stop();
  Start();
  return true;
}

bool KelDirectoryWatch::State::Stands() {
  if (!watching || changes != kel::FileSystemChanges()) return false;
  // The path is translated anew, as everywhere else: the drive's root may be another one by now.
  KelFileStamp now;
  return fileSystem->FindDirectory(kel::NativePath(name.c_str()), &now) == S_OK &&
         SameDirectory(now, directory);
}

void KelDirectoryWatch::State::Start() {
  const std::string path = kel::NativePath(name.c_str());
  fileSystem = &KelFileSystem::Current();
  changes = kel::FileSystemChanges();
  KelFileStamp before;
  if (fileSystem->FindDirectory(path, &before) != S_OK) return;
  if (fileSystem->StartWatch(path, &watch) != S_OK) return;
  watching = true;
  // The path may have come to name another directory in between: then it is not known which of the
  // two is watched.
  if (fileSystem->FindDirectory(path, &directory) != S_OK || !SameDirectory(before, directory)) {
    Stop();
  }
}

void KelDirectoryWatch::State::Stop() {
  if (!watching) return;
  watching = false;
  // A file system that is no longer in use may be gone; the operating system's own is there always.
  const bool there = changes == kel::FileSystemChanges() || fileSystem == &KelFileSystem::Native();
  if (there) fileSystem->StopWatch(watch);
}

KelDirectoryWatch::KelDirectoryWatch(const wchar_t* path) {
  if (path == nullptr || *path == L'\0') return;
  kel::Guarded([&] {
    _state = std::make_unique<State>(path);
    return S_OK;
  });
}

KelDirectoryWatch::~KelDirectoryWatch() {
  kel::Guarded([&] {
    _state.reset();
    return S_OK;
  });
}

bool KelDirectoryWatch::Changed() {
  bool changed = true;
  if (_state == nullptr) return changed;
  kel::Guarded([&] {
    changed = _state->Changed();
    return S_OK;
  });
  return changed;
}
