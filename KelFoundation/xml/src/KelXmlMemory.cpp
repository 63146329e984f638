#include "KelXmlMemory.h"

#include <algorithm>
#include <bit>
#include <new>
#include <xercesc/internal/XMLReader.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "KelXmlBlocks.h"
#include "KelXmlFailure.h"

namespace {

// What the parser asks for when it makes a reader: a pointer to the manager comes first.
std::size_t ReaderSize() {
  return sizeof(xercesc::XMLReader) + xercesc::XMLPlatformUtils::alignPointerForNewBlockAllocation(
                                          sizeof(xercesc::MemoryManager*));
}

KelXmlFailure FailureAt(const xercesc::Locator* locator, const char* reason) {
  KelXmlFailure failure(reason);
  if (locator != nullptr) failure.Locate(*locator);
  return failure;
}

}  // namespace

KelXmlMemory::~KelXmlMemory() {
  for (Header* header = _used; header != nullptr;) {
    Header* next = header->next;
    Drop(header);
    header = next;
  }
  for (Header* header : _free) {
    while (header != nullptr) {
      Header* next = header->next;
      Drop(header);
      header = next;
    }
  }
}

void KelXmlMemory::Begin(std::size_t bytes, std::size_t entities, const xercesc::Locator& locator) {
  _limit = bytes;
  _entitiesLeft = entities;
  _locator = &locator;
  _boundReached.reset();
}

void KelXmlMemory::End() {
  _limit = std::numeric_limits<std::size_t>::max();
  _entitiesLeft = std::numeric_limits<std::size_t>::max();
  _locator = nullptr;
}

void* KelXmlMemory::allocate(XMLSize_t size) {
  // One reader for each entity that is read, general ones and parameter ones alike: the parser's
  // own limit does not see the latter.
  if (size == ReaderSize()) {
    CountEntity();
  } else {
    CheckBound(size);
  }
  const std::size_t sizeClass = ClassOf(size);
  Header* header = Take(sizeClass, sizeClass == kNoClass ? size : SizeOf(sizeClass));
  if (header == nullptr) throw xercesc::OutOfMemoryException();
  header->previous = nullptr;
  header->next = _used;
  if (_used != nullptr) _used->previous = header;
  _used = header;
  if (header->sizeClass != kReaderClass) _inUse += header->size;
  return header + 1;
}

void KelXmlMemory::deallocate(void* piece) {
  if (piece == nullptr) return;
  Header* header = static_cast<Header*>(piece) - 1;
  if (header->sizeClass != kReaderClass) _inUse -= header->size;
  if (header->next != nullptr) header->next->previous = header->previous;
  (header->previous != nullptr ? header->previous->next : _used) = header->next;
  if (header->sizeClass == kNoClass) {
    Drop(header);
    return;
  }
  header->next = _free[header->sizeClass];
  _free[header->sizeClass] = header;
}

xercesc::MemoryManager* KelXmlMemory::getExceptionMemoryManager() {
  // An exception outlives the parser that threw it.
  return xercesc::XMLPlatformUtils::fgMemoryManager;
}

std::size_t KelXmlMemory::ClassOf(std::size_t size) {
  if (size == ReaderSize()) return kReaderClass;
  if (size <= kSmall) return size == 0 ? 0 : (size - 1) / kStep;
  if (size > kLarge) return kNoClass;
  return kSmall / kStep + static_cast<std::size_t>(std::bit_width((size - 1) / kSmall)) - 1;
}

std::size_t KelXmlMemory::SizeOf(std::size_t sizeClass) {
  constexpr std::size_t kSmallClasses = kSmall / kStep;
  if (sizeClass == kReaderClass) return ReaderSize();
  if (sizeClass < kSmallClasses) return (sizeClass + 1) * kStep;
  return kSmall << (sizeClass - kSmallClasses + 1);
}

void KelXmlMemory::CountEntity() {
  if (_entitiesLeft > 0) {
    --_entitiesLeft;
    return;
  }
  throw FailureAt(_locator, "more than 1,000 entities are expanded");
}

void KelXmlMemory::CheckBound(std::size_t size) {
  if (size <= _limit - std::min(_limit, _inUse)) return;
  // The one exception that the parser lets through everywhere carries no reason of its own.
  _boundReached = FailureAt(_locator, "the parser needs too much memory for the document");
  throw xercesc::OutOfMemoryException();
}

void KelXmlMemory::ExplainBound() const {
  if (_boundReached) throw *_boundReached;
}

KelXmlMemory::Header* KelXmlMemory::Take(std::size_t sizeClass, std::size_t size) {
  if (sizeClass != kNoClass && _free[sizeClass] != nullptr) {
    Header* header = _free[sizeClass];
    _free[sizeClass] = header->next;
    return header;
  }
  void* memory = KelXmlBlocks::Get(sizeof(Header) + size);
  if (memory == nullptr) return nullptr;
  _held += size;
  return new (memory) Header{nullptr, nullptr, size, sizeClass};
}

void KelXmlMemory::Drop(Header* header) {
  _held -= header->size;
  KelXmlBlocks::Release(header, sizeof(Header) + header->size);
}
