// The operating system's file system, where it speaks POSIX.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <vector>

#include "KelDirectoryEvents.h"
#include "KelFileSystem.h"
#include "KelLib.h"

namespace {

using Mode = KelFileSystem::Mode;

constexpr mode_t kFileRights = 0666;
constexpr mode_t kDirectoryRights = 0777;
// The clock that file systems stamp with ticks at most every ten milliseconds.
constexpr std::int64_t kCoarseClock = 50'000'000;

// Calls until no signal gets in the way.
template <class Call>
auto Retry(Call&& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

long ResultOf(int outcome) { return outcome == 0 ? S_OK : E_FAIL; }

std::int64_t Nanoseconds(const timespec& time) {
  return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

std::int64_t Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return Nanoseconds(now);
}

void SetIdentity(const struct stat& found, KelFileStamp* stamp) {
  stamp->device = found.st_dev;
  stamp->file = found.st_ino;
}

// Nothing waits at an open: a FIFO without a partner would do so for ever.
constexpr int kAlways = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

int FlagsOf(Mode mode) {
  if (mode == Mode::kRead) return kAlways | O_RDONLY;
  if (mode == Mode::kWrite) return kAlways | O_WRONLY | O_CREAT | O_TRUNC;
  if (mode == Mode::kCreate) return kAlways | O_WRONLY | O_CREAT | O_EXCL;
  return kAlways | O_RDWR | O_CREAT | O_APPEND;
}

int OpenWith(const std::string& path, int flags) {
  return Retry([&] { return open(path.c_str(), flags, kFileRights); });
}

// The type bits of what `handle` was opened on in `mode`; 0 when that cannot be told. What is made
// new needs no look.
mode_t TypeOf(int handle, Mode mode) {
  if (mode == Mode::kCreate) return S_IFREG;
  struct stat found {};
  return fstat(handle, &found) == 0 ? found.st_mode & S_IFMT : 0;
}

class PosixFileSystem : public KelFileSystem {
 public:
  constexpr PosixFileSystem() = default;

  long Open(const std::string& path, Mode mode, int* handle) override;
  long Read(int handle, char* buffer, std::size_t n, std::size_t* count) override;
  long Write(int handle, const char* buffer, std::size_t n, std::size_t* count) override;
  long Close(int handle) override;
  long Size(int handle, std::int64_t* size) override;
  long Truncate(int handle, std::int64_t size) override {
    return ResultOf(Retry([&] { return ftruncate(handle, size); }));
  }
  long Stamp(const std::string& path, KelFileStamp* stamp) override;
  long Remove(const std::string& path) override { return ResultOf(unlink(path.c_str())); }
  long Rename(const std::string& from, const std::string& to) override;
  long MakeDirectory(const std::string& path) override {
    return ResultOf(mkdir(path.c_str(), kDirectoryRights));
  }
  long FindDirectory(const std::string& path, KelFileStamp* identity) override;

  long StartWatch(const std::string& path, int* watch) override {
    return _events.Start(path, watch);
  }
  long PollWatch(int watch, bool* changed) override { return _events.Poll(watch, changed); }
  void StopWatch(int watch) override { _events.Stop(watch); }

 private:
  // Writing at the end moves the system's position there; reading goes on where it was.
  struct Position {
    int handle;
    off_t offset;
  };

  static constexpr off_t kNothingToRead = -1;

  Position* FindPosition(int handle);

  std::vector<Position> _positions;  // of the files that are open for both
  kel::DirectoryEvents _events;
};

long PosixFileSystem::Open(const std::string& path, Mode mode, int* handle) {
  if (mode == Mode::kAppend) _positions.reserve(_positions.size() + 1);
  const int opened = OpenWith(path, FlagsOf(mode));
  if (opened < 0) return E_FAIL;
  const mode_t type = TypeOf(opened, mode);
  const bool regular = type == S_IFREG;
  // What is written to a character device (the null device) goes where such a device puts it; there
  // is nothing to read from one.
  if (!regular && (type != S_IFCHR || mode == Mode::kRead)) {
    close(opened);
    return E_FAIL;
  }
  if (mode == Mode::kAppend) _positions.push_back({opened, regular ? 0 : kNothingToRead});
  *handle = opened;
  return S_OK;
}

long PosixFileSystem::Read(int handle, char* buffer, std::size_t n, std::size_t* count) {
  Position* const position = FindPosition(handle);
  if (position != nullptr && position->offset == kNothingToRead) {
    *count = 0;
    return S_OK;
  }
  const ssize_t got = Retry([&] {
    return position == nullptr ? read(handle, buffer, n)
                               : pread(handle, buffer, n, position->offset);
  });
  if (got < 0) return E_FAIL;
  if (position != nullptr) position->offset += got;
  *count = static_cast<std::size_t>(got);
  return S_OK;
}

long PosixFileSystem::Write(int handle, const char* buffer, std::size_t n, std::size_t* count) {
  const ssize_t taken = Retry([&] { return write(handle, buffer, n); });
  if (taken < 0) return E_FAIL;
  *count = static_cast<std::size_t>(taken);
  return S_OK;
}

long PosixFileSystem::Close(int handle) {
  if (Position* const position = FindPosition(handle)) {
    *position = _positions.back();
    _positions.pop_back();
  }
  // Not retried: the handle is gone also when a signal got in the way.
  return ResultOf(close(handle));
}

long PosixFileSystem::Size(int handle, std::int64_t* size) {
  struct stat found {};
  if (fstat(handle, &found) != 0) return E_FAIL;
  *size = found.st_size;
  return S_OK;
}

long PosixFileSystem::Stamp(const std::string& path, KelFileStamp* stamp) {
  // The clock first: what changes the file from here on counts as recent.
  const std::int64_t now = Now();
  struct stat found {};
  if (stat(path.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) return E_FAIL;
  SetIdentity(found, stamp);
  stamp->size = found.st_size;
  stamp->modified = Nanoseconds(found.st_mtim);
  stamp->changed = Nanoseconds(found.st_ctim);
  stamp->settled = stamp->modified < now - kCoarseClock && stamp->changed < now - kCoarseClock;
  return S_OK;
}

long PosixFileSystem::Rename(const std::string& from, const std::string& to) {
  // Of what is no file, a directory alone would be left in its place by the system.
  struct stat there {};
  const bool taken = lstat(to.c_str(), &there) == 0;
  if (taken && !S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode)) return E_FAIL;
  return ResultOf(rename(from.c_str(), to.c_str()));
}

long PosixFileSystem::FindDirectory(const std::string& path, KelFileStamp* identity) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0 || !S_ISDIR(found.st_mode)) return E_FAIL;
  SetIdentity(found, identity);
  return S_OK;
}

PosixFileSystem::Position* PosixFileSystem::FindPosition(int handle) {
  for (Position& position : _positions) {
    if (position.handle == handle) return &position;
  }
  return nullptr;
}

// Ready before any library that stands on this one, and there until after the last of them.
constinit PosixFileSystem native;

}  // namespace

KelFileSystem& KelFileSystem::Native() { return native; }
