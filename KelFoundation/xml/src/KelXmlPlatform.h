// The parser's library as this process has it: up while somebody parses.
//
// The host may use that library for itself. It starts it before the first document or after it,
// gives it a memory manager of its own, ends it when it has done, and perhaps ends it once more
// than it started it. Usable from several threads; the library's own counting of starts and ends is
// not, so a host that starts and ends it in another thread at the very moment of a first document
// needs a lock of its own, as it does between its own threads.
#pragma once

#include <cstdint>

class KelXmlPlatform {
 public:
  // Keeps the platform up while it lives. What the parser threw has to be gone before.
  class Use {
   public:
    // Throws what starting the platform throws, and std::runtime_error ever after.
    Use();
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    // The life of the platform that this object counts in; 0 when it does not count.
    std::uint64_t _counted = 0;
  };

  // Which of its lives the platform is in. What was made in an earlier one stands on memory that is
  // gone: it must be neither used nor taken apart.
  static std::uint64_t Life();
};
