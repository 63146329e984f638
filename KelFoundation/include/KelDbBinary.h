// An object identifier of the product-data server: a short run of bytes (8 for a coid or a compid).
#pragma once

#include <string>

#include "KelExport.h"
#include "KelUnicodeString.h"

class KEL_FOUNDATION_EXPORT KelDbBinary {
 public:
  // No bytes.
  KelDbBinary() = default;

  // A copy of `size` bytes; null `bytes` or a size below 1 gives none.
  KelDbBinary(const unsigned char* bytes, int size);

  // The bytes as upper-case hexadecimal text, two characters a byte; empty when there are none.
  KelUnicodeString GetHexaValue() const;

  // Number of bytes.
  int GetSize() const { return static_cast<int>(_bytes.size()); }

  bool operator==(const KelDbBinary& other) const { return _bytes == other._bytes; }

 private:
  std::string _bytes;
};
