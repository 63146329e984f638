#include "KelXMLParseServices.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

#include "KelLib.h"
#include "KelTrace.h"
#include "KelXmlFailure.h"
#include "KelXmlPlatform.h"
#include "KelXmlScannerPool.h"
#include "KelXmlSource.h"
#include "KelXmlTree.h"
#include "KelXmlUtf8.h"

namespace {

constexpr int kTraceLevel = 2;
constexpr int kTraceLineLength = 256;

// A tree may take this much, whatever its document looks like, and this much for each byte of it:
// more is reached by expanding entities only.
constexpr std::size_t kTreeMemory = std::size_t{16} * 1024 * 1024;
constexpr std::size_t kTreeMemoryPerByte = 40;
// No text outgrows the size that a node keeps of it.
constexpr std::size_t kLargestTree = std::numeric_limits<std::uint32_t>::max();

// A reason may repeat bytes of the document: what would end the line, or steer a terminal, is
// written as its number.
std::string OnOneLine(const std::string& text) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  constexpr unsigned char kDelete = 0x7F;
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= ' ' && byte != kDelete) {
      line += c;
    } else {
      line += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
  }
  return line;
}

void Trace(const std::string& line) {
  static std::mutex mutex;
  static KelTrace trace("KelXML", "XML services", 0, "STDERR", kTraceLineLength);
  const std::lock_guard lock(mutex);
  trace.TraPutLN(kTraceLevel, OnOneLine(line).c_str());
}

long Refuse(const KelInputSource& source, const KelXmlFailure& failure) noexcept {
  try {
    Trace(source.name() + ": line " + std::to_string(failure.line) + ", column " +
          std::to_string(failure.column) + ": " + failure.reason);
  } catch (...) {
    // Without memory for the line there is still the result.
  }
  return E_FAIL;
}

// Has a parser for as long as it lives.
class BorrowedScanner {
 public:
  BorrowedScanner() : _scanner(KelXmlScannerPool::Take()) {}
  ~BorrowedScanner() { KelXmlScannerPool::Give(std::move(_scanner)); }
  BorrowedScanner(const BorrowedScanner&) = delete;
  BorrowedScanner& operator=(const BorrowedScanner&) = delete;

  KelXmlScanner* operator->() { return _scanner.get(); }

 private:
  std::unique_ptr<KelXmlScanner> _scanner;
};

std::shared_ptr<KelXmlTree> Parse(std::string_view source) {
  const KelXmlSource document(source);
  const std::size_t size = document.text().size();
  const std::size_t limit = std::min(kTreeMemory + kTreeMemoryPerByte * size, kLargestTree);
  auto tree = std::make_shared<KelXmlTree>(2 * size, limit);
  BorrowedScanner scanner;
  scanner->Scan(document, *tree);
  tree->LiftLimit();
  return tree;
}

// Parses into `document`; whatever the parser throws becomes a refusal.
long ParseOrRefuse(const KelInputSource& source, DOM_Document& document) {
  try {
    document = DOM_Document(Parse(source.text()));
    return S_OK;
  } catch (const KelXmlFailure& failure) {
    return Refuse(source, failure);
  } catch (const xercesc::OutOfMemoryException&) {
    return Refuse(source, KelXmlFailure("out of memory"));
  } catch (const xercesc::SAXException& exception) {
    return Refuse(source, KelXmlFailure(ToUtf8(exception.getMessage())));
  } catch (const xercesc::XMLException& exception) {
    return Refuse(source, KelXmlFailure(ToUtf8(exception.getMessage())));
  } catch (const xercesc::DOMException& exception) {
    return Refuse(source, KelXmlFailure(ToUtf8(exception.getMessage())));
  } catch (const std::exception& exception) {
    return Refuse(source, KelXmlFailure(exception.what()));
  } catch (...) {
    return Refuse(source, KelXmlFailure("an unknown exception of the parser"));
  }
}

// The parser's exceptions are gone before the platform may be.
long ParseOnPlatform(const KelInputSource& source, DOM_Document& document) {
  std::optional<KelXmlPlatform::Use> platform;
  try {
    platform.emplace();
  } catch (const std::exception& exception) {
    return Refuse(source, KelXmlFailure(exception.what()));
  } catch (...) {
    return Refuse(source, KelXmlFailure("the parser's library cannot be started"));
  }
  return ParseOrRefuse(source, document);
}

}  // namespace

long KelXMLParseServices::XMLParse(const KelInputSource& source, DOM_Document& document) {
  document = DOM_Document();
  try {
    return ParseOnPlatform(source, document);
  } catch (...) {
    // There was no memory left to say why.
    return E_FAIL;
  }
}
