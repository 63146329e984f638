// Conversions between nodes, texts and numbers.
#pragma once

#include "DOMString.h"
#include "DOM_Element.h"
#include "DOM_Node.h"
#include "KelExport.h"

class KEL_XML_EXPORT KelDOMServices {
 public:
  // `node` as an element; a null handle when it is none.
  static DOM_Element NodeToElement(const DOM_Node& node);

  // The decimal number that is all of `text` (a sign and blanks around it are allowed); 0 for a
  // null or empty text, for any other text, and for a number that an int does not hold.
  static int DOM2Int(const DOMString& text);

  // `number` in decimal, without leading zeros.
  static DOMString Int2DOM(int number);
};
