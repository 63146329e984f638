// A byte string that owns its buffer and carries its own tokenizer.
//
// Its oddities are relied on all over the library and by hosts: equality looks at the left
// operand's length only, appending to a null string does nothing, an empty token reads "NULL", and
// assigning a string to itself empties it. Lengths and indices are in bytes. A refused allocation
// gives a null string; nothing is ever thrown. Not synchronised.
#pragma once

#include "ZetNorvExport.h"

class ZETNORV_EXPORT MString {
 public:
  // A null string.
  MString() = default;

  // The bytes of `s` up to its first '\n' or NUL, whichever comes first; null gives a null string.
  MString(const char* s);

  // Exactly `n` bytes of `s`, line feeds and NULs included; a null string when `s` is null or `n`
  // is below 1.
  MString(const char* s, int n);

  // A copy of the text. The tokenizer starts afresh.
  MString(const MString& o);
  ~MString();

  // Copies the text and leaves this string's tokenizer where it is. Assigning a string to itself
  // empties it: callers that walk a row "onto itself" rely on that.
  MString& operator=(const MString& o);

  // Replaces the text as MString(const char*) takes it; null makes the string null. `s` may point
  // into this string.
  void set(const char* s);

  // Appends `o` in place. Does nothing when either is a null string; an empty string that is not
  // null is appended to. What is written ends at the first NUL of each operand, while the length
  // counts both in full. Nothing changes either when the room is refused, or when an int cannot
  // hold the length.
  void operator+(const MString& o);

  // 1 when the first glength() bytes of this string are those of `o`, else 0. One-sided on purpose:
  // "ab" == "abcd" holds, "abcd" == "ab" does not.
  int operator==(const MString& o) const;
  int operator!=(const MString& o) const;
  // The same test against a NUL-terminated text; 0 for null.
  int compare(const char* s) const;

  // 1 when there is no buffer at all; an empty string has one.
  int isNull() const { return p == nullptr; }
  int glength() const { return len; }
  // The NUL-terminated text, or null. Borrowed: valid until this string changes or goes.
  const char* gchar() const { return p; }
  char* gchar() { return p; }

  // The byte at the 0-based index `i`; 0 outside the text.
  char extract(int i) const;

  // The bytes from index `a` to index `b`, both included, cut at the first '\n' or NUL among them.
  // A `b` beyond the end counts as the end. A null string unless 0 <= a < b and a < glength(); so a
  // single character inside the text cannot be taken.
  MString substring(int a, int b) const;

  // The decimal number the text starts with, behind blanks; 0 when there is none, -1 for a null or
  // empty string.
  int parseInt() const;
  // The first four bytes as a little-endian 32-bit integer; -1 for a null or empty string. A string
  // of fewer than four bytes is read as if NULs followed.
  int parseSpeInt() const;
  // The number the text starts with, as atof reads it; -1.0 for a null or empty string.
  double parseDouble() const;

  // Resets the tokenizer.
  void cleanParam();

  // Starts cutting the text at every `c`.
  void split(char c);
  // The next token. "NULL" for an empty token and, for ever, after the last one; also for a null or
  // empty string.
  MString splitNext();

  // Starts taking the texts between `open` and the next `close`.
  void spSplit(char open, char close);
  // The text in the next brackets; a null string when it is empty or there is none. Without a
  // closing character it is the rest of the text.
  MString spSplitNext();

  // Writes the text to standard output, or "error: NULL " for a null or empty string.
  void print() const;
  // The same and a line end.
  void println() const;

  // The layout hosts know.
  char* p = nullptr;  // len + 1 bytes, the last one NUL; or null
  int len = 0;
  int tokStart = 0;   // where the current token begins
  int tokEnd = 0;     // the separator that ended it
  char sep = 0;       // the separator, or the opening character
  char sepClose = 0;  // the closing character

 private:
  static int _nbStr;
};
