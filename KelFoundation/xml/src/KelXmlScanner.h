// One parser, made once and kept for many documents. Used by one thread at a time.
//
// It drives the scanner directly and builds a light tree of its own: attributes keep their order,
// and a document costs no more memory than its text and its nodes.
#pragma once

#include <cstdint>
#include <xercesc/framework/XMLEntityHandler.hpp>
#include <xercesc/framework/XMLErrorReporter.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/validators/common/GrammarResolver.hpp>

#include "KelXmlMemory.h"
#include "KelXmlSource.h"
#include "KelXmlTree.h"
#include "KelXmlTreeBuilder.h"

class KelXmlScanner : private xercesc::XMLErrorReporter, private xercesc::XMLEntityHandler {
 public:
  KelXmlScanner();
  ~KelXmlScanner() override;
  KelXmlScanner(const KelXmlScanner&) = delete;
  KelXmlScanner& operator=(const KelXmlScanner&) = delete;

  // Reads `document` into the empty `tree`. Throws a KelXmlFailure when it is refused, and
  // whatever the scanner throws.
  void Scan(const KelXmlSource& document, KelXmlTree& tree);

  // Whether another document should be read with it: not when it ran out of memory in the middle
  // of its work, not when the platform it was made on is gone, not when it holds on to much, and
  // not after XML 1.1, which it would keep to where the next document does not say.
  bool IsReusable() const;

 private:
  // The scanner's questions and complaints.
  void error(unsigned int code, const XMLCh* domain, ErrTypes type, const XMLCh* text,
             const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
             XMLFileLoc column) override;
  void resetErrors() override {}
  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override;
  bool expandSystemId(const XMLCh*, xercesc::XMLBuffer&) override { return false; }
  void startInputSource(const xercesc::InputSource&) override {}
  void endInputSource(const xercesc::InputSource&) override {}
  void resetEntities() override {}

  void Configure();
  bool IsWhole() const;
  void Run(const KelXmlSource& document);

  // First, so that it goes last: all that follows lives in it.
  KelXmlMemory _memory;
  KelXmlTreeBuilder _builder;
  xercesc::SecurityManager _security;
  xercesc::GrammarResolver* _grammars = nullptr;
  xercesc::XMLScanner* _scanner = nullptr;
  const std::uint64_t _life;
  bool _outOfMemory = false;
};
