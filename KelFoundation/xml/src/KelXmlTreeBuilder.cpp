#include "KelXmlTreeBuilder.h"

#include <algorithm>
#include <string>
#include <vector>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "DOM_Node.h"
#include "KelXmlFailure.h"
#include "KelXmlUtf8.h"

namespace {

constexpr int kDeepest = 1000;

// The scanner looks at every declared attribute of an element each time the element occurs: this
// bounds the product, for any document and for each byte of it.
constexpr std::uint64_t kDeclaredAttributesSeen = 5'000'000;
constexpr std::uint64_t kDeclaredAttributesSeenPerByte = 64;

std::size_t Length(const XMLCh* text) { return std::char_traits<XMLCh>::length(text); }

std::string InCapitals(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return name;
}

// The bytes in one unit of the encoding called `name`, in capitals.
std::size_t UnitSizeOf(const std::string& name) {
  if (name.starts_with("UTF-16") || name.find("UCS-2") != std::string::npos) return 2;
  if (name.starts_with("UTF-32") || name.find("UCS-4") != std::string::npos) return 4;
  return 1;
}

// The scanner's table of the attributes of an element loses one whenever it grows, from this many
// on: the same attribute again would pass.
constexpr std::size_t kAttributesTold = 28;

// Refuses an element that has two attributes of one name. The names of a tree are stored once each.
void RefuseDoubles(const KelXmlNode& element) {
  std::vector<const KelXmlName*> names;
  for (const KelXmlNode* each = element.firstAttribute; each != nullptr; each = each->next) {
    names.push_back(each->name);
  }
  std::sort(names.begin(), names.end());
  const auto twice = std::adjacent_find(names.begin(), names.end());
  if (twice == names.end()) return;
  throw KelXmlFailure("attribute '" + std::string((*twice)->view()) +
                      "' is already specified for element '" + std::string(element.name->view()) +
                      "'");
}

// Whether `name`, in capitals, is one of those that UTF-8 goes by.
bool IsUtf8(const std::string& name) { return name == "UTF-8" || name == "UTF8"; }

bool IsEmpty(const XMLCh* text) { return text == nullptr || *text == 0; }

}  // namespace

// Runs `step`; a failure that leaves it says where in the document it happened.
template <class Step>
void KelXmlTreeBuilder::Located(Step step) {
  try {
    step();
  } catch (KelXmlFailure& failure) {
    failure.Locate(*_scanner->getLocator());
    throw;
  }
}

void KelXmlTreeBuilder::Begin(KelXmlTree& tree, xercesc::XMLScanner& scanner,
                              const KelXmlSource& document) {
  _tree = &tree;
  _scanner = &scanner;
  _textName = tree.names().Intern("#text");
  _cdataName = tree.names().Intern("#cdata-section");
  _commentName = tree.names().Intern("#comment");
  _parent = tree.document();
  _last = nullptr;
  _openText = nullptr;
  _document = &document;
  _depth = 0;
  _declaredAttributesLeft =
      kDeclaredAttributesSeen + kDeclaredAttributesSeenPerByte * document.text().size();
  _isUtf8 = true;
  _done = false;
}

void KelXmlTreeBuilder::startElement(const xercesc::XMLElementDecl& declaration, unsigned int,
                                     const XMLCh*,
                                     const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                     XMLSize_t attributeCount, bool isEmpty, bool) {
  CloseText();
  Located([&] {
    CheckBounds(declaration);
    KelXmlNode* element = Append(DOM_Node::ELEMENT_NODE, Name(declaration.getFullName()));
    AddAttributes(element, attributes, attributeCount);
    // No end follows an empty element.
    if (isEmpty) return;
    ++_depth;
    _parent = element;
    _last = nullptr;
  });
}

void KelXmlTreeBuilder::endElement(const xercesc::XMLElementDecl&, unsigned int, bool,
                                   const XMLCh*) {
  CloseText();
  --_depth;
  _last = _parent;
  _parent = _parent->parent;
}

void KelXmlTreeBuilder::docCharacters(const XMLCh* characters, XMLSize_t count, bool isCData) {
  if (_depth == 0) return;
  if (!isCData) {
    Located([&] { ExtendText(characters, count); });
    return;
  }
  CloseText();
  Located(
      [&] { SetText(Append(DOM_Node::CDATA_SECTION_NODE, _cdataName), Text(characters, count)); });
}

void KelXmlTreeBuilder::ignorableWhitespace(const XMLCh* characters, XMLSize_t count,
                                            bool isCData) {
  docCharacters(characters, count, isCData);
}

void KelXmlTreeBuilder::docComment(const XMLCh* comment) {
  CloseText();
  Located([&] { SetText(Append(DOM_Node::COMMENT_NODE, _commentName), Text(comment)); });
}

void KelXmlTreeBuilder::docPI(const XMLCh* target, const XMLCh* data) {
  CloseText();
  Located([&] {
    KelXmlNode* node = Append(DOM_Node::PROCESSING_INSTRUCTION_NODE, Name(target));
    if (data != nullptr) SetText(node, Text(data));
  });
}

