// The nodes that a search or a listing found, in document order: a list made once, not a live view.
#pragma once

#include <memory>
#include <vector>

#include "DOM_Node.h"
#include "KelExport.h"

class KEL_XML_EXPORT DOM_NodeList {
 public:
  DOM_NodeList() = default;
  explicit DOM_NodeList(std::shared_ptr<const std::vector<KelXmlNode*>> nodes)
      : _nodes(std::move(nodes)) {}

  // Whether there is no list at all; an empty list is not null.
  bool isNull() const { return _nodes == nullptr; }
  unsigned int getLength() const { return _nodes ? static_cast<unsigned int>(_nodes->size()) : 0; }
  // The node at the 0-based `index`; a null handle beyond the end.
  DOM_Node item(unsigned int index) const {
    return index < getLength() ? DOM_Node((*_nodes)[index]) : DOM_Node();
  }

 private:
  std::shared_ptr<const std::vector<KelXmlNode*>> _nodes;
};
