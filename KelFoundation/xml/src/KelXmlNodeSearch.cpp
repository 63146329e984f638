#include "KelXmlNodeSearch.h"

#include <memory>
#include <vector>

#include "KelXmlTree.h"

DOM_NodeList ElementsBelow(KelXmlNode* top, std::string_view name) {
  auto found = std::make_shared<std::vector<KelXmlNode*>>();
  const bool all = name == "*";
  const KelXmlName* wanted = all ? nullptr : KelXmlTree::Of(top)->names().Find(name);
  if (!all && wanted == nullptr) return DOM_NodeList(std::move(found));
  for (KelXmlNode* node = top; (node = NextBelow(node, top)) != nullptr;) {
    if (node->type == DOM_Node::ELEMENT_NODE && (all || node->name == wanted)) {
      found->push_back(node);
    }
  }
  return DOM_NodeList(std::move(found));
}
