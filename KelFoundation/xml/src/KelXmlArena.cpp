#include "KelXmlArena.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "KelXmlBlocks.h"
#include "KelXmlFailure.h"

namespace {

constexpr std::size_t kAlignment = alignof(void*);
constexpr std::size_t kSmallestBlock = 4096;

}  // namespace

KelXmlArena::~KelXmlArena() {
  while (_blocks != nullptr) {
    Block* block = _blocks;
    _blocks = block->next;
    KelXmlBlocks::Release(block, block->size);
  }
}

void* KelXmlArena::Allocate(std::size_t size) {
  const auto misaligned = reinterpret_cast<std::uintptr_t>(_top) % kAlignment;
  const std::size_t padding = misaligned == 0 ? 0 : kAlignment - misaligned;
  if (Room() < padding + size) {
    AddBlock(size);
    return std::exchange(_top, _top + size);
  }
  char* piece = _top + padding;
  _top = piece + size;
  return piece;
}

char* KelXmlArena::Reserve(char* openText, std::size_t open, std::size_t size) {
  if (_top != nullptr && static_cast<std::size_t>(_end - openText) - open >= size) return openText;
  // Twice the open text, so that a text which grows in many steps is not copied in each.
  AddBlock(2 * open + size);
  if (open > 0) std::memcpy(_top, openText, open);
  return _top;
}

std::string_view KelXmlArena::Copy(std::string_view text) {
  char* copy = Reserve(text.size());
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  Commit(copy + text.size());
  return {copy, text.size()};
}

void KelXmlArena::AddBlock(std::size_t atLeast) {
  const std::size_t size =
      sizeof(Block) + std::max({atLeast + kAlignment, _nextBlock, kSmallestBlock});
  if (size > _limit - std::min(_limit, _total)) {
    throw KelXmlFailure("the document grows too large when its entities are expanded");
  }
  void* memory = KelXmlBlocks::Get(size);
  if (memory == nullptr) throw std::bad_alloc();
  _blocks = new (memory) Block{_blocks, size};
  _total += size;
  // Half of what there is already: few blocks for a large tree, little waste in each.
  _nextBlock = _total / 2;
  _top = static_cast<char*>(memory) + sizeof(Block);
  _end = static_cast<char*>(memory) + size;
}
