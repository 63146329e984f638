// The tree of a parsed document as a second reader sees it: by first child and next sibling alone,
// past the searches that the library uses.
#pragma once

#include <set>
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

// Whatever may be an attribute's name: what stands before an equals sign.
inline std::set<std::string> attributeNames(const std::string& text) {
  const std::string blanks = " \t\r\n";
  std::set<std::string> names;
  for (std::size_t at = text.find('='); at != std::string::npos; at = text.find('=', at + 1)) {
    std::size_t end = at;
    while (end > 0 && blanks.find(text[end - 1]) != std::string::npos) --end;
    std::size_t begin = end;
    while (begin > 0 && (blanks + "<>='\"\\/").find(text[begin - 1]) == std::string::npos) --begin;
    if (begin < end && names.size() < 20) names.insert(text.substr(begin, end - begin));
  }
  return names;
}

// The elements of both documents have the same values of the attributes `names`.
inline void sameAttributes(const DOM_Document& a, const DOM_Document& b,
                           const std::set<std::string>& names) {
  const std::vector<DOM_Element> inA = elementsBelow(a);
  const std::vector<DOM_Element> inB = elementsBelow(b);
  expect(inA.size() == inB.size(), "the elements are as many");
  for (std::size_t i = 0; i < inA.size() && i < 200; ++i) {
    for (const std::string& name : names) {
      const DOMString valueA = attribute(inA[i], name);
      const DOMString valueB = attribute(inB[i], name);
      expect(valueA.isNull() == valueB.isNull(), "an attribute is there, or not, in both");
      expectEqual(valueB.utf8(), valueA.utf8(), "an attribute's value is kept");
    }
  }
}

}  // namespace fuzz
