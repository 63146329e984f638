#include "XmlFloor.h"

#include <cstdio>
#include <cstdlib>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace bench {

namespace {

std::size_t walk(const xercesc::DOMNode* node) {
  std::size_t seen = xercesc::XMLString::stringLen(node->getNodeName()) +
                     xercesc::XMLString::stringLen(node->getNodeValue());
  if (const xercesc::DOMNamedNodeMap* attributes = node->getAttributes()) {
    for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
      const xercesc::DOMNode* attribute = attributes->item(i);
      seen += xercesc::XMLString::stringLen(attribute->getNodeName()) +
              xercesc::XMLString::stringLen(attribute->getNodeValue());
    }
  }
  for (const xercesc::DOMNode* child = node->getFirstChild(); child != nullptr;
       child = child->getNextSibling()) {
    seen += walk(child);
  }
  return seen;
}

}  // namespace

XmlFloor::XmlFloor() {
  xercesc::XMLPlatformUtils::Initialize();
  _parser = std::make_unique<xercesc::XercesDOMParser>();
  _parser->setValidationScheme(xercesc::XercesDOMParser::Val_Never);
  _parser->setDoNamespaces(false);
  _parser->setLoadExternalDTD(false);
  constexpr XMLCh kLoadAndSave[] = {'L', 'S', 0};
  _serializer = static_cast<xercesc::DOMImplementationLS*>(
                    xercesc::DOMImplementationRegistry::getDOMImplementation(kLoadAndSave))
                    ->createLSSerializer();
}

XmlFloor::~XmlFloor() {
  _serializer->release();
  _parser.reset();
  xercesc::XMLPlatformUtils::Terminate();
}

xercesc::DOMDocument* XmlFloor::parse(std::string_view xml) {
  _parser->resetDocumentPool();
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(),
                                          "floor");
  _parser->parse(source);
  if (_parser->getErrorCount() == 0) return _parser->getDocument();
  std::fputs("the floor's parser refuses a message\n", stderr);
  std::exit(2);
}

std::size_t XmlFloor::parseAndWalk(std::string_view xml) { return walk(parse(xml)); }

std::size_t XmlFloor::parseAndSerialise(std::string_view xml) {
  const xercesc::DOMDocument* document = parse(xml);
  xercesc::MemBufFormatTarget target;
  xercesc::DOMLSOutput* output =
      static_cast<xercesc::DOMImplementationLS*>(document->getImplementation())->createLSOutput();
  output->setByteStream(&target);
  _serializer->write(document, output);
  output->release();
  return target.getLen();
}

}  // namespace bench
