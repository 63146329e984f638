// A text of a document: characters in UTF-8, or null when there is none.
#pragma once

#include <string>
#include <string_view>

#include "KelExport.h"

class KEL_XML_EXPORT DOMString {
 public:
  // A null text.
  DOMString() = default;
  // The NUL-terminated `utf8`; null gives a null text.
  DOMString(const char* utf8);
  DOMString(std::string_view utf8);

  // Whether there is no text at all, as the value of an absent attribute. An empty text is not
  // null.
  bool isNull() const { return _null; }

  // Length in bytes of UTF-8.
  unsigned int length() const { return static_cast<unsigned int>(_text.size()); }

  // A new NUL-terminated UTF-8 copy; null for a null text. The caller owns it and deletes it with
  // delete[].
  char* transcode() const;

  // The text itself; empty for a null one. Borrowed: valid until this object changes or goes.
  const std::string& utf8() const { return _text; }

  // Returns 0 when both hold the same characters (a null text counts as an empty one), else a
  // number below or above 0 as this text sorts before or behind `other`.
  int compareString(const DOMString& other) const;

 private:
  std::string _text;
  bool _null = true;
};
