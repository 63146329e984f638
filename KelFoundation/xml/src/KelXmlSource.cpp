#include "KelXmlSource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "KelXmlFailure.h"

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t kLastCharacter = 0x10FFFF;

// How the characters of markup are stored.
struct Encoding {
  std::size_t unitSize;
  bool isLittleEndian;
  // More of them than the longest character has bytes.
  std::string_view blanks;
};

constexpr std::string_view kBlanks = "      "sv;
constexpr std::string_view kEbcdicBlanks = "\x40\x40\x40\x40\x40\x40"sv;
constexpr std::string_view kBlanks16Little = " \0 \0"sv;
constexpr std::string_view kBlanks16Big = "\0 \0 "sv;

Encoding EncodingOf(std::string_view source) {
  struct Mark {
    std::string_view bytes;
    Encoding encoding;
  };
  // Longer marks first: one begins with another.
  static constexpr Mark kMarks[] = {
      {"\xFF\xFE\0\0"sv, {4, true, {}}},
      {"\0\0\xFE\xFF"sv, {4, false, {}}},
      {"<\0\0\0"sv, {4, true, {}}},
      {"\0\0\0<"sv, {4, false, {}}},
      {"\xFF\xFE"sv, {2, true, kBlanks16Little}},
      {"\xFE\xFF"sv, {2, false, kBlanks16Big}},
      {"<\0"sv, {2, true, kBlanks16Little}},
      {"\0<"sv, {2, false, kBlanks16Big}},
      {"\x4C\x6F\xA7\x94"sv, {1, false, kEbcdicBlanks}},
  };
  for (const Mark& mark : kMarks) {
    if (source.starts_with(mark.bytes)) return mark.encoding;
  }
  return {1, false, kBlanks};
}

std::uint32_t UnitAt(std::string_view text, std::size_t at, const Encoding& encoding) {
  std::uint32_t unit = 0;
  for (std::size_t i = 0; i < encoding.unitSize; ++i) {
    const std::size_t byte = encoding.isLittleEndian ? encoding.unitSize - 1 - i : i;
    unit = unit << 8 | static_cast<unsigned char>(text[at + byte]);
  }
  return unit;
}

// The offset of the first unit that is NUL; npos when there is none.
std::size_t FindNul(std::string_view text, const Encoding& encoding) {
  if (encoding.unitSize == 1) return text.find('\0');
  for (std::size_t at = 0; at + encoding.unitSize <= text.size(); at += encoding.unitSize) {
    if (UnitAt(text, at, encoding) == 0) return at;
  }
  return std::string_view::npos;
}

bool IsCharacter(std::uint32_t unit) {
  constexpr std::uint32_t kFirstSurrogate = 0xD800;
  constexpr std::uint32_t kLastSurrogate = 0xDFFF;
  return unit < kFirstSurrogate || (unit > kLastSurrogate && unit <= kLastCharacter);
}

// The offset of the first unit of 4 bytes that is no character; npos when there is none.
std::size_t FindNoCharacter(std::string_view text, const Encoding& encoding) {
  if (encoding.unitSize != 4) return std::string_view::npos;
  for (std::size_t at = 0; at + encoding.unitSize <= text.size(); at += encoding.unitSize) {
    if (!IsCharacter(UnitAt(text, at, encoding))) return at;
  }
  return std::string_view::npos;
}

std::string_view WithoutNulsBehind(std::string_view text, const Encoding& encoding) {
  const std::size_t unit = encoding.unitSize;
  while (text.size() >= unit && UnitAt(text, text.size() - unit, encoding) == 0) {
    text.remove_suffix(unit);
  }
  return text;
}

// Whether characters of more than one unit may be at the end: a document of ASCII ends whole.
bool MayBeCut(std::string_view text, std::size_t unitSize) {
  constexpr std::size_t kLongest = 4;
  const std::string_view end = text.substr(text.size() - std::min(text.size(), kLongest));
  return unitSize > 1 ||
         std::any_of(end.begin(), end.end(), [](char c) { return (c & 0x80) != 0; });
}

[[noreturn]] void Fail(const char* reason, std::string_view before) {
  const auto lines = static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t lineStart = before.rfind('\n') + 1;
  throw KelXmlFailure(reason, lines + 1, before.size() - lineStart + 1);
}

}  // namespace

KelXmlSource::KelXmlSource(std::string_view source) {
  if (source.size() > kLargest) Fail("the document is too large", {});
  const Encoding encoding = EncodingOf(source);
  const std::string_view text = WithoutNulsBehind(source, encoding);
  if (text.empty()) Fail("the document is empty", {});
  const std::size_t nul = FindNul(text, encoding);
  if (nul != std::string_view::npos) {
    Fail("a NUL inside or behind the document", text.substr(0, nul));
  }
  if (text.size() % encoding.unitSize != 0) Fail("the last character is cut", text);
  // The scanner would take it for one, or two of them for one.
  const std::size_t wrong = FindNoCharacter(text, encoding);
  if (wrong != std::string_view::npos) Fail("a unit that is no character", text.substr(0, wrong));
  _text = text;
  _unitSize = encoding.unitSize;
  _isAscii = encoding.unitSize == 1 && encoding.blanks == kBlanks;
  if (MayBeCut(text, _unitSize)) _blanks = encoding.blanks;
}

void KelXmlSource::InsistOnUtf8() const {
  if (!_isAscii) return;
  // Searched one by one, which is faster than for any of them at once.
  for (const char lead : {'\xF5', '\xF6', '\xF7'}) {
    const std::size_t at = _text.find(lead);
    if (at != std::string_view::npos) Fail("a character beyond U+10FFFF", _text.substr(0, at));
  }
}
