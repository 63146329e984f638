#include "KelXmlWriter.h"

#include <string_view>

#include "DOM_Node.h"

namespace {

struct EscapeTable {
  bool escaped[256];
};

// Control characters are written as references everywhere: a carriage return would come back as a
// line feed, and XML 1.1 allows the others in no other form.
constexpr EscapeTable MakeTable(std::string_view markup, std::string_view allowed, bool version11) {
  EscapeTable table{};
  for (int c = 0; c < 0x20; ++c) table.escaped[c] = true;
  for (const char c : allowed) table.escaped[static_cast<unsigned char>(c)] = false;
  for (const char c : markup) table.escaped[static_cast<unsigned char>(c)] = true;
  if (version11) {
    // DEL, and the first bytes of the C1 controls and of the line separator.
    table.escaped[0x7F] = true;
    table.escaped[0xC2] = true;
    table.escaped[0xE2] = true;
  }
  return table;
}

constexpr EscapeTable kInText[2] = {MakeTable("&<>", "\t\n", false),
                                    MakeTable("&<>", "\t\n", true)};
constexpr EscapeTable kInAttribute[2] = {MakeTable("&<\"", "", false), MakeTable("&<\"", "", true)};

// The character that `rest` begins with, when it is one that XML 1.1 reads as a line end or allows
// as a reference only; else 0.
unsigned int RestrictedCharacter(std::string_view rest) {
  const auto byte = [rest](std::size_t at) {
    return at < rest.size() ? static_cast<unsigned char>(rest[at]) : 0u;
  };
  if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) <= 0x9F) return byte(1);
  if (byte(0) == 0xE2 && byte(1) == 0x80 && byte(2) == 0xA8) return 0x2028;
  return 0;
}

}  // namespace

KelXmlWriter::KelXmlWriter(KelXmlTree& tree, std::string& text) : _tree(tree), _text(text) {}

void KelXmlWriter::Write(const KelXmlNode* top) {
  Open(top);
  const KelXmlNode* node = top;
  while (true) {
    if (node->firstChild != nullptr) {
      node = node->firstChild;
      Open(node);
      continue;
    }
    while (node != top && node->next == nullptr) {
      node = node->parent;
      Close(node);
    }
    if (node == top) return;
    node = node->next;
    Open(node);
  }
}

void KelXmlWriter::Open(const KelXmlNode* node) {
  switch (node->type) {
    case DOM_Node::DOCUMENT_NODE:
      WriteProlog();
      return;
    case DOM_Node::ELEMENT_NODE:
      _text.append(1, '<').append(node->name->view());
      for (const KelXmlNode* a = node->firstAttribute; a != nullptr; a = a->next) {
        _text.append(1, ' ');
        WriteAttribute(a);
      }
      _text.append(node->firstChild != nullptr ? ">" : "/>");
      return;
    case DOM_Node::ATTRIBUTE_NODE:
      WriteAttribute(node);
      return;
    case DOM_Node::CDATA_SECTION_NODE:
      WriteCData(node->value());
      return;
    case DOM_Node::COMMENT_NODE:
      _text.append("<!--");
      WriteUnescaped(node->value());
      _text.append("-->");
      break;
    case DOM_Node::PROCESSING_INSTRUCTION_NODE:
      _text.append("<?").append(node->name->view());
      if (node->textSize > 0) _text.append(1, ' ');
      WriteUnescaped(node->value());
      _text.append("?>");
      break;
    default:
      WriteEscaped(node->value(), kInText[_tree.IsVersion11()].escaped);
      return;
  }
  if (node->parent == _tree.document()) WriteDocumentTypeAfter(node);
}

void KelXmlWriter::Close(const KelXmlNode* node) {
  if (node->type == DOM_Node::ELEMENT_NODE)
    _text.append("</").append(node->name->view()).append(1, '>');
}

