// The entries of a script file, taken from the parsed file once and ready to be looked up by
// message number. Holds texts and numbers only, no part of the document.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "DOM_Element.h"
#include "DOM_NodeList.h"
#include "DataScript.h"

namespace zetnorv {

class ScriptIndex {
 public:
  // `elements` are all elements of the file, in document order.
  explicit ScriptIndex(const DOM_NodeList& elements);

  // A new script of `messageNumber`; null when it has no entry. An entry for character messages
  // goes before one for XML messages.
  std::unique_ptr<DataScript> build(int messageNumber) const;

 private:
  // What a "Composant" element says, for either kind of entry.
  struct Line {
    explicit Line(const DOM_Element& element);

    std::string name;
    int size = 0;
    std::optional<std::string> sizeVar;
    int compare = 0;
    std::string type;
    std::string repeat;
    std::string father;
    std::optional<std::string> attributs;
  };
  // The lines of an entry: all "Composant" elements below it, which follow one another in document
  // order.
  struct Entry {
    std::size_t begin = 0;
    std::size_t end = 0;
  };
  using Entries = std::unordered_map<std::string, Entry>;
  class Reader;

  std::unique_ptr<DataScript> buildChar(const Entry& entry) const;
  std::unique_ptr<DataScript> buildXml(const Entry& entry) const;

  std::vector<Line> _lines;
  Entries _char;
  Entries _xml;
};

}  // namespace zetnorv
