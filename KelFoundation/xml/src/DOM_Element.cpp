#include "DOM_Element.h"

#include <string_view>

#include "KelXmlNodeSearch.h"
#include "KelXmlTree.h"

namespace {

KelXmlNode* FindAttribute(const KelXmlNode* element, std::string_view name) {
  KelXmlNode* attribute = element->firstAttribute;
  while (attribute != nullptr && attribute->name->view() != name) attribute = attribute->next;
  return attribute;
}

void AddAttribute(KelXmlNode* element, std::string_view name, std::string_view value) {
  KelXmlTree* tree = KelXmlTree::Of(element);
  KelXmlNode* added = tree->NewNode(DOM_Node::ATTRIBUTE_NODE, tree->names().Intern(name), element);
  tree->SetText(added, value);
  KelXmlNode** link = &element->firstAttribute;
  while (*link != nullptr) link = &(*link)->next;
  *link = added;
}

}  // namespace

DOMString DOM_Element::getAttribute(const DOMString& name) const {
  return getAttributeNode(name).getValue();
}

DOM_Attr DOM_Element::getAttributeNode(const DOMString& name) const {
  if (getNodeType() != ELEMENT_NODE) return {};
  return DOM_Attr(FindAttribute(_node, name.utf8()));
}

void DOM_Element::setAttribute(const DOMString& name, const DOMString& value) {
  if (getNodeType() != ELEMENT_NODE || name.length() == 0) return;
  DOM_Attr attribute = getAttributeNode(name);
  if (attribute.isNull()) {
    AddAttribute(_node, name.utf8(), value.utf8());
    return;
  }
  attribute.setValue(value);
}

DOM_NodeList DOM_Element::getElementsByTagName(const DOMString& name) const {
  return getNodeType() == ELEMENT_NODE ? ElementsBelow(_node, name.utf8()) : DOM_NodeList();
}
