// Parses XML text into a document.
#pragma once

#include "DOM_Document.h"
#include "KelExport.h"
#include "KelInputSource.h"

class KEL_XML_EXPORT KelXMLParseServices {
 public:
  // Parses the whole, well-formed document in `source`. Nothing is validated, namespaces are off,
  // text and attribute values are kept as the XML rules give them, white space between elements
  // included.
  //
  // The text may be followed by NUL bytes (a client that counts its terminator). External entities
  // and external DTDs are never loaded; a document with more than 1,000 entity expansions or a
  // nesting deeper than 1,000 elements is refused.
  //
  // Returns S_OK with `document` set; anything else is E_FAIL, `document` null, and one line on the
  // trace "KelXML" at level 2 with the source's name, the line, the column and the reason.
  static long XMLParse(const KelInputSource& source, DOM_Document& document);
};
