#include "KelXmlUtf8.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr std::uint64_t kNotAscii = 0xFF80FF80FF80FF80u;

// Copies units as long as four at a time are ASCII; returns how many.
std::size_t CopyAscii(const char16_t* units, std::size_t count, char* out) {
  std::size_t done = 0;
  for (; done + 4 <= count; done += 4) {
    std::uint64_t four;
    std::memcpy(&four, units + done, sizeof four);
    if ((four & kNotAscii) != 0) break;
    for (std::size_t i = 0; i < 4; ++i) out[done + i] = static_cast<char>(units[done + i]);
  }
  return done;
}

bool IsHighSurrogate(std::uint32_t unit) { return (unit & 0xFC00u) == 0xD800u; }
bool IsLowSurrogate(std::uint32_t unit) { return (unit & 0xFC00u) == 0xDC00u; }

char* WriteCharacter(std::uint32_t c, char* out) {
  if (c < 0x80) {
    *out++ = static_cast<char>(c);
    return out;
  }
  if (c < 0x800) {
    *out++ = static_cast<char>(0xC0 | (c >> 6));
    *out++ = static_cast<char>(0x80 | (c & 0x3F));
    return out;
  }
  if (c < 0x10000) {
    *out++ = static_cast<char>(0xE0 | (c >> 12));
  } else {
    *out++ = static_cast<char>(0xF0 | (c >> 18));
    *out++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
  }
  *out++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
  *out++ = static_cast<char>(0x80 | (c & 0x3F));
  return out;
}

}  // namespace

char* WriteUtf8(const char16_t* units, std::size_t count, char* out) {
  std::size_t at = 0;
  while (at < count) {
    const std::size_t ascii = CopyAscii(units + at, count - at, out);
    at += ascii;
    out += ascii;
    // At least one unit, so that a text without runs of ASCII makes progress too.
    for (std::size_t end = at + 4; at < end && at < count; ++at) {
      std::uint32_t c = units[at];
      if (IsHighSurrogate(c) && at + 1 < count && IsLowSurrogate(units[at + 1])) {
        c = 0x10000u + ((c - 0xD800u) << 10) + (units[++at] - 0xDC00u);
      } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
        c = 0xFFFDu;
      }
      out = WriteCharacter(c, out);
    }
  }
  return out;
}

std::string ToUtf8(const char16_t* units) {
  if (units == nullptr) return {};
  const std::size_t count = std::char_traits<char16_t>::length(units);
  std::string text(count * kMaxUtf8PerUnit, '\0');
  text.resize(static_cast<std::size_t>(WriteUtf8(units, count, text.data()) - text.data()));
  return text;
}
