#include "KelXmlSource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "KelXmlFailure.h"

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();

// How the characters of markup are stored.
struct Encoding {
  std::size_t unitSize;
  bool isLittleEndian;
  bool isEbcdic;
};

Encoding EncodingOf(std::string_view source) {
  struct Mark {
    std::string_view bytes;
    Encoding encoding;
  };
  // Longer marks first: one begins with another.
  static constexpr Mark kMarks[] = {
      {"\xFF\xFE\0\0"sv, {4, true, false}},
      {"\0\0\xFE\xFF"sv, {4, false, false}},
      {"<\0\0\0"sv, {4, true, false}},
      {"\0\0\0<"sv, {4, false, false}},
      {"\xFF\xFE"sv, {2, true, false}},
      {"\xFE\xFF"sv, {2, false, false}},
      {"<\0"sv, {2, true, false}},
      {"\0<"sv, {2, false, false}},
      {"\x4C\x6F\xA7\x94"sv, {1, false, true}},
  };
  for (const Mark& mark : kMarks) {
    if (source.starts_with(mark.bytes)) return mark.encoding;
  }
  return {1, false, false};
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

std::string_view WithoutNulsBehind(std::string_view text, const Encoding& encoding) {
  const std::size_t unit = encoding.unitSize;
  while (text.size() >= unit && UnitAt(text, text.size() - unit, encoding) == 0) {
    text.remove_suffix(unit);
  }
  return text;
}

// A document ends with the '>' of its last markup or with white space behind it; XML 1.1 counts two
// more characters as line ends.
bool CanEnd(std::string_view text, const Encoding& encoding) {
  const std::uint32_t last = UnitAt(text, text.size() - encoding.unitSize, encoding);
  if (encoding.isEbcdic) {
    return last == 0x6E || last == 0x40 || last == 0x05 || last == 0x0D || last == 0x15 ||
           last == 0x25;
  }
  if (last == '>' || last == ' ' || last == '\t' || last == '\r' || last == '\n') return true;
  if (last == 0x85) return encoding.unitSize > 1 || !text.ends_with("\xE2\x80\x85"sv);
  return encoding.unitSize > 1 ? last == 0x2028 : text.ends_with("\xE2\x80\xA8"sv);
}

[[noreturn]] void Fail(const char* reason, std::string_view before) {
  const auto lines = static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t lineStart = before.rfind('\n') + 1;
  throw KelXmlFailure(reason, lines + 1, before.size() - lineStart + 1);
}

}  // namespace

std::string_view DocumentIn(std::string_view source) {
  if (source.size() > kLargest) Fail("the document is too large", {});
  const Encoding encoding = EncodingOf(source);
  const std::string_view text = WithoutNulsBehind(source, encoding);
  if (text.empty()) Fail("the document is empty", {});
  const std::size_t nul = FindNul(text, encoding);
  if (nul != std::string_view::npos) {
    Fail("a NUL inside or behind the document", text.substr(0, nul));
  }
  if (text.size() % encoding.unitSize != 0) Fail("the last character is cut", text);
  if (!CanEnd(text, encoding)) Fail("the document ends with something else than markup", text);
  return text;
}
