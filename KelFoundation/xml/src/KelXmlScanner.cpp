#include "KelXmlScanner.h"

#include <xercesc/internal/XMLScannerResolver.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "KelXmlFailure.h"
#include "KelXmlInput.h"
#include "KelXmlPlatform.h"
#include "KelXmlUtf8.h"

namespace {

constexpr std::size_t kMostEntities = 1000;

// What the scanner may take for itself: room for what a hostile document makes of its entities, and
// for an honest large one.
constexpr std::size_t kMemory = std::size_t{24} * 1024 * 1024;
constexpr std::size_t kMemoryPerByte = 24;

// What a kept scanner may hold between two documents.
constexpr std::size_t kKeptMemory = std::size_t{2} * 1024 * 1024;

// Gives the bounds of one scan back, however it ends.
class ScanBounds {
 public:
  ScanBounds(KelXmlMemory& memory, std::size_t bytes, const xercesc::Locator& locator)
      : _memory(memory) {
    _memory.Begin(bytes, 1 + kMostEntities, locator);
  }
  ~ScanBounds() { _memory.End(); }
  ScanBounds(const ScanBounds&) = delete;
  ScanBounds& operator=(const ScanBounds&) = delete;

 private:
  KelXmlMemory& _memory;
};

}  // namespace

KelXmlScanner::KelXmlScanner() : _life(KelXmlPlatform::Life()) {
  // What is made before a failure needs no care of its own: it goes with `_memory`.
  _grammars = new (&_memory) xercesc::GrammarResolver(nullptr, &_memory);
  // The one that reads document types and looks for double attributes in a table: the plainest one
  // compares each attribute with all others, seconds for a hostile element.
  _scanner = xercesc::XMLScannerResolver::resolveScanner(xercesc::XMLUni::fgDGXMLScanner, nullptr,
                                                         _grammars, &_memory);
  Configure();
}

KelXmlScanner::~KelXmlScanner() {
  // Where it cannot be taken apart, its memory is released as a whole.
  if (!IsWhole()) return;
  delete _scanner;
  delete _grammars;
}

void KelXmlScanner::Configure() {
  _scanner->setURIStringPool(_grammars->getStringPool());
  _scanner->setDocHandler(&_builder);
  _scanner->setDocTypeHandler(&_builder);
  _scanner->setErrorReporter(this);
  _scanner->setEntityHandler(this);
  _scanner->setDoNamespaces(false);
  _scanner->setDoSchema(false);
  _scanner->setValidationScheme(xercesc::XMLScanner::Val_Never);
  _scanner->setLoadExternalDTD(false);
  _scanner->setLoadSchema(false);
  _scanner->setDisableDefaultEntityResolution(true);
  _security.setEntityExpansionLimit(kMostEntities);
  _scanner->setSecurityManager(&_security);
}

void KelXmlScanner::Scan(const KelXmlSource& document, KelXmlTree& tree) {
  const ScanBounds bounds(_memory, kMemory + kMemoryPerByte * document.text().size(),
                          *_scanner->getLocator());
  _builder.Begin(tree, *_scanner, document);
  try {
    Run(document);
  } catch (const xercesc::OutOfMemoryException&) {
    _outOfMemory = true;
    _memory.ExplainBound();
    throw;
  }
  if (!_builder.IsDone()) throw KelXmlFailure("the document ends too early");
}

void KelXmlScanner::Run(const KelXmlSource& document) {
  const KelXmlInput input(document, _memory);
  _scanner->scanDocument(input);
}

// After a failed allocation the scanner is in no state to be taken apart, nor is it when the host
// has shut the platform down: parts of it belonged to that.
bool KelXmlScanner::IsWhole() const { return !_outOfMemory && _life == KelXmlPlatform::Life(); }

bool KelXmlScanner::IsReusable() const {
  return IsWhole() && _memory.Held() <= kKeptMemory &&
         _scanner->getXMLVersion() == xercesc::XMLReader::XMLV1_0;
}

void KelXmlScanner::error(unsigned int, const XMLCh*, ErrTypes type, const XMLCh* text,
                          const XMLCh*, const XMLCh*, XMLFileLoc line, XMLFileLoc column) {
  if (type == ErrType_Warning) return;
  throw KelXmlFailure(ToUtf8(text), line, column);
}

xercesc::InputSource* KelXmlScanner::resolveEntity(xercesc::XMLResourceIdentifier* identifier) {
  KelXmlFailure failure("the external entity \"" + ToUtf8(identifier->getSystemId()) +
                        "\" is not loaded");
  failure.Locate(*_scanner->getLocator());
  throw failure;
}
