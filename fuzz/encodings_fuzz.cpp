// Characters through the parser in every encoding of Unicode, and from wide characters: a second
// implementation that knows well-formed UTF-8 as a table of byte ranges tells what is a document
// and what it holds.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Expect.h"
#include "FuzzInput.h"
#include "KelUnicodeString.h"
#include "Tree.h"

using fuzz::expect;
using fuzz::expectEqual;

namespace {

using Codes = std::vector<std::uint32_t>;

constexpr std::uint32_t kStray = 0xDC00;

// The sequences of UTF-8: where the first byte lies, where the second, and how many bytes there
// are; from the third on each lies between 80 and BF.
struct Form {
  unsigned firstFrom, firstTo, secondFrom, secondTo;
  std::size_t bytes;
};

constexpr Form kForms[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

unsigned byteAt(const std::string& text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

bool isIn(unsigned byte, unsigned from, unsigned to) { return byte >= from && byte <= to; }

bool stands(const Form& form, const std::string& text, std::size_t at) {
  if (!isIn(byteAt(text, at), form.firstFrom, form.firstTo)) return false;
  if (form.bytes > 1 && !isIn(byteAt(text, at + 1), form.secondFrom, form.secondTo)) return false;
  for (std::size_t i = 2; i < form.bytes; ++i) {
    if (!isIn(byteAt(text, at + i), 0x80, 0xBF)) return false;
  }
  return true;
}

// How many bytes the character at `at` has; 0 for a byte that is no UTF-8.
std::size_t bytesOfCharacter(const std::string& text, std::size_t at) {
  for (const Form& form : kForms) {
    if (stands(form, text, at)) return form.bytes;
  }
  return 0;
}

std::uint32_t codeOf(const std::string& character) {
  constexpr unsigned kBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t code = byteAt(character, 0) & kBits[character.size()];
  for (std::size_t i = 1; i < character.size(); ++i) code = code * 64 + byteAt(character, i) % 64;
  return code;
}

// A byte that is no UTF-8 is a code of its own.
Codes codesOf(const std::string& text) {
  Codes codes;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t bytes = bytesOfCharacter(text, at);
    codes.push_back(bytes == 0 ? kStray + byteAt(text, at) : codeOf(text.substr(at, bytes)));
    at += std::max<std::size_t>(bytes, 1);
  }
  return codes;
}

bool isHigh(std::uint32_t code) { return code >= 0xD800 && code < 0xDC00; }
bool isLow(std::uint32_t code) { return code >= 0xDC00 && code < 0xE000; }

// The bytes of one code, a half of a surrogate pair included.
std::string encoded(std::uint32_t code) {
  if (code < 0x80) return std::string(1, static_cast<char>(code));
  std::string bytes;
  std::uint32_t first = 0x80;  // what the first byte says of the length
  std::uint32_t room = 0x40;   // what the first byte holds
  for (; code >= room; code /= 0x40) {
    bytes.insert(bytes.begin(), static_cast<char>(0x80 + code % 0x40));
    room = room == 0x40 ? 0x20 : room / 2;
    first = first / 2 + 0x80;
  }
  bytes.insert(bytes.begin(), static_cast<char>(first + code));
  return bytes;
}

std::string bytesOf(const Codes& wide) {
  std::string bytes;
  for (std::size_t i = 0; i < wide.size(); ++i) {
    std::uint32_t code = wide[i];
    const bool pair = isHigh(code) && i + 1 < wide.size() && isLow(wide[i + 1]);
    if (pair) code = (code - 0xD7C0) * 0x400 + wide[++i] % 0x400;
    if (!pair && code >= kStray + 0x80 && code <= kStray + 0xFF) {
      bytes += static_cast<char>(code - kStray);
    } else {
      bytes += encoded(code > 0x10FFFF ? 0xFFFD : code);
    }
  }
  return bytes;
}

// Any numbers as wide characters, up to the first zero.
void fromWide(fuzz::Input& input) {
  Codes codes;
  std::wstring wide;
  while (!input.atEnd()) {
    std::uint32_t code = static_cast<std::uint32_t>(input.number());
    if (sizeof(wchar_t) == 2) code %= 0x10000;
    if (code == 0) break;
    codes.push_back(code);
    wide += static_cast<wchar_t>(code);
  }
  const std::string bytes = KelUnicodeString(wide.c_str()).ConvertToChar();
  expectEqual(bytes, bytesOf(codes), "the bytes of wide characters");
  const KelUnicodeString again(bytes.c_str());
  expectEqual(KelUnicodeString(again.ConvertToWide()).ConvertToChar(), bytes, "they stay the same");
}

bool isXmlCharacter(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code <= 0x10FFFF && (code <= 0xFFFD || code >= 0x10000) && !isHigh(code) && !isLow(code);
}

std::string unit(std::uint32_t value, int bytes, bool littleEndian) {
  std::string text;
  for (int i = 0; i < bytes; ++i) {
    const char byte = static_cast<char>(value >> (8 * i));
    text.insert(littleEndian ? text.end() : text.begin(), byte);
  }
  return text;
}

std::string inUtf16(const Codes& codes, bool littleEndian) {
  std::string text = unit(0xFEFF, 2, littleEndian);
  for (const std::uint32_t code : codes) {
    if (code > 0xFFFF) text += unit(0xD7C0 + code / 0x400, 2, littleEndian);
    text += unit(code > 0xFFFF ? 0xDC00 + code % 0x400 : code, 2, littleEndian);
  }
  return text;
}

std::string inUcs4(const Codes& codes, bool littleEndian) {
  std::string text;
  for (const std::uint32_t code : codes) text += unit(code, 4, littleEndian);
  return text;
}

// A document that holds `codes` alone, between `open` and the end of its root.
Codes documentOf(const Codes& codes, const std::string& open) {
  Codes all = codesOf(open);
  all.insert(all.end(), codes.begin(), codes.end());
  const Codes close = codesOf("</a>");
  all.insert(all.end(), close.begin(), close.end());
  return all;
}

// Markup would be no text, and a carriage return would come as a line feed.
Codes withoutMarkup(Codes codes) {
  for (std::uint32_t& code : codes) {
    if (code == '<' || code == '&' || code == '>' || code == '\r') code = '_';
  }
  return codes;
}

void holds(const std::string& bytes, const Codes& codes, bool accepted) {
  const DOM_Document document = fuzz::parse(bytes);
  if (document.isNull()) return expect(!accepted, "a document of characters is accepted");
  expect(accepted, "what is no character is refused");
  const DOM_Node text = document.getDocumentElement().getFirstChild();
  expectEqual(text.isNull() ? "" : text.getNodeValue().utf8(), bytesOf(codes), "it is the text");
}

void throughUtf8(const std::string& text) {
  const Codes codes = withoutMarkup(codesOf(text));
  const bool fine = std::all_of(codes.begin(), codes.end(), isXmlCharacter);
  holds("<a>" + bytesOf(codes) + "</a>", codes, fine);
  if (!fine) return;
  for (const bool littleEndian : {false, true}) {
    holds(inUtf16(documentOf(codes, "<a>"), littleEndian), codes, true);
  }
}

// Any numbers as units of 32 bits.
void throughUcs4(fuzz::Input& input, const Codes& before) {
  const bool littleEndian = input.upTo(1) == 1;
  Codes codes = before;
  while (!input.atEnd()) codes.push_back(static_cast<std::uint32_t>(input.number()));
  codes = withoutMarkup(codes);
  const std::string open = "<?xml version='1.0' encoding='ISO-10646-UCS-4'?><a>";
  holds(inUcs4(documentOf(codes, open), littleEndian), codes,
        std::all_of(codes.begin(), codes.end(), isXmlCharacter));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const int kind = input.upTo(2);
  if (kind == 0) {
    fromWide(input);
    return 0;
  }
  // The parser works on a number of characters at a time: what follows stands anywhere among them.
  const auto before = static_cast<std::size_t>(input.byte());
  if (kind == 1) {
    throughUtf8(std::string(before, 'x') + input.rest());
  } else {
    throughUcs4(input, Codes(before, 'x'));
  }
  return 0;
}
