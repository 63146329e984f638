// A parsed document as the handles see it: light nodes that are linked in document order.
#pragma once

#include <cstdint>
#include <string_view>

#include "KelXmlArena.h"
#include "KelXmlNames.h"

class KelXmlTree;

// One node. Its text is UTF-8 without a terminating NUL.
struct KelXmlNode {
  // The enclosing node; for an attribute, its element.
  KelXmlNode* parent;
  // The next sibling; for an attribute, the next one of the element.
  KelXmlNode* next;
  KelXmlNode* firstChild;
  KelXmlNode* firstAttribute;
  const KelXmlName* name;
  // This node's alone.
  char* text;
  std::uint32_t textSize;
  // A DOM_Node::NodeType.
  std::uint8_t type;

  std::string_view value() const { return {text, textSize}; }
};

// What stood above the root element beside comments and processing instructions.
struct KelXmlProlog {
  bool hasDeclaration = false;
  bool hasEncoding = false;
  std::string_view version;
  // Empty when the declaration does not say.
  std::string_view standalone;

  bool hasDocumentType = false;
  std::string_view documentTypeName;
  // Without data when there is none.
  std::string_view publicId;
  std::string_view systemId;
  // The child of the document that the document type follows; null when it comes first.
  const KelXmlNode* documentTypeAfter = nullptr;
};

class KelXmlTree {
 public:
  // `expected` is a guess at the tree's bytes; `limit` bounds them until LiftLimit.
  KelXmlTree(std::size_t expected, std::size_t limit);
  KelXmlTree(const KelXmlTree&) = delete;
  KelXmlTree& operator=(const KelXmlTree&) = delete;

  KelXmlNode* document() { return _document; }
  KelXmlArena& arena() { return _arena; }
  KelXmlNames& names() { return _names; }
  KelXmlProlog& prolog() { return _prolog; }

  // A node without text and relations but `parent`.
  KelXmlNode* NewNode(std::uint8_t type, const KelXmlName* name, KelXmlNode* parent);
  // Replaces the text of `node` by a copy of `text`, in its place when it fits there.
  void SetText(KelXmlNode* node, std::string_view text);

  // For a finished tree, whose user alone decides how it grows.
  void LiftLimit() { _arena.Unlimit(); }

  // Whether the document is XML 1.1, where more characters have to be written as references.
  bool IsVersion11() const { return _prolog.version == "1.1"; }

  // The tree that `node` belongs to.
  static KelXmlTree* Of(KelXmlNode* node);

 private:
  KelXmlArena _arena;
  KelXmlNames _names;
  KelXmlProlog _prolog;
  KelXmlNode* _document;
};

// The node behind `node` in document order, without leaving what is below `top`; null at the end.
inline KelXmlNode* NextBelow(KelXmlNode* node, const KelXmlNode* top) {
  if (node->firstChild != nullptr) return node->firstChild;
  while (node != top && node->next == nullptr) node = node->parent;
  return node == top ? nullptr : node->next;
}
