#include <array>
#include <cstddef>

#include "ZetNorvDb.h"
#include "ZetNorvTrace.h"

namespace {

using DigitTable = std::array<unsigned char, 256>;

// What a byte that is no hexadecimal digit stands for: in either half it makes the whole pair 255.
constexpr unsigned char kNoDigit = 255;

// The value of every hexadecimal digit, shifted left by `shift` bits, by its character.
constexpr DigitTable digits(int shift) {
  DigitTable table{};
  table.fill(kNoDigit);
  const auto put = [&table, shift](char first, int count, int value) {
    for (int i = 0; i < count; ++i) {
      table[static_cast<std::size_t>(first + i)] = static_cast<unsigned char>((value + i) << shift);
    }
  };
  put('0', 10, 0);
  put('A', 6, 10);
  put('a', 6, 10);
  return table;
}

constexpr DigitTable kHigh = digits(4);
constexpr DigitTable kLow = digits(0);

}  // namespace

void ZetNorvdrhxch(int n, unsigned char* hex, int& outLen, unsigned char* out) {
  const int pairs = n / 2;
  if (pairs > 0 && (hex == nullptr || out == nullptr)) {
    ZetNorvTrace.TraPutLN(
        2, hex == nullptr ? "ZetNorvdrhxch: hex == NULL" : "ZetNorvdrhxch: out == NULL");
    outLen = 0;
    return;
  }
  for (int i = 0; i < pairs; ++i) {
    out[i] = static_cast<unsigned char>(kHigh[hex[2 * i]] | kLow[hex[2 * i + 1]]);
  }
  outLen = pairs;
}
