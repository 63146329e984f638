#include "KelUtf8.h"

#include <cstdint>

namespace kel {
namespace {

constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr char32_t kReplacement = 0xFFFD;
// What is added to a byte that is no UTF-8 to make the character that stands for it.
constexpr char32_t kStrayByte = 0xDC00;

constexpr bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
constexpr bool IsStrayByte(char32_t c) { return c >= 0xDC80 && c <= 0xDCFF; }

struct Character {
  char32_t code;
  std::size_t bytes;
};

// How a sequence goes on behind its first byte, and the lowest character that needs that length.
struct Lead {
  char32_t bits;
  std::size_t bytes;
  char32_t lowest;
};

constexpr Lead LeadOf(unsigned char byte) {
  if (byte < 0x80) return {byte, 1, 0};
  if ((byte & 0xE0) == 0xC0) return {byte & 0x1Fu, 2, 0x80};
  if ((byte & 0xF0) == 0xE0) return {byte & 0x0Fu, 3, 0x800};
  if ((byte & 0xF8) == 0xF0) return {byte & 0x07u, 4, 0x10000};
  return {0, 0, 0};
}

Character Decode(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  const Character stray{kStrayByte + first, 1};
  const Lead lead = LeadOf(first);
  if (lead.bytes == 0 || lead.bytes > text.size()) return stray;
  char32_t code = lead.bits;
  for (std::size_t i = 1; i < lead.bytes; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return stray;
    code = code << 6 | (next & 0x3Fu);
  }
  const bool surrogate = IsHighSurrogate(code) || IsLowSurrogate(code);
  if (code < lead.lowest || code > kLastCharacter || surrogate) return stray;
  return {code, lead.bytes};
}

void AppendWide(char32_t code, std::wstring& wide) {
  if constexpr (sizeof(wchar_t) == 2) {
    if (code >= 0x10000) {
      wide += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
      wide += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
      return;
    }
  }
  wide += static_cast<wchar_t>(code);
}

void AppendUtf8(char32_t code, std::string& utf8) {
  const auto append = [&utf8](char32_t byte) { utf8 += static_cast<char>(byte); };
  const auto appendRest = [&](int shift) { append(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0 | code >> 6);
    appendRest(0);
  } else if (code < 0x10000) {
    append(0xE0 | code >> 12);
    appendRest(6);
    appendRest(0);
  } else {
    append(0xF0 | code >> 18);
    appendRest(12);
    appendRest(6);
    appendRest(0);
  }
}

// The wide character as a number without a sign, whatever wchar_t is.
char32_t CodeOf(wchar_t c) {
  if constexpr (sizeof(wchar_t) == 2) return static_cast<std::uint16_t>(c);
  return static_cast<char32_t>(c);
}

}  // namespace

std::size_t CharacterBytes(std::string_view text) { return Decode(text).bytes; }

std::wstring WideFromUtf8(std::string_view utf8) {
  std::wstring wide;
  wide.reserve(utf8.size());
  while (!utf8.empty()) {
    const Character next = Decode(utf8);
    AppendWide(next.code, wide);
    utf8.remove_prefix(next.bytes);
  }
  return wide;
}

std::string Utf8FromWide(std::wstring_view wide) {
  std::string utf8;
  utf8.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t code = CodeOf(wide[i]);
    const char32_t next = i + 1 < wide.size() ? CodeOf(wide[i + 1]) : 0;
    // A pair comes first: its second half may look like a byte that is no UTF-8.
    if (IsHighSurrogate(code) && IsLowSurrogate(next)) {
      code = 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00);
      ++i;
    }
    if (IsStrayByte(code)) {
      utf8 += static_cast<char>(code - kStrayByte);
    } else {
      AppendUtf8(code > kLastCharacter ? kReplacement : code, utf8);
    }
  }
  return utf8;
}

}  // namespace kel
