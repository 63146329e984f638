// Memory of one tree: taken piece by piece from a few large blocks, given back all at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

class KelXmlArena {
 public:
  KelXmlArena() = default;
  ~KelXmlArena();
  KelXmlArena(const KelXmlArena&) = delete;
  KelXmlArena& operator=(const KelXmlArena&) = delete;

  // The size of the next block, when nothing asks for a larger one.
  void Expect(std::size_t bytes) { _nextBlock = bytes; }

  // Bounds the bytes of all blocks together; beyond it, requests throw a KelXmlFailure.
  void Limit(std::size_t bytes) { _limit = bytes; }
  void Unlimit() { _limit = std::numeric_limits<std::size_t>::max(); }

  // `size` bytes aligned for pointers. Throws std::bad_alloc, or a KelXmlFailure at the limit.
  void* Allocate(std::size_t size);

  // Makes room for `size` bytes at the end of the arena behind `open` bytes that are already being
  // written there, and returns where those bytes are now: they move when the block is full. Nothing
  // is taken until Commit.
  char* Reserve(char* openText, std::size_t open, std::size_t size);
  char* Reserve(std::size_t size) { return Reserve(_top, 0, size); }
  // Takes the bytes up to `end`, which lies in what Reserve made room for.
  void Commit(char* end) { _top = end; }

  // A copy of `text`.
  std::string_view Copy(std::string_view text);

 private:
  struct Block {
    Block* next;
    std::size_t size;
  };

  void AddBlock(std::size_t atLeast);
  std::size_t Room() const { return static_cast<std::size_t>(_end - _top); }

  Block* _blocks = nullptr;
  char* _top = nullptr;
  char* _end = nullptr;
  std::size_t _nextBlock = 4096;
  std::size_t _total = 0;
  std::size_t _limit = std::numeric_limits<std::size_t>::max();
};
