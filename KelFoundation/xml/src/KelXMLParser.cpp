#include "KelXMLParser.h"

#include <string>

#include "KelLib.h"
#include "KelXmlTree.h"
#include "KelXmlWriter.h"

long KelXMLParser::WriteXML(const DOM_Node& node, std::string& text) {
  if (node.isNull()) return E_FAIL;
  std::string written;
  KelXmlWriter(*KelXmlTree::Of(node.node()), written).Write(node.node());
  text = std::move(written);
  return S_OK;
}
