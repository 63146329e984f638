// A document as the scanner reads it: the text, and a few blanks behind it.
//
// The scanner does not notice a character that is cut at the end of its input. Blanks make such a
// character one that is broken, which it refuses in every encoding.
#pragma once

#include <string_view>
#include <xercesc/sax/InputSource.hpp>

#include "KelXmlSource.h"

class KelXmlInput : public xercesc::InputSource {
 public:
  // `document` is borrowed; both must outlive this object and its streams.
  KelXmlInput(const KelXmlSource& document, xercesc::MemoryManager& memory);

  // The caller owns the stream and deletes it.
  xercesc::BinInputStream* makeStream() const override;

 private:
  const KelXmlSource& _document;
};
