// Memory for one kept parser: what it gives back is kept for its next request of that size.
//
// Bounded, so that no document makes the parser take more than its share. When memory runs out in
// the middle of the parser's work, the parser may be forgotten as it is: all its blocks go with
// this object. Used by one thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/sax/Locator.hpp>

#include "KelXmlFailure.h"

class KelXmlMemory : public xercesc::MemoryManager {
 public:
  KelXmlMemory() = default;
  ~KelXmlMemory() override;
  KelXmlMemory(const KelXmlMemory&) = delete;
  KelXmlMemory& operator=(const KelXmlMemory&) = delete;

  // Bounds what is in use from now on, to `bytes` beside the readers of the entities that are being
  // read, and how many entities may be read, the document itself among them, to `entities`.
  // `locator` tells where the parser is; it is asked until End.
  void Begin(std::size_t bytes, std::size_t entities, const xercesc::Locator& locator);
  void End();

  // Throws the KelXmlFailure that belongs to it, when the bound has been reached since Begin.
  void ExplainBound() const;

  // The bytes in use and those kept for reuse.
  std::size_t Held() const { return _held; }

  // Throws xercesc::OutOfMemoryException at the bound and when there is no memory, and a
  // KelXmlFailure when too many entities are read.
  void* allocate(XMLSize_t size) override;
  void deallocate(void* piece) override;
  xercesc::MemoryManager* getExceptionMemoryManager() override;

 private:
  // In front of every piece.
  struct alignas(std::max_align_t) Header {
    // The neighbours in the list of all pieces; `next` alone, while the piece waits for reuse.
    Header* next;
    Header* previous;
    std::size_t size;
    // Which of `_free` it goes back to; kNoClass for a piece that is not kept.
    std::size_t sizeClass;
  };

  // Pieces up to 512 bytes in steps of 16, those up to 256 KB in powers of two, and the parser's
  // readers, which are large and come one for each entity.
  static constexpr std::size_t kSmall = 512;
  static constexpr std::size_t kStep = 16;
  static constexpr std::size_t kLarge = std::size_t{256} * 1024;
  static constexpr std::size_t kReaderClass = kSmall / kStep + 9;
  static constexpr std::size_t kClasses = kReaderClass + 1;
  static constexpr std::size_t kNoClass = std::numeric_limits<std::size_t>::max();

  static std::size_t ClassOf(std::size_t size);
  static std::size_t SizeOf(std::size_t sizeClass);
  void CountEntity();
  void CheckBound(std::size_t size);
  Header* Take(std::size_t sizeClass, std::size_t size);
  void Drop(Header* header);

  std::array<Header*, kClasses> _free{};
  // All pieces in use.
  Header* _used = nullptr;
  std::size_t _inUse = 0;
  std::size_t _held = 0;
  std::size_t _limit = std::numeric_limits<std::size_t>::max();
  std::size_t _entitiesLeft = std::numeric_limits<std::size_t>::max();
  const xercesc::Locator* _locator = nullptr;
  std::optional<KelXmlFailure> _boundReached;
};
