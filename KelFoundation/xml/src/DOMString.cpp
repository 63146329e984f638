#include "DOMString.h"

#include <cstring>

DOMString::DOMString(const char* utf8) : _null(utf8 == nullptr) {
  if (utf8 != nullptr) _text = utf8;
}

DOMString::DOMString(std::string_view utf8) : _text(utf8), _null(false) {}

char* DOMString::transcode() const {
  if (_null) return nullptr;
  char* copy = new char[_text.size() + 1];
  std::memcpy(copy, _text.c_str(), _text.size() + 1);
  return copy;
}

int DOMString::compareString(const DOMString& other) const { return _text.compare(other._text); }
