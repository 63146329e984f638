// The document in a source, looked at before the parser sees it.
#pragma once

#include <cstddef>
#include <string_view>

class KelXmlSource {
 public:
  // Finds the document in `source`, which is borrowed: it is followed by nothing but NUL
  // characters. Throws a KelXmlFailure for what the parser would pass over: no document at all, a
  // NUL inside, half a character at the end, a unit of 4 bytes that is no character.
  explicit KelXmlSource(std::string_view source);

  // Throws a KelXmlFailure for a byte that would begin a character beyond U+10FFFF: the parser
  // leaves such a character out when it stands far enough behind the others. For a document in
  // UTF-8; does nothing for one whose markup is not stored as ASCII.
  void InsistOnUtf8() const;

  std::string_view text() const { return _text; }

  // The bytes of one unit of the encoding: 1, 2 or 4.
  std::size_t unitSize() const { return _unitSize; }

  // Blanks in the encoding of the document, where its last characters may be cut; else empty.
  std::string_view blanks() const { return _blanks; }

 private:
  std::string_view _text;
  std::string_view _blanks;
  std::size_t _unitSize;
  bool _isAscii;  // the markup
};
