#include "XmlText.h"

#include <algorithm>
#include <cstring>
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

// The text that is parsed once, and its document as soon as there is one.
struct KeptRequest {
  const char* text = nullptr;
  int size = 0;
  DOM_Document document;

  bool isText(const char* other, int otherSize) const {
    return text != nullptr && size == otherSize &&
           (text == other || std::memcmp(text, other, static_cast<std::size_t>(size)) == 0);
  }
};

KeptRequest kept;

// Parses `source`, or hands out what came of the same text before. A text that could not be parsed
// is parsed again, so that its reason is traced every time.
long parseOrReuse(const KelInputSource& source, const char* text, int size,
                  DOM_Document& document) {
  const bool keep = kept.isText(text, size);
  if (keep && !kept.document.isNull()) {
    document = kept.document;
    return S_OK;
  }
  const long parsed = KelXMLParseServices::XMLParse(source, document);
  if (keep && parsed == S_OK) kept.document = document;
  return parsed;
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
  const long parsed = parseOrReuse(*source, text, length, document);
  traceStep(problems.afterParse);
  if (parsed != S_OK) {
    ZetNorvTrace.TraPutLN(problems.level, problems.parse);
    return E_FAIL;
  }
  return S_OK;
}

RequestParsedOnce::RequestParsedOnce(const char* message, int messageSize) {
  const XmlPayload payload(message, messageSize);
  kept.text = payload.text;
  kept.size = payload.size;
}

RequestParsedOnce::~RequestParsedOnce() { kept = KeptRequest(); }

XmlPayload::XmlPayload(const char* message, int messageSize)
    : text(message), size(std::max(messageSize, kHeaderBytes) - kHeaderBytes) {
  if (message == nullptr) {
    size = 0;
  } else if (messageSize >= kHeaderBytes) {
    text = message + kHeaderBytes;
  }
}

}  // namespace zetnorv
