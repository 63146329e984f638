#include "AnswerRewriter.h"

#include <memory>

#include "DOM_Document.h"
#include "Guard.h"
#include "KelDOMServices.h"
#include "KelInputSource.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"
#include "KelXMLParser.h"
#include "ZetNorvEmul.h"

namespace zetnorv {

namespace {

// The first value of record `k`; empty beyond the last record.
DOMString identifierAt(const ZetNorvDb_Table& table, int k) {
  ZetNorvDb_Record record;
  MString value;
  if (table.getRecord(k, record) != S_OK || record.getData(0, value) != S_OK || value.isNull()) {
    return DOMString("");
  }
  return DOMString(value.gchar());
}

// Gives the k-th element the k-th identifier. One without the attribute keeps its place in the
// count.
void replaceIdentifiers(const DOM_NodeList& elements, const ZetNorvDb_Table& table) {
  const DOMString name("Identifier");
  const unsigned int count = elements.getLength();
  for (unsigned int k = 0; k < count; ++k) {
    ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Remplacement 1");
    DOM_Attr identifier = KelDOMServices::NodeToElement(elements.item(k)).getAttributeNode(name);
    if (identifier.isNull()) continue;
    ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Remplacement 2");
    const DOMString value = identifierAt(table, static_cast<int>(k));
    ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Remplacement 3");
    ZetNorvTrace.TraPutLN(2, value.utf8().c_str());
    identifier.setValue(value);
    ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Remplacement 4");
  }
}

}  // namespace

Rewriting rewriteAnswer(const char* xml, int size, std::string& text) {
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: _ids");
  ZetNorvTrace.TraPutLN(2, xml);
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: CreateMemBufInput...");
  std::unique_ptr<KelInputSource> source;
  if (KelPDMBaseServices::CreateMemBufInputSourceFromChar(xml, size, "msg new msg", source) !=
          S_OK ||
      source == nullptr) {
    ZetNorvTrace.TraPutLN(1, "Out ... CreateMemBufInputSourceFromOstr");
    return Rewriting::kFailed;
  }
  // A broken answer goes on as one without elements.
  DOM_Document document;
  if (KelXMLParseServices::XMLParse(*source, document) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem with XMLParse");
  }
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Dom Doc .. get .. LogOject");
  const DOM_NodeList logObjects = document.getElementsByTagName("LogObject");
  const DOM_NodeList references = document.getElementsByTagName("Reference");
  if (logObjects.getLength() == 0 && references.getLength() == 0) {
    return Rewriting::kNothingToRewrite;
  }
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Gestion de la liste des NodeList");
  replaceIdentifiers(references, ZetNorvEmul::_idsRef);
  replaceIdentifiers(logObjects, ZetNorvEmul::_ids);
  if (KelXMLParser::WriteXML(document, text) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Problem with WriteXML");
    return Rewriting::kFailed;
  }
  return Rewriting::kDone;
}

}  // namespace zetnorv
