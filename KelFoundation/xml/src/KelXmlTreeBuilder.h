// Builds a tree from what the scanner reads.
#pragma once

#include <cstdint>
#include <string_view>
#include <xercesc/framework/XMLDocumentHandler.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/validators/DTD/DocTypeHandler.hpp>

#include "KelXmlSource.h"
#include "KelXmlTree.h"

class KelXmlTreeBuilder : public xercesc::XMLDocumentHandler, public xercesc::DocTypeHandler {
 public:
  // Starts over with an empty `tree` for `document`, which `scanner` reads. All must outlive the
  // scan.
  void Begin(KelXmlTree& tree, xercesc::XMLScanner& scanner, const KelXmlSource& document);
  // Whether the document was read to its end.
  bool IsDone() const { return _done; }
  // The scanner's events. What is refused throws a KelXmlFailure.
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* prefix) override;
  void docCharacters(const XMLCh* characters, XMLSize_t count, bool isCData) override;
  void ignorableWhitespace(const XMLCh* characters, XMLSize_t count, bool isCData) override;
  void docComment(const XMLCh* comment) override;
  void docPI(const XMLCh* target, const XMLCh* data) override;
  void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
               const XMLCh* detectedEncoding) override;
  void doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId,
                   const XMLCh* systemId, bool hasInternalSubset, bool hasExternalSubset) override;
  void startAttList(const xercesc::DTDElementDecl& element) override;
  void endIntSubset() override;
  void endDocument() override;

  // Nothing of the document type's content becomes a node of its own: the scanner itself applies
  // entities and default attributes.
  void startDocument() override {}
  void resetDocument() override {}
  void startEntityReference(const xercesc::XMLEntityDecl&) override {}
  void endEntityReference(const xercesc::XMLEntityDecl&) override {}
  void attDef(const xercesc::DTDElementDecl&, const xercesc::DTDAttDef&, bool) override {}
  void doctypeComment(const XMLCh*) override {}
  void doctypePI(const XMLCh*, const XMLCh*) override {}
  void doctypeWhitespace(const XMLCh*, XMLSize_t) override {}
  void elementDecl(const xercesc::DTDElementDecl&, bool) override {}
  void endAttList(const xercesc::DTDElementDecl&) override {}
  void endExtSubset() override {}
  void entityDecl(const xercesc::DTDEntityDecl&, bool, bool) override {}
  void resetDocType() override {}
  void notationDecl(const xercesc::XMLNotationDecl&, bool) override {}
  void startIntSubset() override {}
  void startExtSubset() override {}
  void TextDecl(const XMLCh*, const XMLCh*) override {}

 private:
  void CheckDeclaration(const XMLCh* encoding) const;
  void InsistOnDeclaredEntities();
  void CheckBounds(const xercesc::XMLElementDecl& declaration);
  const KelXmlName* Name(const XMLCh* name);
  std::string_view Text(const XMLCh* text, std::size_t count);
  std::string_view Text(const XMLCh* text);
  void SetText(KelXmlNode* node, std::string_view text);
  KelXmlNode* Append(short type, const KelXmlName* name);
  void AddAttributes(KelXmlNode* element, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                     std::size_t count);
  void ExtendText(const XMLCh* characters, std::size_t count);
  void CloseText() { _openText = nullptr; }

  template <class Step>
  void Located(Step step);

  KelXmlTree* _tree = nullptr;
  xercesc::XMLScanner* _scanner = nullptr;
  const KelXmlSource* _document = nullptr;
  const KelXmlName* _textName = nullptr;
  const KelXmlName* _cdataName = nullptr;
  const KelXmlName* _commentName = nullptr;
  // The innermost open node, and its last child.
  KelXmlNode* _parent = nullptr;
  KelXmlNode* _last = nullptr;
  // The text node that further characters belong to; its text is the end of the arena.
  KelXmlNode* _openText = nullptr;
  int _depth = 0;
  // How many more declared attributes the scanner may look at.
  std::uint64_t _declaredAttributesLeft = 0;
  bool _isUtf8 = true;
  bool _done = false;
};
