// Strings against a model of their text: what every operation leaves, gives and compares.
#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "Expect.h"
#include "FuzzInput.h"
#include "MString.h"
#include "Tokens.h"

using fuzz::expect;
using fuzz::expectEqual;
using fuzz::firstLine;

namespace {

// Null, or the bytes.
using Text = std::optional<std::string>;

std::string beforeNul(const std::string& text) { return text.substr(0, text.find('\0')); }

void sameText(const MString& string, const Text& text) {
  expect((string.isNull() != 0) == !text.has_value(), "a string is null when its model is");
  expect(string.glength() == (text ? static_cast<int>(text->size()) : 0), "the length is kept");
  if (!text) return;
  expectEqual(std::string(string.gchar(), text->size()), *text, "the bytes are kept");
  expect(string.gchar()[text->size()] == '\0', "a NUL stands behind the text");
}

// A text ends with a NUL, which may match one of the other's.
bool isPrefix(const Text& left, const Text& right) {
  if (!left || left->empty()) return true;
  return right && (*right + '\0').compare(0, left->size(), *left) == 0;
}

Text joined(const Text& left, const Text& right) {
  if (!left || !right) return left;
  std::string both = beforeNul(*left) + beforeNul(*right);
  both.resize(left->size() + right->size(), '\0');
  return both;
}

Text part(const Text& text, int from, int to) {
  if (!text || from < 0 || from >= to || from >= static_cast<int>(text->size())) return {};
  const std::size_t start = static_cast<std::size_t>(from);
  const auto last = std::min(static_cast<std::size_t>(to), text->size());
  return firstLine(text->substr(start, last - start + 1));
}

// Decimal digits behind blanks and a sign, in the range of long.
int number(const Text& text) {
  if (!text || text->empty()) return -1;
  const std::string digits = beforeNul(*text);
  std::size_t at = 0;
  while (at < digits.size() && (digits[at] == ' ' || (digits[at] >= '\t' && digits[at] <= '\r'))) {
    ++at;
  }
  const bool negative = at < digits.size() && digits[at] == '-';
  if (negative || (at < digits.size() && digits[at] == '+')) ++at;
  long value = 0;
  for (; at < digits.size() && digits[at] >= '0' && digits[at] <= '9'; ++at) {
    const int digit = digits[at] - '0';
    if (__builtin_mul_overflow(value, 10L, &value) ||
        __builtin_add_overflow(value, negative ? -digit : digit, &value)) {
      return static_cast<int>(negative ? LONG_MIN : LONG_MAX);
    }
  }
  return static_cast<int>(value);
}

int binaryNumber(const Text& text) {
  if (!text || text->empty()) return -1;
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4 && i < text->size(); ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>((*text)[i])) << (8 * i);
  }
  return static_cast<int>(value);
}

struct Pair {
  MString string;
  Text text;
};

void sameAnswers(const Pair& pair, int index) {
  const Text& text = pair.text;
  const bool inside = text && index >= 0 && index < static_cast<int>(text->size());
  expect(pair.string.extract(index) == (inside ? (*text)[static_cast<std::size_t>(index)] : '\0'),
         "a character is the byte there");
  expect(pair.string.parseInt() == number(text), "the number is what the digits say");
  expect(pair.string.parseSpeInt() == binaryNumber(text), "the binary number is little-endian");
  const double real = text && !text->empty() ? std::strtod(text->c_str(), nullptr) : -1.0;
  const double got = pair.string.parseDouble();
  expect(got == real || (got != got && real != real), "the real number is what the text says");
}

void change(Pair& pair, Pair& other, int operation, fuzz::Input& input) {
  const std::string bytes = input.textTo('|');
  if (operation == 0) {
    pair.string.set(bytes.c_str());
    pair.text = firstLine(bytes);
  } else if (operation == 1) {
    const int size = input.upTo(static_cast<int>(std::min<std::size_t>(bytes.size(), 200)));
    pair.string = MString(bytes.c_str(), size);
    pair.text = size < 1 ? Text() : bytes.substr(0, static_cast<std::size_t>(size));
  } else if (operation == 2) {
    pair.string + other.string;
    pair.text = joined(pair.text, other.text);
  } else if (operation == 3) {
    // Onto itself empties it.
    pair.string = other.string;
    pair.text = &pair == &other ? Text() : other.text;
  } else if (operation == 4) {
    const int from = input.upTo(40) - 2;
    const int to = input.upTo(40) - 2;
    const Text taken = part(other.text, from, to);
    sameText(other.string.substring(from, to), taken);
    pair.string = other.string.substring(from, to);
    pair.text = taken;
  } else if (operation == 5 && !pair.string.isNull()) {
    // From inside itself.
    const int skipped = input.upTo(static_cast<int>(std::min<std::size_t>(pair.text->size(), 200)));
    const std::string rest = pair.text->substr(static_cast<std::size_t>(skipped));
    pair.string.set(pair.string.gchar() + skipped);
    pair.text = firstLine(rest);
  } else {
    pair.string.set(nullptr);
    pair.text.reset();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  constexpr std::size_t kMost = 1 << 16;  // appending a string to itself doubles it
  fuzz::Input input(bytes, size);
  std::array<Pair, 3> pairs;
  while (!input.atEnd()) {
    const int operation = input.upTo(6);
    Pair& pair = pairs[static_cast<std::size_t>(input.upTo(2))];
    Pair& other = pairs[static_cast<std::size_t>(input.upTo(2))];
    if (pair.text && pair.text->size() > kMost) break;
    change(pair, other, operation, input);
    sameText(pair.string, pair.text);
    sameText(MString(pair.string), pair.text);
    sameAnswers(pair, input.upTo(50) - 5);
    for (const Pair& each : pairs) {
      const bool prefix = isPrefix(pair.text, each.text);
      expect((pair.string == each.string) == (prefix ? 1 : 0), "equality looks at the left length");
      expect((pair.string != each.string) == (prefix ? 0 : 1), "inequality is its negation");
      if (!each.text) continue;
      expect(pair.string.compare(each.string.gchar()) ==
                 (isPrefix(pair.text, beforeNul(*each.text)) ? 1 : 0),
             "comparing looks at the left length");
    }
  }
  return 0;
}
