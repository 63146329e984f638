#include "DOM_Attr.h"

#include "KelXmlTree.h"

void DOM_Attr::setValue(const DOMString& value) {
  if (getNodeType() != ATTRIBUTE_NODE) return;
  KelXmlTree::Of(_node)->SetText(_node, value.utf8());
}
