// Text of the client: Unicode characters, handed in and out as UTF-8 and, for file names, as wide
// characters. Not synchronised: one thread at a time uses one object.
#pragma once

#include <string>

#include "KelExport.h"

// Which blanks KelUnicodeString::Strip removes.
enum KelStripMode { KelStripLeading = 0, KelStripTrailing = 1, KelStripBoth = 2 };

class KEL_FOUNDATION_EXPORT KelUnicodeString {
 public:
  // A null text: no characters, and IsNull() holds.
  KelUnicodeString() = default;

  // The characters of `utf8`, a NUL-terminated text; null gives a null text.
  //
  // Bytes that are not UTF-8 are kept: each stands for one character of its own (U+DC80 to U+DCFF
  // in the wide form), so a file name made of any bytes comes back unchanged.
  KelUnicodeString(const char* utf8);

  // The characters of `wide`, a NUL-terminated wide text; null gives a null text.
  explicit KelUnicodeString(const wchar_t* wide);

  // The text as UTF-8, with the bytes that were no UTF-8 as they were given. Never null.
  // Borrowed: valid until this object changes or goes.
  const char* ConvertToChar() const;

  // The text in wide characters. Never null. Borrowed: valid until this object changes or goes.
  const wchar_t* ConvertToWide() const;

  // `length` characters from the 0-based index `start`, as far as the text has them; a negative
  // start or length, or a start behind the end, gives an empty text.
  KelUnicodeString SubString(int start, int length) const;

  // The text without the blanks (space, tab, line feed, carriage return, vertical tab, form feed)
  // at the ends that `mode` names.
  KelUnicodeString Strip(KelStripMode mode) const;

  // Reads a number as `format` says ("%d": an optional sign and decimal digits behind optional
  // blanks). `value` holds 0 afterwards when the text is no number, or one beyond the range of int.
  //
  // Returns S_OK, or E_FAIL when there was no number or `value` or `format` is null or another
  // format than "%d".
  long ConvertToNum(int* value, const char* format) const;

  // Whether no text was ever given. An empty text ("") is not null.
  bool IsNull() const { return _null; }

  // Number of characters.
  int GetLength() const;

  // Whether both texts have the same characters; a null text equals an empty one.
  bool operator==(const KelUnicodeString& other) const { return _bytes == other._bytes; }

 private:
  std::string _bytes;
  bool _null = true;
  mutable std::wstring _wide;  // built from _bytes when it is asked for
};
