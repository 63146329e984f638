#include "KelUnicodeString.h"

#include <charconv>
#include <cstring>
#include <string_view>

#include "KelLib.h"
#include "KelUtf8.h"

namespace {

constexpr const char* kBlanks = " \t\n\r\v\f";

// Drops up to `count` characters from the front of `text`.
void DropCharacters(int count, std::string_view& text) {
  for (; count > 0 && !text.empty(); --count) text.remove_prefix(kel::CharacterBytes(text));
}

// Reads what "%d" reads. Whether there was a number that an int holds.
bool ReadInteger(std::string_view text, int* value) {
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return false;
  text.remove_prefix(start);
  // from_chars knows the minus sign only.
  if (text.front() == '+') {
    text.remove_prefix(1);
    if (text.starts_with('-')) return false;
  }
  return std::from_chars(text.data(), text.data() + text.size(), *value).ec == std::errc();
}

}  // namespace

KelUnicodeString::KelUnicodeString(const char* utf8) {
  if (utf8 == nullptr) return;
  _bytes = utf8;
  _null = false;
}

KelUnicodeString::KelUnicodeString(const wchar_t* wide) {
  if (wide == nullptr) return;
  _bytes = kel::Utf8FromWide(wide);
  _null = false;
}

const char* KelUnicodeString::ConvertToChar() const { return _bytes.c_str(); }

const wchar_t* KelUnicodeString::ConvertToWide() const {
  if (_wide.empty() && !_bytes.empty()) _wide = kel::WideFromUtf8(_bytes);
  return _wide.c_str();
}

KelUnicodeString KelUnicodeString::SubString(int start, int length) const {
  KelUnicodeString part("");
  if (start < 0 || length < 0) return part;
  std::string_view text = _bytes;
  DropCharacters(start, text);
  std::string_view rest = text;
  DropCharacters(length, rest);
  part._bytes = text.substr(0, text.size() - rest.size());
  return part;
}

KelUnicodeString KelUnicodeString::Strip(KelStripMode mode) const {
  KelUnicodeString stripped(*this);
  std::string& text = stripped._bytes;
  stripped._wide.clear();
  if (mode != KelStripLeading) text.erase(text.find_last_not_of(kBlanks) + 1);
  if (mode != KelStripTrailing) text.erase(0, text.find_first_not_of(kBlanks));
  return stripped;
}

long KelUnicodeString::ConvertToNum(int* value, const char* format) const {
  if (value == nullptr) return E_FAIL;
  *value = 0;
  if (format == nullptr || std::strcmp(format, "%d") != 0) return E_FAIL;
  return ReadInteger(_bytes, value) ? S_OK : E_FAIL;
}

int KelUnicodeString::GetLength() const {
  int length = 0;
  for (std::string_view rest = _bytes; !rest.empty(); ++length) {
    rest.remove_prefix(kel::CharacterBytes(rest));
  }
  return length;
}
