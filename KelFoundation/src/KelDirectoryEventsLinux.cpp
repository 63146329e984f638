#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "KelDirectoryEvents.h"
#include "KelLib.h"

namespace kel {
namespace {

// A new file alone is IN_CREATE, which is left out. A file that is renamed into the directory may
// have replaced another.
constexpr unsigned kNamesGo =
    IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
// After these the path and what is watched may have nothing to do with each other any more.
constexpr unsigned kWatchLost = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;

// What other machines do in these is not told to this one.
bool IsRemote(const std::string& path) {
  constexpr unsigned kRemote[] = {NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC,
                                  SMB2_SUPER_MAGIC, FUSE_SUPER_MAGIC, V9FS_MAGIC,
                                  AFS_SUPER_MAGIC,  CODA_SUPER_MAGIC, CEPH_SUPER_MAGIC};
  struct statfs found {};
  if (statfs(path.c_str(), &found) != 0) return true;
  const auto type = static_cast<unsigned>(found.f_type);
  return std::find(std::begin(kRemote), std::end(kRemote), type) != std::end(kRemote);
}

}  // namespace

DirectoryEvents::~DirectoryEvents() {
  if (_queue >= 0) close(_queue);
}

long DirectoryEvents::Start(const std::string& path, int* watch) {
  LeaveParent();
  if (IsRemote(path) || !OpenQueue()) return E_FAIL;
  if (_watches.size() == _watches.capacity()) _watches.reserve(2 * _watches.size() + 4);
  // What came before for a directory that is watched already is none of the new watch's business.
  Drain();
  const int directory = inotify_add_watch(_queue, path.c_str(), kNamesGo | IN_ONLYDIR);
  if (directory < 0) return E_FAIL;
  do {
    _last = _last == INT_MAX ? 1 : _last + 1;
  } while (Find(_last) != nullptr);
  _watches.push_back({_last, directory, false, false});
  *watch = _last;
  return S_OK;
}

long DirectoryEvents::Poll(int watch, bool* changed) {
  LeaveParent();
  Watch* const found = Find(watch);
  if (found == nullptr || !Drain() || found->lost) return E_FAIL;
  *changed = found->changed;
  found->changed = false;
  return S_OK;
}

void DirectoryEvents::Stop(int watch) {
  LeaveParent();
  Watch* const found = Find(watch);
  if (found == nullptr) return;
  const int directory = found->directory;
  *found = _watches.back();
  _watches.pop_back();
  if (directory >= 0 && !Watched(directory)) inotify_rm_watch(_queue, directory);
}

DirectoryEvents::Watch* DirectoryEvents::Find(int number) {
  for (Watch& watch : _watches) {
    if (watch.number == number) return &watch;
  }
  return nullptr;
}

bool DirectoryEvents::Watched(int directory) const {
  return std::any_of(_watches.begin(), _watches.end(),
                     [directory](const Watch& watch) { return watch.directory == directory; });
}

void DirectoryEvents::LeaveParent() {
  if (_queue < 0 || _owner == getpid()) return;
  close(_queue);
  _queue = -1;
  for (Watch& watch : _watches) {
    watch.directory = -1;
    watch.lost = true;
  }
}

bool DirectoryEvents::OpenQueue() {
  if (_queue >= 0) return true;
  _queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  _owner = getpid();
  return _queue >= 0;
}

bool DirectoryEvents::Drain() {
  // The system hands out whole events only; one with the longest name fits several times.
  alignas(inotify_event) char events[8192];
  while (_queue >= 0) {
    const ssize_t bytes = read(_queue, events, sizeof events);
    if (bytes < 0 && errno == EINTR) continue;
    if (bytes < 0) return errno == EAGAIN;
    for (ssize_t at = 0; at < bytes;) {
      inotify_event event{};
      std::memcpy(&event, events + at, sizeof event);
      Note(event.wd, event.mask);
      at += static_cast<ssize_t>(sizeof event + event.len);
    }
  }
  return false;
}

void DirectoryEvents::Note(int directory, unsigned mask) {
  const bool lost = (mask & kWatchLost) != 0;
  for (Watch& watch : _watches) {
    // Events that the queue had no room for may have been anybody's.
    if (watch.directory != directory && (mask & IN_Q_OVERFLOW) == 0) continue;
    watch.changed = true;
    if (lost) watch.lost = true;
  }
}

}  // namespace kel
