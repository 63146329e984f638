// An element of a document.
#pragma once

#include "DOM_Attr.h"
#include "DOM_Node.h"
#include "DOM_NodeList.h"
#include "KelExport.h"

class KEL_XML_EXPORT DOM_Element : public DOM_Node {
 public:
  using DOM_Node::DOM_Node;

  DOMString getTagName() const { return getNodeName(); }

  // The value of the attribute `name`: a null text when the element has no such attribute, an empty
  // one when its value is empty.
  DOMString getAttribute(const DOMString& name) const;
  // The attribute `name` itself; a null handle when there is none.
  DOM_Attr getAttributeNode(const DOMString& name) const;
  // Sets the attribute `name`, which is added behind the others when the element has none.
  void setAttribute(const DOMString& name, const DOMString& value);

  // The elements named `name` below this one, at any depth, in document order; "*" names all.
  // Found in one walk.
  DOM_NodeList getElementsByTagName(const DOMString& name) const;
};
