// Writes a tree as text.
#pragma once

#include <string>

#include "KelXmlTree.h"

class KelXmlWriter {
 public:
  // Writes for `tree` to the end of `text`; both must outlive this object.
  KelXmlWriter(KelXmlTree& tree, std::string& text);

  // Writes `top` and all below it, without recursion: a tree may be as deep as it likes.
  void Write(const KelXmlNode* top);

 private:
  // The characters that cannot stand for themselves in one place.
  using Escapes = const bool (&)[256];

  void Open(const KelXmlNode* node);
  void Close(const KelXmlNode* node);
  void WriteProlog();
  void WriteDocumentType();
  void WriteDocumentTypeAfter(const KelXmlNode* node);
  void WriteAttribute(const KelXmlNode* attribute);
  void WriteCData(std::string_view value);
  void WriteUnescaped(std::string_view value);
  void WriteEscaped(std::string_view value, Escapes escapes);
  std::size_t WriteSpecial(std::string_view rest);
  void WriteReference(unsigned int character);

  KelXmlTree& _tree;
  std::string& _text;
};
