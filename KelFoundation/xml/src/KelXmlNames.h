// The names of one tree, each stored once: two names are equal when their addresses are.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

class KelXmlArena;

struct KelXmlName {
  const char* text;
  std::uint32_t length;
  std::uint32_t hash;

  std::string_view view() const { return {text, length}; }
};

class KelXmlNames {
 public:
  // The names are stored in `arena`, which must outlive this object.
  explicit KelXmlNames(KelXmlArena& arena) : _arena(arena) {}

  // The name `text`, stored when it is new.
  const KelXmlName* Intern(std::string_view text);
  // The name `text`; null when no node has it.
  const KelXmlName* Find(std::string_view text) const;

 private:
  std::size_t Slot(std::string_view text, std::uint32_t hash) const;
  void Grow();

  KelXmlArena& _arena;
  // A power of two slots, at most half of them taken.
  std::vector<const KelXmlName*> _slots;
  std::size_t _count = 0;
};
