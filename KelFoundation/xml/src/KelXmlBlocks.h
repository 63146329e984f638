// Where the parser and the trees get their memory from, in blocks.
//
// A test can watch the blocks come and go, and refuse one to play a machine that runs out of
// memory. Usable from several threads; the watcher is set while no other thread parses.
#pragma once

#include <cstddef>

#include "KelExport.h"

class KEL_XML_EXPORT KelXmlBlocks {
 public:
  class KEL_XML_EXPORT Watcher {
   public:
    virtual ~Watcher() = default;
    // Whether a block of `size` bytes may be had. When it says so, the block counts as taken.
    virtual bool OnGet(std::size_t size) = 0;
    virtual void OnRelease(std::size_t size) = 0;
  };

  // A block of `size` bytes, aligned for every type; null when there is none. The caller gives it
  // back with Release and the same size.
  static void* Get(std::size_t size) noexcept;
  static void Release(void* block, std::size_t size) noexcept;

  // Makes `watcher` watch, or nobody when it is null. Returns the one before. The watcher must
  // outlive its being set.
  static Watcher* SetWatcher(Watcher* watcher);
};