void KelXmlWriter::WriteProlog() {
  const KelXmlProlog& prolog = _tree.prolog();
  if (prolog.hasDeclaration) {
    _text.append("<?xml version=\"").append(prolog.version).append("\"");
    if (prolog.hasEncoding) _text.append(" encoding=\"UTF-8\"");
    if (!prolog.standalone.empty()) {
      _text.append(" standalone=\"").append(prolog.standalone).append("\"");
    }
    _text.append("?>");
  }
  WriteDocumentTypeAfter(nullptr);
}

void KelXmlWriter::WriteDocumentTypeAfter(const KelXmlNode* node) {
  const KelXmlProlog& prolog = _tree.prolog();
  if (prolog.hasDocumentType && prolog.documentTypeAfter == node) WriteDocumentType();
}

void KelXmlWriter::WriteDocumentType() {
  const KelXmlProlog& prolog = _tree.prolog();
  _text.append("<!DOCTYPE ").append(prolog.documentTypeName);
  if (prolog.publicId.data() != nullptr) {
    _text.append(" PUBLIC \"").append(prolog.publicId).append("\"");
  } else if (prolog.systemId.data() != nullptr) {
    _text.append(" SYSTEM");
  }
  if (prolog.systemId.data() != nullptr) {
    // It holds one kind of quotes at most.
    const char quote = prolog.systemId.find('"') == std::string_view::npos ? '"' : '\'';
    _text.append(1, ' ').append(1, quote).append(prolog.systemId).append(1, quote);
  }
  _text.append(1, '>');
}

void KelXmlWriter::WriteAttribute(const KelXmlNode* attribute) {
  _text.append(attribute->name->view()).append("=\"");
  WriteEscaped(attribute->value(), kInAttribute[_tree.IsVersion11()].escaped);
  _text.append(1, '"');
}

void KelXmlWriter::WriteCData(std::string_view value) {
  // Entities can bring in characters that a section cannot hold as they are: such a section becomes
  // text, which can.
  const Escapes escapes = kInText[_tree.IsVersion11()].escaped;
  for (std::size_t at = 0; at < value.size(); ++at) {
    const char c = value[at];
    if (c == '&' || c == '<' || c == '>' || !escapes[static_cast<unsigned char>(c)]) continue;
    if (static_cast<unsigned char>(c) < 0x80 || RestrictedCharacter(value.substr(at)) != 0) {
      WriteEscaped(value, escapes);
      return;
    }
  }
  _text.append("<![CDATA[").append(value).append("]]>");
}

void KelXmlWriter::WriteUnescaped(std::string_view value) {
  // A carriage return that an entity brought in would be read as a line feed.
  const std::size_t from = _text.size();
  _text.append(value);
  for (std::size_t at = from; (at = _text.find('\r', at)) != std::string::npos;) _text[at] = '\n';
}

void KelXmlWriter::WriteEscaped(std::string_view value, Escapes escapes) {
  std::size_t written = 0;
  std::size_t at = 0;
  while (at < value.size()) {
    if (!escapes[static_cast<unsigned char>(value[at])]) {
      ++at;
      continue;
    }
    _text.append(value.substr(written, at - written));
    at += WriteSpecial(value.substr(at));
    written = at;
  }
  _text.append(value.substr(written));
}

// Writes the character that `rest` begins with in a form that is read as that character again, and
// returns its length in `rest`.
std::size_t KelXmlWriter::WriteSpecial(std::string_view rest) {
  const auto c = static_cast<unsigned char>(rest.front());
  switch (c) {
    case '&':
      _text.append("&amp;");
      return 1;
    case '<':
      _text.append("&lt;");
      return 1;
    case '>':
      _text.append("&gt;");
      return 1;
    case '"':
      _text.append("&quot;");
      return 1;
    default:
      break;
  }
  if (c < 0x80) {
    WriteReference(c);
    return 1;
  }
  const unsigned int restricted = RestrictedCharacter(rest);
  if (restricted == 0) {
    _text.append(1, rest.front());
    return 1;
  }
  WriteReference(restricted);
  return restricted < 0x100 ? 2 : 3;
}

void KelXmlWriter::WriteReference(unsigned int character) {
  _text.append("&#").append(std::to_string(character)).append(1, ';');
}
