// Turns a document back into text.
#pragma once

#include <string>

#include "DOM_Node.h"
#include "KelExport.h"

class KEL_XML_EXPORT KelXMLParser {
 public:
  // Writes `node` and all below it as UTF-8: attributes in the order of the document, no text
  // changed, no white space added, an XML declaration only where the document had one. What XML
  // needs escaped is escaped.
  //
  // Returns S_OK with `text` replaced, or E_FAIL with `text` untouched (a null node).
  static long WriteXML(const DOM_Node& node, std::string& text);
};
