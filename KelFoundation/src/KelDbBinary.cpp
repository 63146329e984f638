#include "KelDbBinary.h"

#include <cstddef>

KelDbBinary::KelDbBinary(const unsigned char* bytes, int size) {
  if (bytes == nullptr || size < 1) return;
  _bytes.assign(bytes, bytes + size);
}

KelUnicodeString KelDbBinary::GetHexaValue() const {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  text.reserve(2 * _bytes.size());
  for (const char c : _bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return KelUnicodeString(text.c_str());
}
