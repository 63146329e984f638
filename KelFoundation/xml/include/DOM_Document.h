// A parsed document. The document lives as long as one of its DOM_Document handles does.
#pragma once

#include <memory>

#include "DOM_Element.h"
#include "DOM_Node.h"
#include "DOM_NodeList.h"
#include "KelExport.h"

class KelXmlTree;

class KEL_XML_EXPORT DOM_Document : public DOM_Node {
 public:
  DOM_Document() = default;
  explicit DOM_Document(std::shared_ptr<KelXmlTree> tree);

  DOM_Element getDocumentElement() const;

  // The elements of the document named `name`, the root included, in document order; "*" names all.
  DOM_NodeList getElementsByTagName(const DOMString& name) const;

 private:
  std::shared_ptr<KelXmlTree> _tree;
};
