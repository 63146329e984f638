#include "ScriptIndex.h"

#include "DOMString.h"
#include "KelDOMServices.h"
#include "ScriptKind.h"

namespace zetnorv {

namespace {

std::string textOf(const DOM_Element& element, const char* attribute) {
  return element.getAttribute(attribute).utf8();
}

// Tells an absent attribute from an empty one.
std::optional<std::string> optionalTextOf(const DOM_Element& element, const char* attribute) {
  const DOMString value = element.getAttribute(attribute);
  return value.isNull() ? std::nullopt : std::optional<std::string>(value.utf8());
}

const char* textOrNull(const std::optional<std::string>& text) {
  return text ? text->c_str() : nullptr;
}

}  // namespace

// Goes through the elements in document order and keeps track of which ones enclose the present
// one, so that every entry knows its lines after a single walk, however entries are nested.
class ScriptIndex::Reader {
 public:
  explicit Reader(ScriptIndex& index) : _index(index) {}

  void read(const DOM_Element& element) {
    const DOM_Node parent = element.getParentNode();
    while (!_open.empty() && _open.back().node != parent.node()) close();
    const DOMString tag = element.getTagName();
    if (tag.utf8() == "Composant") _index._lines.emplace_back(element);
    _open.push_back({element.node(), entryOf(tag.utf8(), element)});
  }

  void finish() {
    while (!_open.empty()) close();
  }

 private:
  struct Open {
    const KelXmlNode* node;
    Entry* entry;  // null for an element that is no entry, or not the first of its number
  };

  // The entry that `element` begins, if it begins one. The first of a number is the one that
  // counts.
  Entry* entryOf(const std::string& tag, const DOM_Element& element) {
    if (tag != "MessageChar" && tag != "MessageXML") return nullptr;
    Entries& entries = tag == "MessageChar" ? _index._char : _index._xml;
    const auto [place, added] = entries.try_emplace(textOf(element, "value"));
    if (!added) return nullptr;
    place->second.begin = _index._lines.size();
    return &place->second;  // a map's values stay where they are
  }

  void close() {
    if (_open.back().entry != nullptr) _open.back().entry->end = _index._lines.size();
    _open.pop_back();
  }

  ScriptIndex& _index;
  std::vector<Open> _open;
};

ScriptIndex::Line::Line(const DOM_Element& element)
    : name(textOf(element, "name")),
      compare(KelDOMServices::DOM2Int(element.getAttribute("compare"))),
      type(textOf(element, "type")),
      repeat(textOf(element, "repeat")),
      father(textOf(element, "father")),
      attributs(optionalTextOf(element, "attributs")) {
  const DOMString length = element.getAttribute("size");
  if (length.utf8().starts_with('$')) {
    sizeVar = length.utf8();
  } else {
    size = KelDOMServices::DOM2Int(length);
  }
  if (type.empty()) type = "S";
}

ScriptIndex::ScriptIndex(const DOM_NodeList& elements) {
  Reader reader(*this);
  const unsigned int count = elements.getLength();
  for (unsigned int i = 0; i < count; ++i) {
    reader.read(KelDOMServices::NodeToElement(elements.item(i)));
  }
  reader.finish();
}

std::unique_ptr<DataScript> ScriptIndex::build(int messageNumber) const {
  const std::string value = KelDOMServices::Int2DOM(messageNumber).utf8();
  if (const auto entry = _char.find(value); entry != _char.end()) return buildChar(entry->second);
  if (const auto entry = _xml.find(value); entry != _xml.end()) return buildXml(entry->second);
  return nullptr;
}

std::unique_ptr<DataScript> ScriptIndex::buildChar(const Entry& entry) const {
  auto script = std::make_unique<DataScript>(kCharacterScript);
  for (std::size_t i = entry.begin; i < entry.end; ++i) {
    const Line& line = _lines[i];
    const DataComposant composant(line.name.c_str(), line.size, textOrNull(line.sizeVar),
                                  line.compare, line.type.c_str(), line.repeat.c_str());
    script->addComposant(&composant);
  }
  return script;
}

std::unique_ptr<DataScript> ScriptIndex::buildXml(const Entry& entry) const {
  auto script = std::make_unique<DataScript>(kXmlScript);
  for (std::size_t i = entry.begin; i < entry.end; ++i) {
    const Line& line = _lines[i];
    DataBalise balise(line.name.c_str(), line.father.c_str());
    balise.setAttributs(textOrNull(line.attributs));
    script->addBalise(&balise);
  }
  return script;
}

}  // namespace zetnorv
