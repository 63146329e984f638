#include "XmlText.h"

#include <algorithm>
#include <memory>

#include "Guard.h"
#include "KelInputSource.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"

namespace zetnorv {

namespace {

constexpr int kHeaderBytes = 4;

void traceStep(const char* line) {
  if (line != nullptr) ZetNorvTrace.TraPutLN(2, line);
}

}  // namespace

long parseXml(const char* text, int size, const char* name, const XmlProblems& problems,
              DOM_Document& document) {
  document = DOM_Document();
  std::unique_ptr<KelInputSource> source;
  const int length = size < 0 ? 0 : size;
  if (KelPDMBaseServices::CreateMemBufInputSourceFromChar(text, length, name, source) != S_OK ||
      source == nullptr) {
    ZetNorvTrace.TraPutLN(problems.level, problems.source);
    return E_FAIL;
  }
  traceStep(problems.beforeParse);
  const long parsed = KelXMLParseServices::XMLParse(*source, document);
  traceStep(problems.afterParse);
  if (parsed != S_OK) {
    ZetNorvTrace.TraPutLN(problems.level, problems.parse);
    return E_FAIL;
  }
  return S_OK;
}

XmlPayload::XmlPayload(const char* message, int messageSize)
    : text(message), size(std::max(messageSize, kHeaderBytes) - kHeaderBytes) {
  if (message == nullptr) {
    size = 0;
  } else if (messageSize >= kHeaderBytes) {
    text = message + kHeaderBytes;
  }
}

}  // namespace zetnorv
