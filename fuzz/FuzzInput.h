// Reads what a target needs from the fuzzer's bytes, front to back. Past the end everything is zero
// or empty, so every input is one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size) : _bytes(bytes), _left(size) {}

  bool atEnd() const { return _left == 0; }

  std::uint8_t byte() {
    if (_left == 0) return 0;
    --_left;
    return *_bytes++;
  }

  // A number from 0 to `most`, which is below 256.
  int upTo(int most) { return byte() % (most + 1); }

  // Any number of 32 bits.
  int number() {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | byte();
    return static_cast<int>(bits);
  }

  // The bytes before the next `separator`, which is passed over, or all that are left.
  std::string textTo(char separator) {
    const auto* const begin = reinterpret_cast<const char*>(_bytes);
    const auto* const end = std::find(begin, begin + _left, separator);
    std::string text(begin, end);
    const std::size_t taken = std::min(_left, text.size() + 1);
    _bytes += taken;
    _left -= taken;
    return text;
  }

  std::string rest() {
    std::string text(reinterpret_cast<const char*>(_bytes), _left);
    _bytes += _left;
    _left = 0;
    return text;
  }

 private:
  const std::uint8_t* _bytes;
  std::size_t _left;
};

}  // namespace fuzz
