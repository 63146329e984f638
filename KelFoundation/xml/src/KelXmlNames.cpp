#include "KelXmlNames.h"

#include <chrono>
#include <cstring>
#include <new>

#include "KelXmlArena.h"

namespace {

constexpr std::size_t kFirstSlots = 64;

// Differs from run to run, so that no document can be made whose names all collide.
const std::uint64_t theSeed =
    static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) |
    std::uint64_t{1};

std::uint64_t Mix(std::uint64_t value) {
  value *= 0x9E3779B97F4A7C15u;
  return value ^ (value >> 29);
}

std::uint32_t Hash(std::string_view text) {
  std::uint64_t hash = theSeed ^ text.size();
  const char* at = text.data();
  std::size_t left = text.size();
  for (; left >= 8; at += 8, left -= 8) {
    std::uint64_t word;
    std::memcpy(&word, at, 8);
    hash = Mix(hash ^ word);
  }
  std::uint64_t tail = 0;
  if (left > 0) std::memcpy(&tail, at, left);
  hash = Mix(Mix(hash ^ tail));
  return static_cast<std::uint32_t>(hash >> 32);
}

}  // namespace

const KelXmlName* KelXmlNames::Intern(std::string_view text) {
  if (_count * 2 >= _slots.size()) Grow();
  const std::uint32_t hash = Hash(text);
  const std::size_t slot = Slot(text, hash);
  if (_slots[slot] != nullptr) return _slots[slot];
  const std::string_view stored = _arena.Copy(text);
  void* memory = _arena.Allocate(sizeof(KelXmlName));
  _slots[slot] =
      new (memory) KelXmlName{stored.data(), static_cast<std::uint32_t>(stored.size()), hash};
  ++_count;
  return _slots[slot];
}

const KelXmlName* KelXmlNames::Find(std::string_view text) const {
  return _slots.empty() ? nullptr : _slots[Slot(text, Hash(text))];
}

std::size_t KelXmlNames::Slot(std::string_view text, std::uint32_t hash) const {
  const std::size_t mask = _slots.size() - 1;
  std::size_t slot = hash & mask;
  while (_slots[slot] != nullptr && (_slots[slot]->hash != hash || _slots[slot]->view() != text)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

void KelXmlNames::Grow() {
  std::vector<const KelXmlName*> slots(_slots.empty() ? kFirstSlots : _slots.size() * 2);
  slots.swap(_slots);
  for (const KelXmlName* name : slots) {
    if (name != nullptr) _slots[Slot(name->view(), name->hash)] = name;
  }
}
