// The tree of a parsed document as a second reader sees it: by first child and next sibling alone,
// past the searches that the library uses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "DOM_Document.h"
#include "Expect.h"
#include "KelDOMServices.h"
#include "KelInputSource.h"
#include "KelLib.h"
#include "KelXMLParseServices.h"
#include "TraceRecorder.h"

namespace fuzz {

// The document that `text` is; a null one when it is refused.
inline DOM_Document parse(const std::string& text) {
  const TraceRecorder quiet;
  const KelInputSource source(text, "fuzz");
  DOM_Document document;
  const long result = KelXMLParseServices::XMLParse(source, document);
  expect(document.isNull() == (result != S_OK), "there is a document when it was accepted");
  return document;
}

// The elements below `node`, at any depth, in document order.
inline std::vector<DOM_Element> elementsBelow(const DOM_Node& node) {
  std::vector<DOM_Element> elements;
  for (DOM_Node child = node.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
    const DOM_Element element = KelDOMServices::NodeToElement(child);
    if (element.isNull()) continue;
    elements.push_back(element);
    const std::vector<DOM_Element> inner = elementsBelow(element);
    elements.insert(elements.end(), inner.begin(), inner.end());
  }
  return elements;
}

// Those of them that are called `name`.
inline std::vector<DOM_Element> elementsNamed(const DOM_Node& node, const std::string& name) {
  std::vector<DOM_Element> named;
  for (const DOM_Element& element : elementsBelow(node)) {
    if (element.getTagName().utf8() == name) named.push_back(element);
  }
  return named;
}

inline DOMString attribute(const DOM_Element& element, const std::string& name) {
  return element.getAttribute(DOMString(std::string_view(name)));
}

// What a string keeps of a text: the part before its first line feed or NUL.
inline std::string firstLine(const std::string& text) {
  return text.substr(0, text.find_first_of(std::string("\n\0", 2)));
}

}  // namespace fuzz
