#include "DOM_Node.h"

#include <memory>
#include <vector>

#include "DOM_NodeList.h"
#include "KelXmlTree.h"

namespace {

bool IsAttribute(const KelXmlNode* node) { return node->type == DOM_Node::ATTRIBUTE_NODE; }

}  // namespace

short DOM_Node::getNodeType() const { return isNull() ? short{0} : short{_node->type}; }

DOMString DOM_Node::getNodeName() const {
  return isNull() ? DOMString() : DOMString(_node->name->view());
}

DOMString DOM_Node::getNodeValue() const {
  if (isNull() || _node->type == ELEMENT_NODE || _node->type == DOCUMENT_NODE) return {};
  return DOMString(_node->value());
}

DOM_Node DOM_Node::getParentNode() const {
  // An attribute is no child of its element.
  return isNull() || IsAttribute(_node) ? DOM_Node() : DOM_Node(_node->parent);
}

DOM_Node DOM_Node::getFirstChild() const {
  return isNull() ? DOM_Node() : DOM_Node(_node->firstChild);
}

DOM_Node DOM_Node::getNextSibling() const {
  return isNull() || IsAttribute(_node) ? DOM_Node() : DOM_Node(_node->next);
}

DOM_NodeList DOM_Node::getChildNodes() const {
  if (isNull()) return {};
  auto nodes = std::make_shared<std::vector<KelXmlNode*>>();
  for (KelXmlNode* child = _node->firstChild; child != nullptr; child = child->next) {
    nodes->push_back(child);
  }
  return DOM_NodeList(std::move(nodes));
}
