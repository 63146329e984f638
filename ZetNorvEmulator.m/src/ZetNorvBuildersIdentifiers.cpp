// Takes the object identifiers out of a request.
#include <cstddef>
#include <string>

#include "DOM_Document.h"
#include "DOM_Element.h"
#include "Guard.h"
#include "KelDOMServices.h"
#include "NullReference.h"
#include "TableRoom.h"
#include "XmlText.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvDb_Table.h"
#include "ZetNorvToolBox.h"

namespace {

constexpr zetnorv::XmlProblems kProblems = {2, "buildTemp Problem CreateMemBufInputSourceFromChar",
                                            "buildTemp Problem XMLParse"};

void writeLog(const char* text) { ZetNorvToolBox::writeLog(MString("buildTemp.log"), text); }

void logPayload(const zetnorv::XmlPayload& payload) {
  if (ZetNorvToolBox::inDebugMode() != S_OK) return;
  writeLog("\n ####################### \n");
  if (payload.size < 1) {
    writeLog("ca marche pas");
    return;
  }
  // A message need not end with a NUL.
  const std::string text(payload.text, static_cast<std::size_t>(payload.size));
  writeLog(text.c_str());
}

void addIdentifier(const DOM_Element& element, ZetNorvDb_Table& table) {
  const DOMString identifier = element.getAttribute("Identifier");
  ZetNorvDb_Record record(2, MString(identifier.utf8().c_str()), 0);
  table.add(record);
}

// Adds a row to `table` for each element named `tag`.
long extract(const char* message, int size, const char* tag, ZetNorvDb_Table& table) {
  const zetnorv::XmlPayload payload(message, size);
  logPayload(payload);
  DOM_Document document;
  if (zetnorv::parseXml(payload.text, payload.size, "msgBuildTemp", kProblems, document) != S_OK) {
    return E_FAIL;
  }
  const DOM_NodeList elements = document.getElementsByTagName(tag);
  const unsigned int count = elements.getLength();
  zetnorv::makeRoom(table, static_cast<int>(count));
  for (unsigned int i = 0; i < count; ++i) {
    addIdentifier(KelDOMServices::NodeToElement(elements.item(i)), table);
  }
  return count == 0 ? 1 : 0;
}

long extractGuarded(const char* operation, const char* message, int size, const char* tag,
                    ZetNorvDb_Table& table) {
  ZetNorvTrace.TraPutLN(2, operation);
  if (zetnorv::isNullReference(table)) {
    ZetNorvTrace.TraPutLN(2, "extractObject: table == NULL");
    return E_FAIL;
  }
  return zetnorv::guarded(operation, [&] { return extract(message, size, tag, table); });
}

}  // namespace

long ZetNorvBuilders::extractLogObject(const char* message, int size, ZetNorvDb_Table& table) {
  return extractGuarded("ZetNorvBuilders::extractLogObject", message, size, "LogObject", table);
}

long ZetNorvBuilders::extractRefObject(const char* message, int size, ZetNorvDb_Table& table) {
  return extractGuarded("ZetNorvBuilders::extractRefObject", message, size, "Reference", table);
}
