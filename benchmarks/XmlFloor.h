// The plainest way to read XML: the parser's own document, made by one kept parser and walked once.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

namespace bench {

class XmlFloor {
 public:
  XmlFloor();
  ~XmlFloor();
  XmlFloor(const XmlFloor&) = delete;
  XmlFloor& operator=(const XmlFloor&) = delete;

  // Parses `xml` and looks at every node and attribute once. Returns what it has seen, so that the
  // work cannot be left out.
  std::size_t parseAndWalk(std::string_view xml);

  // Parses `xml` and lets the parser's library write it again. Returns the length of the text.
  std::size_t parseAndSerialise(std::string_view xml);

 private:
  xercesc::DOMDocument* parse(std::string_view xml);

  std::unique_ptr<xercesc::XercesDOMParser> _parser;
  xercesc::DOMLSSerializer* _serializer = nullptr;
};

}  // namespace bench
