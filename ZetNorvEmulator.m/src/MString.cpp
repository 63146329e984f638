#include "MString.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <limits>

#include "Guard.h"
#include "NullReference.h"
#include "OwningArray.h"

using zetnorv::copyBytes;
using zetnorv::guarded;
using zetnorv::newBytes;
using zetnorv::releaseBytes;

namespace {

constexpr int kLongest = std::numeric_limits<int>::max();

// A copy of `s` up to its first line feed or NUL, its length in `*length`; null, with a length of
// 0, for null and for a text whose length or copy is refused.
char* copyLine(const char* s, int* length) {
  *length = 0;
  const std::size_t bytes = s == nullptr ? 0 : std::strcspn(s, "\n");
  if (s == nullptr || bytes > static_cast<std::size_t>(kLongest)) return nullptr;
  char* copy = copyBytes(s, bytes);
  if (copy != nullptr) *length = static_cast<int>(bytes);
  return copy;
}

// Whether the first `n` bytes at `left`, which holds at least that many, are those at `right`.
// Stops at the first difference, so `right` is not read beyond the NUL that ends it.
bool beginsWith(const char* left, int n, const char* right) {
  for (int i = 0; i < n; ++i) {
    if (left[i] != right[i]) return false;
    if (right[i] == '\0' && i + 1 < n) return false;
  }
  return true;
}

// Whether both buffers hold the same first `n` bytes, the right one being `rightLength` long and
// NUL-terminated.
bool sameBytes(const char* left, int n, const char* right, int rightLength) {
  if (n <= rightLength) return std::memcmp(left, right, static_cast<std::size_t>(n)) == 0;
  // The right text's own terminator may still match; nothing behind it is read.
  return n == rightLength + 1 && left[n - 1] == '\0' &&
         std::memcmp(left, right, static_cast<std::size_t>(rightLength)) == 0;
}

}  // namespace

int MString::_nbStr = 0;

MString::MString(const char* s) { set(s); }

MString::MString(const char* s, int n) {
  if (s == nullptr || n < 1) return;
  p = copyBytes(s, static_cast<std::size_t>(n));
  if (p != nullptr) len = n;
}

MString::MString(const MString& o) {
  if (zetnorv::isNullReference(o) || &o == this || o.p == nullptr) return;
  p = copyBytes(o.p, static_cast<std::size_t>(o.len));
  if (p != nullptr) len = o.len;
}

MString::~MString() { releaseBytes(p); }

MString& MString::operator=(const MString& o) {
  // Assigning to itself releases the text first and finds nothing left to copy.
  releaseBytes(p);
  len = 0;
  if (zetnorv::isNullReference(o) || &o == this || o.p == nullptr) return *this;
  p = copyBytes(o.p, static_cast<std::size_t>(o.len));
  if (p != nullptr) len = o.len;
  return *this;
}

void MString::set(const char* s) {
  // Copied before the old text goes: `s` may point into it.
  int length = 0;
  char* text = copyLine(s, &length);
  releaseBytes(p);
  p = text;
  len = length;
}

void MString::operator+(const MString& o) {
  if (zetnorv::isNullReference(o) || p == nullptr || o.p == nullptr) return;
  if (o.len > kLongest - len) return;
  char* text = newBytes(static_cast<std::size_t>(len) + static_cast<std::size_t>(o.len) + 1);
  if (text == nullptr) return;
  // Written as texts, each up to its first NUL; the length counts both in full all the same.
  const std::size_t head = std::strlen(p);
  std::memcpy(text, p, head);
  std::memcpy(text + head, o.p, std::strlen(o.p));
  const int length = len + o.len;
  releaseBytes(p);
  p = text;
  len = length;
}

int MString::operator==(const MString& o) const {
  if (len == 0) return 1;
  if (zetnorv::isNullReference(o) || o.p == nullptr) return 0;
  return sameBytes(p, len, o.p, o.len) ? 1 : 0;
}

int MString::operator!=(const MString& o) const { return *this == o ? 0 : 1; }

int MString::compare(const char* s) const {
  if (s == nullptr) return 0;
  return beginsWith(p, len, s) ? 1 : 0;
}

char MString::extract(int i) const {
  if (p == nullptr || i < 0 || i >= len) return 0;
  return p[i];
}

MString MString::substring(int a, int b) const {
  if (p == nullptr || a < 0 || a >= b || a >= len) return MString();
  const int last = std::min(b, len);
  char* run = copyBytes(p + a, static_cast<std::size_t>(last - a + 1));
  MString result(run);
  releaseBytes(run);
  return result;
}

int MString::parseInt() const {
  if (p == nullptr || len < 1) return -1;
  return std::atoi(p);
}

int MString::parseSpeInt() const {
  if (p == nullptr || len < 1) return -1;
  std::uint32_t value = 0;
  for (int i = 0; i < 4 && i < len; ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(p[i])) << (8 * i);
  }
  return static_cast<std::int32_t>(value);
}

double MString::parseDouble() const {
  if (p == nullptr || len < 1) return -1.0;
  return std::atof(p);
}

void MString::cleanParam() {
  tokStart = 0;
  tokEnd = 0;
  sep = 0;
  sepClose = 0;
}

void MString::split(char c) {
  tokStart = -1;
  tokEnd = -1;
  sep = c;
}

MString MString::splitNext() {
  if (p == nullptr || p[0] == '\0') return MString("NULL");
  int i = tokEnd + 1;
  tokStart = i;
  while (i < len && p[i] != '\0' && p[i] != sep) ++i;
  tokEnd = i;
  if (i <= tokStart) return MString("NULL");
  return MString(p + tokStart, i - tokStart);
}

void MString::spSplit(char open, char close) {
  tokStart = -1;
  tokEnd = -1;
  sep = open;
  sepClose = close;
}

MString MString::spSplitNext() {
  if (p == nullptr || p[0] == '\0') return MString();
  int i = tokEnd + 1;
  while (i < len && p[i] != sep) ++i;
  tokStart = i + 1;
  // The closing character is looked for from the opening one on: when they are the same, the token
  // is empty.
  while (i < len && p[i] != sepClose) ++i;
  tokEnd = i;
  if (i <= tokStart) return MString();
  return MString(p + tokStart, i - tokStart);
}

// A host may have made its standard output throw.
void MString::print() const {
  guarded("MString::print", [&] {
    std::cout << (p == nullptr || len == 0 ? "error: NULL " : p);
    return S_OK;
  });
}

void MString::println() const {
  print();
  guarded("MString::println", [] {
    std::cout << std::endl;
    return S_OK;
  });
}
