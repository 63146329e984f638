#include "DOM_Document.h"

#include "KelXmlNodeSearch.h"
#include "KelXmlTree.h"

DOM_Document::DOM_Document(std::shared_ptr<KelXmlTree> tree)
    : DOM_Node(tree ? tree->document() : nullptr), _tree(std::move(tree)) {}

DOM_Element DOM_Document::getDocumentElement() const {
  if (isNull()) return {};
  KelXmlNode* child = _node->firstChild;
  while (child != nullptr && child->type != ELEMENT_NODE) child = child->next;
  return DOM_Element(child);
}

DOM_NodeList DOM_Document::getElementsByTagName(const DOMString& name) const {
  return isNull() ? DOM_NodeList() : ElementsBelow(_node, name.utf8());
}
