// An attribute of an element.
#pragma once

#include "DOM_Node.h"
#include "KelExport.h"

class KEL_XML_EXPORT DOM_Attr : public DOM_Node {
 public:
  using DOM_Node::DOM_Node;

  DOMString getName() const { return getNodeName(); }
  DOMString getValue() const { return getNodeValue(); }
  // Replaces the value; a null text counts as an empty one.
  void setValue(const DOMString& value);
};