void KelXmlTreeBuilder::XMLDecl(const XMLCh* version, const XMLCh* encoding,
                                const XMLCh* standalone, const XMLCh*) {
  KelXmlProlog& prolog = _tree->prolog();
  prolog.hasDeclaration = true;
  prolog.version = Text(version);
  prolog.hasEncoding = !IsEmpty(encoding);
  if (!IsEmpty(standalone)) prolog.standalone = Text(standalone);
  Located([&] { CheckDeclaration(encoding); });
  _isUtf8 = IsEmpty(encoding) || IsUtf8(InCapitals(ToUtf8(encoding)));
}

void KelXmlTreeBuilder::endDocument() {
  if (_isUtf8) _document->InsistOnUtf8();
  _done = true;
}

void KelXmlTreeBuilder::doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId,
                                    const XMLCh* systemId, bool, bool) {
  KelXmlProlog& prolog = _tree->prolog();
  prolog.hasDocumentType = true;
  prolog.documentTypeName = Text(root.getFullName());
  if (!IsEmpty(publicId)) prolog.publicId = Text(publicId);
  if (systemId != nullptr) prolog.systemId = Text(systemId);
  prolog.documentTypeAfter = _last;
  InsistOnDeclaredEntities();
}

void KelXmlTreeBuilder::startAttList(const xercesc::DTDElementDecl&) { InsistOnDeclaredEntities(); }

void KelXmlTreeBuilder::endIntSubset() { InsistOnDeclaredEntities(); }

// The scanner drops references to undeclared entities without a word once there may be declarations
// that it has not read. Text would be missing, so they are an error here as in any other document.
void KelXmlTreeBuilder::InsistOnDeclaredEntities() { _scanner->setHasNoDTD(true); }

void KelXmlTreeBuilder::CheckDeclaration(const XMLCh* encoding) const {
  const std::string version(_tree->prolog().version);
  if (version != "1.0" && version != "1.1") {
    throw KelXmlFailure("XML " + version + " is neither XML 1.0 nor XML 1.1");
  }
  // The scanner takes no notice of a declaration that cannot be true.
  const std::string name = ToUtf8(encoding);
  if (!name.empty() && UnitSizeOf(InCapitals(name)) != _document->unitSize()) {
    throw KelXmlFailure("the document is not encoded in " + name);
  }
}

void KelXmlTreeBuilder::CheckBounds(const xercesc::XMLElementDecl& declaration) {
  if (_depth >= kDeepest) throw KelXmlFailure("elements are nested deeper than 1,000");
  if (!declaration.hasAttDefs()) return;
  const std::uint64_t declared = declaration.getAttDefList().getAttDefCount();
  if (declared > _declaredAttributesLeft) {
    throw KelXmlFailure("too many attributes are declared for the elements");
  }
  _declaredAttributesLeft -= declared;
}

const KelXmlName* KelXmlTreeBuilder::Name(const XMLCh* name) {
  // Most names are known already: only a new one takes memory of the tree.
  const std::size_t count = Length(name);
  constexpr std::size_t kShort = 64;
  if (count > kShort) return _tree->names().Intern(ToUtf8(name));
  char text[kShort * kMaxUtf8PerUnit];
  const char* end = WriteUtf8(name, count, text);
  return _tree->names().Intern({text, static_cast<std::size_t>(end - text)});
}

std::string_view KelXmlTreeBuilder::Text(const XMLCh* text, std::size_t count) {
  KelXmlArena& arena = _tree->arena();
  char* copy = arena.Reserve(count * kMaxUtf8PerUnit);
  char* end = WriteUtf8(text, count, copy);
  arena.Commit(end);
  return {copy, static_cast<std::size_t>(end - copy)};
}

std::string_view KelXmlTreeBuilder::Text(const XMLCh* text) { return Text(text, Length(text)); }

void KelXmlTreeBuilder::SetText(KelXmlNode* node, std::string_view text) {
  node->text = const_cast<char*>(text.data());
  node->textSize = static_cast<std::uint32_t>(text.size());
}

KelXmlNode* KelXmlTreeBuilder::Append(short type, const KelXmlName* name) {
  KelXmlNode* node = _tree->NewNode(static_cast<std::uint8_t>(type), name, _parent);
  (_last != nullptr ? _last->next : _parent->firstChild) = node;
  _last = node;
  return node;
}

void KelXmlTreeBuilder::AddAttributes(KelXmlNode* element,
                                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                      std::size_t count) {
  KelXmlNode** link = &element->firstAttribute;
  for (std::size_t i = 0; i < count; ++i) {
    const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
    *link = _tree->NewNode(DOM_Node::ATTRIBUTE_NODE, Name(attribute.getQName()), element);
    SetText(*link, Text(attribute.getValue()));
    link = &(*link)->next;
  }
  if (count > kAttributesTold) RefuseDoubles(*element);
}

void KelXmlTreeBuilder::ExtendText(const XMLCh* characters, std::size_t count) {
  KelXmlArena& arena = _tree->arena();
  if (_openText == nullptr) {
    _openText = Append(DOM_Node::TEXT_NODE, _textName);
    _openText->text = arena.Reserve(0);
  }
  char* text = arena.Reserve(_openText->text, _openText->textSize, count * kMaxUtf8PerUnit);
  char* end = WriteUtf8(characters, count, text + _openText->textSize);
  arena.Commit(end);
  _openText->text = text;
  _openText->textSize = static_cast<std::uint32_t>(end - text);
}
