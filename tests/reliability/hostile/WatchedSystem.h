// What a piece of work asks of the system: the files it opens, the sockets it makes, and the most
// memory that it has at a time.
//
// The program that this is linked into has the system's functions for these, and operators new and
// delete, from here; they do what they always do.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "../../../KelFoundation/xml/src/KelXmlBlocks.h"

class WatchedSystem : private KelXmlBlocks::Watcher {
 public:
  WatchedSystem();
  ~WatchedSystem() override;
  WatchedSystem(const WatchedSystem&) = delete;
  WatchedSystem& operator=(const WatchedSystem&) = delete;

  // Runs `body` while it is watched.
  template <class Body>
  void within(Body&& body) {
    watch(true);
    body();
    watch(false);
  }

  // The paths that were opened, or tried to be, in order.
  const std::vector<std::string>& opened() const { return _opened; }
  // How many sockets were made, and names of hosts asked for, or tried to be.
  int connections() const { return _connections; }
  // The most bytes of memory at a time, beyond what there was before.
  std::size_t peak() const { return static_cast<std::size_t>(_peak); }

  // For the functions that stand in the place of the system's.
  static void noteOpened(const char* path);
  static void noteConnection();
  static void noteMemory(long bytes);

 private:
  void watch(bool watching);

  bool OnGet(std::size_t size) override;
  void OnRelease(std::size_t size) override;

  std::vector<std::string> _opened;
  int _connections = 0;
  long _taken = 0;
  long _peak = 0;
  KelXmlBlocks::Watcher* _before;
};
