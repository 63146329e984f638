// A node of a parsed document, as a value handle: copying it copies the reference, not the node.
//
// Every handle keeps no document alive: it is valid while a DOM_Document of its document is. The
// operations on a null handle give null handles, null texts and 0; nothing is thrown.
#pragma once

#include "DOMString.h"
#include "KelExport.h"

class DOM_NodeList;
struct KelXmlNode;

class KEL_XML_EXPORT DOM_Node {
 public:
  // The node types of DOM Level 1 that occur here.
  enum NodeType {
    ELEMENT_NODE = 1,
    ATTRIBUTE_NODE = 2,
    TEXT_NODE = 3,
    CDATA_SECTION_NODE = 4,
    PROCESSING_INSTRUCTION_NODE = 7,
    COMMENT_NODE = 8,
    DOCUMENT_NODE = 9,
  };

  DOM_Node() = default;
  explicit DOM_Node(KelXmlNode* node) : _node(node) {}

  bool isNull() const { return _node == nullptr; }

  // One of NodeType; 0 for a null handle.
  short getNodeType() const;
  // The tag name, the attribute's name, the target of a processing instruction, or "#text",
  // "#cdata-section", "#comment", "#document".
  DOMString getNodeName() const;
  // The text of an attribute, text, CDATA section, comment or processing instruction; null for
  // elements and documents.
  DOMString getNodeValue() const;

  DOM_Node getParentNode() const;
  DOM_Node getFirstChild() const;
  DOM_Node getNextSibling() const;
  // The children in document order, as they are now.
  DOM_NodeList getChildNodes() const;

  // The node behind the handle: for the services of this library.
  KelXmlNode* node() const { return _node; }

 protected:
  KelXmlNode* _node = nullptr;
};
