// The system's own notices of names that go from a directory.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kel {

// All watches of the process share one queue of the system, which hands out few. A forked process
// starts over with a queue of its own, since reading the shared one would rob its parent.
class DirectoryEvents {
 public:
  constexpr DirectoryEvents() = default;
  ~DirectoryEvents();
  DirectoryEvents(const DirectoryEvents&) = delete;
  DirectoryEvents& operator=(const DirectoryEvents&) = delete;

  // Results as KelFileSystem has them. A poll fails when the watch will report nothing any more.
  long Start(const std::string& path, int* watch);
  long Poll(int watch, bool* changed);
  void Stop(int watch);

 private:
  struct Watch {
    int number;
    int directory;  // the system's number, shared by all watches of one directory
    bool changed;
    bool lost;  // nothing will come for it any more
  };

  Watch* Find(int number);
  bool Watched(int directory) const;
  // Drops a queue that belongs to the process this one was forked from.
  void LeaveParent();
  bool OpenQueue();
  // Notes everything that has come in. False when the queue cannot be read.
  bool Drain();
  void Note(int directory, unsigned mask);

  int _queue = -1;
  pid_t _owner = 0;
  int _last = 0;
  std::vector<Watch> _watches;
};

}  // namespace kel
