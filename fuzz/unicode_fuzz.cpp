// Texts in UTF-8 and in wide characters against a plain decoder: no byte is ever lost.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "DOMString.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "KelUnicodeString.h"

using fuzz::expect;
using fuzz::expectEqual;

namespace {

struct Character {
  std::uint32_t code;
  std::string bytes;
};

// The shortest form of every character that is no surrogate.
std::string encoded(std::uint32_t code) {
  const auto rest = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3f)); };
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) return {static_cast<char>(0xc0 | code >> 6), rest(0)};
  if (code < 0x10000) return {static_cast<char>(0xe0 | code >> 12), rest(6), rest(0)};
  return {static_cast<char>(0xf0 | code >> 18), rest(12), rest(6), rest(0)};
}

// Tries every length: what decodes to a character whose encoding is these very bytes is one. Any
// other byte stands for itself.
Character firstOf(const std::string& text) {
  for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length) {
    const auto lead = static_cast<unsigned char>(text[0]);
    std::uint32_t code = length == 1 ? lead : lead & (0x7fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
      code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3f);
    }
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    if (code > 0x10ffff || surrogate || encoded(code) != text.substr(0, length)) continue;
    return {code, text.substr(0, length)};
  }
  return {0xdc00u + static_cast<unsigned char>(text[0]), text.substr(0, 1)};
}

std::vector<Character> charactersOf(std::string text) {
  std::vector<Character> characters;
  while (!text.empty()) {
    characters.push_back(firstOf(text));
    text.erase(0, characters.back().bytes.size());
  }
  return characters;
}

std::string part(const std::vector<Character>& characters, int start, int length) {
  std::string text;
  if (start < 0 || length < 0) return text;
  for (std::size_t i = static_cast<std::size_t>(start); i < characters.size() && length > 0; ++i) {
    text += characters[i].bytes;
    --length;
  }
  return text;
}

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string stripped(std::string text, bool leading, bool trailing) {
  while (leading && !text.empty() && isBlank(text.front())) text.erase(0, 1);
  while (trailing && !text.empty() && isBlank(text.back())) text.pop_back();
  return text;
}

void sameParts(const KelUnicodeString& string, const std::string& text,
               const std::vector<Character>& characters, fuzz::Input input) {
  const int start = input.upTo(20) - 3;
  const int length = input.upTo(20) - 3;
  expectEqual(string.SubString(start, length).ConvertToChar(), part(characters, start, length),
              "a part is made of whole characters");
  expectEqual(string.SubString(start, INT_MAX).ConvertToChar(), part(characters, start, INT_MAX),
              "a part ends where the text does");
  expectEqual(string.Strip(KelStripLeading).ConvertToChar(), stripped(text, true, false),
              "blanks in front go");
  expectEqual(string.Strip(KelStripTrailing).ConvertToChar(), stripped(text, false, true),
              "blanks behind go");
  expectEqual(string.Strip(KelStripBoth).ConvertToChar(), stripped(text, true, true),
              "blanks at both ends go");
}

// Blanks, a sign, digits, and nothing else.
void sameNumber(const KelUnicodeString& string, const std::string& text) {
  std::string digits = stripped(text, true, false);
  const bool negative = digits[0] == '-';
  if (negative || digits[0] == '+') digits.erase(0, 1);
  long long value = 0;
  std::size_t at = 0;
  while (at < digits.size() && digits[at] >= '0' && digits[at] <= '9') {
    value = std::min(value * 10 + (digits[at] - '0'), 1LL << 40);
    ++at;
  }
  if (negative) value = -value;
  const bool isNumber = at > 0 && value >= INT_MIN && value <= INT_MAX;
  int got = 77;
  expect((string.ConvertToNum(&got, "%d") == S_OK) == isNumber, "a number is one in range");
  expect(got == (isNumber ? static_cast<int>(value) : 0), "the number is what the digits say");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text = fuzz::Input(bytes, size).textTo('\0');
  const KelUnicodeString string(text.c_str());
  const std::vector<Character> characters = charactersOf(text);
  std::wstring wide;
  for (const Character& character : characters) wide += static_cast<wchar_t>(character.code);

  expectEqual(string.ConvertToChar(), text, "the bytes come back");
  expect(wide == string.ConvertToWide(), "the wide form has the characters");
  expect(string.GetLength() == static_cast<int>(characters.size()), "the length is in characters");
  const KelUnicodeString back(string.ConvertToWide());
  expectEqual(back.ConvertToChar(), text, "the bytes come back from the wide form");
  expect(back == string && !string.IsNull(), "both texts are the same one");
  sameParts(string, text, characters, fuzz::Input(bytes, size));
  sameNumber(string, text);

  const DOMString dom(text.c_str());
  expectEqual(dom.utf8(), text, "a document's text is kept");
  const DOMString half(text.substr(0, text.size() / 2).c_str());
  const int order = half.utf8().compare(text);
  const int got = half.compareString(dom);
  expect((got < 0) == (order < 0) && (got > 0) == (order > 0), "texts are sorted by their bytes");
  return 0;
}
