#include "XmlText.h"

#include <memory>

#include "Guard.h"
#include "KelInputSource.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"

namespace zetnorv {

namespace {

constexpr int kHeaderBytes = 4;

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
  if (KelXMLParseServices::XMLParse(*source, document) != S_OK) {
    ZetNorvTrace.TraPutLN(problems.level, problems.parse);
    return E_FAIL;
  }
  return S_OK;
}

XmlPayload::XmlPayload(const char* message, int messageSize)
    : text(message == nullptr || messageSize < kHeaderBytes ? message : message + kHeaderBytes),
      size(message == nullptr || messageSize < kHeaderBytes ? 0 : messageSize - kHeaderBytes) {}

}  // namespace zetnorv
