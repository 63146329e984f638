#include "KelXmlTree.h"

#include <cstring>
#include <new>

#include "DOM_Node.h"

namespace {

// The top of a tree also knows the tree itself.
struct DocumentNode : KelXmlNode {
  KelXmlTree* tree;
};

}  // namespace

KelXmlTree::KelXmlTree(std::size_t expected, std::size_t limit)
    : _names(_arena), _document(nullptr) {
  _arena.Expect(expected);
  _arena.Limit(limit);
  void* memory = _arena.Allocate(sizeof(DocumentNode));
  auto* document = new (memory) DocumentNode{};
  document->type = DOM_Node::DOCUMENT_NODE;
  document->name = _names.Intern("#document");
  document->tree = this;
  _document = document;
}

KelXmlNode* KelXmlTree::NewNode(std::uint8_t type, const KelXmlName* name, KelXmlNode* parent) {
  void* memory = _arena.Allocate(sizeof(KelXmlNode));
  return new (memory) KelXmlNode{parent, nullptr, nullptr, nullptr, name, nullptr, 0, type};
}

void KelXmlTree::SetText(KelXmlNode* node, std::string_view text) {
  if (!text.empty() && text.size() <= node->textSize) {
    std::memmove(node->text, text.data(), text.size());
    node->textSize = static_cast<std::uint32_t>(text.size());
    return;
  }
  const std::string_view copy = _arena.Copy(text);
  node->text = const_cast<char*>(copy.data());
  node->textSize = static_cast<std::uint32_t>(copy.size());
}

KelXmlTree* KelXmlTree::Of(KelXmlNode* node) {
  while (node->parent != nullptr) node = node->parent;
  return static_cast<DocumentNode*>(node)->tree;
}
