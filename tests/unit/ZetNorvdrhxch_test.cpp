// The converter of hexadecimal text to bytes.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Converts the first `n` characters; the byte behind the result must stay as it was.
Bytes convert(const std::string& text, int n, int& length) {
  Bytes hex(text.begin(), text.end());
  Bytes out(hex.size() + 1, 0x5A);
  ZetNorvdrhxch(n, hex.data(), length, out.data());
  const std::size_t size = length < 0 ? 0 : static_cast<std::size_t>(length);
  EXPECT_EQ(0x5A, out[size]);
  out.resize(size);
  return out;
}

TEST(ZetNorvdrhxchTest, ConvertsPairsOfHexadecimalCharacters) {
  struct Case {
    const char* name;
    std::string text;
    int n;
    Bytes expected;
  };
  const Case cases[] = {
      {"both letter cases", "00A1ff0G", 8, {0x00, 0xA1, 0xFF, 0xFF}},
      {"an odd last character", "ABCDE", 5, {0xAB, 0xCD}},
      {"mixed case in a pair", "aBcD", 4, {0xAB, 0xCD}},
      {"fewer characters than there are", "0123456789", 4, {0x01, 0x23}},
      {"a bad character in either half", "G00G", 4, {0xFF, 0xFF}},
      {"a NUL in between",
       std::string("1\0"
                   "22",
                   4),
       4,
       {0xFF, 0x22}},
      {"one character", "A", 1, {}},
      {"no character", "", 0, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    int length = 99;
    EXPECT_EQ(c.expected, convert(c.text, c.n, length));
    EXPECT_EQ(static_cast<int>(c.expected.size()), length);
  }
}

TEST(ZetNorvdrhxchTest, KnowsEveryCharacterInBothHalves) {
  const std::string upper = "0123456789ABCDEF";
  const std::string lower = "0123456789abcdef";
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const char character = static_cast<char>(byte);
    std::size_t digit = upper.find(character);
    if (digit == std::string::npos) digit = lower.find(character);
    const bool valid = digit != std::string::npos;
    int length = 0;
    const Bytes high = convert(std::string{character, '0'}, 2, length);
    const Bytes low = convert(std::string{'0', character}, 2, length);
    EXPECT_EQ(Bytes{static_cast<unsigned char>(valid ? digit * 16 : 255)}, high);
    EXPECT_EQ(Bytes{static_cast<unsigned char>(valid ? digit : 255)}, low);
  }
}

TEST(ZetNorvdrhxchTest, ConvertsNothingForANegativeCount) {
  struct Case {
    int n;
    int length;
  };
  for (const Case& c : {Case{-1, 0}, Case{-2, -1}, Case{-5, -2}, Case{INT_MIN, INT_MIN / 2}}) {
    SCOPED_TRACE(c.n);
    int length = 8;
    EXPECT_EQ(Bytes{}, convert("ABCD", c.n, length));
    EXPECT_EQ(c.length, length);
  }
}

TEST(ZetNorvdrhxchTest, ConvertsInPlace) {
  unsigned char text[] = {'0', '1', '2', '3'};
  int length = 0;
  ZetNorvdrhxch(4, text, length, text);
  EXPECT_EQ(2, length);
  EXPECT_EQ(0x01, text[0]);
  EXPECT_EQ(0x23, text[1]);
}

TEST(ZetNorvdrhxchTest, ReportsNothingForBadCharacters) {
  TraceRecorder trace;
  int length = 0;
  EXPECT_EQ((Bytes{0xFF}), convert("zz", 2, length));
  EXPECT_TRUE(trace.lines().empty());
}

TEST(ZetNorvdrhxchTest, TracesNullBuffersAndConvertsNothing) {
  unsigned char buffer[] = {'A', 'B'};
  TraceRecorder trace;
  int length = 8;
  ZetNorvdrhxch(2, nullptr, length, buffer);
  EXPECT_EQ(0, length);
  length = 8;
  ZetNorvdrhxch(2, buffer, length, nullptr);
  EXPECT_EQ(0, length);
  EXPECT_EQ('A', buffer[0]);
  EXPECT_EQ((std::vector<std::string>{"ZetNorvdrhxch: hex == NULL", "ZetNorvdrhxch: out == NULL"}),
            trace.texts());
}

TEST(ZetNorvdrhxchTest, NeedsNoBuffersForNoPair) {
  TraceRecorder trace;
  int length = 8;
  ZetNorvdrhxch(1, nullptr, length, nullptr);
  EXPECT_EQ(0, length);
  EXPECT_TRUE(trace.lines().empty());
}

}  // namespace
