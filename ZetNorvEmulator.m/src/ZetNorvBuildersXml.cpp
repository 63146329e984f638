// XML messages: the tags that a script names, with their attributes and the names of their
// children.
#include <memory>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "CollectorErrors.h"
#include "DOM_Document.h"
#include "DataScript.h"
#include "Guard.h"
#include "KelDOMServices.h"
#include "ModelParts.h"
#include "MsgXML.h"
#include "NullReference.h"
#include "TagBuilding.h"
#include "TextOf.h"
#include "XmlText.h"
#include "ZetNorvBuilders.h"

using zetnorv::textOf;
using zetnorv::Values;

namespace {

constexpr zetnorv::XmlProblems kProblems = {
    1, "Out ... CreateMemBufInputSourceFromOstr", "Out ... XMLParse",
    "Before KelXMLParseServices::XMLParse ", "After KelXMLParseServices::XMLParse"};

void report(CollectorErrors* collector, const char* name, const char* details) {
  if (collector != nullptr) collector->addError(0, name, details);
}

// The elements that the entries of a script name, by name and in document order, found in one walk
// over the document.
class NamedElements {
 public:
  NamedElements(const DOM_Document& document, const DataScript& script) {
    for (int i = 0; i < script.getSize(); ++i) {
      if (const DataBalise* entry = script.getBalise(i)) _elements[textOf(entry->name)];
    }
    const DOM_NodeList all = document.getElementsByTagName("*");
    const unsigned int count = all.getLength();
    for (unsigned int i = 0; i < count; ++i) {
      const DOM_Node node = all.item(i);
      const auto named = _elements.find(node.getNodeName().utf8());
      if (named != _elements.end()) named->second.push_back(KelDOMServices::NodeToElement(node));
    }
  }

  const std::vector<DOM_Element>& named(const MString& name) const {
    return _elements.at(textOf(name));
  }

 private:
  std::unordered_map<std::string, std::vector<DOM_Element>> _elements;
};

// A new part of a model; null when it is refused.
template <class Part, class... Arguments>
std::unique_ptr<Part> newPart(Arguments... arguments) {
  return std::unique_ptr<Part>(new (std::nothrow) Part(arguments...));
}

// Makes the tags of one entry of the script.
class TagMaker {
 public:
  TagMaker(const DataBalise& entry, CollectorErrors* collector, Values values)
      : _entry(entry), _collector(collector), _values(values) {
    for (int i = 0; i < entry._nbAttributs; ++i) {
      if (entry._attributs[i] != nullptr)
        _attributs.emplace_back(textOf(entry._attributs[i]->name));
    }
  }

  // Adds the tag of `element` to `msg`.
  void addTo(MsgXML& msg, const DOM_Element& element) const {
    auto tag = newPart<BaliseXML>(_entry.name.gchar());
    if (tag != nullptr) fill(*tag, element);
    zetnorv::adopt(msg, std::move(tag));
  }

 private:
  void fill(BaliseXML& tag, const DOM_Element& element) const {
    for (const DOMString& name : _attributs) addAttribut(element, name, tag);
    for (DOM_Node node = element.getFirstChild(); !node.isNull(); node = node.getNextSibling()) {
      zetnorv::adopt(tag, newPart<BaliseXML>(node.getNodeName().utf8().c_str()));
    }
  }

  void addAttribut(const DOM_Element& element, const DOMString& name, BaliseXML& tag) const {
    const DOMString value = element.getAttribute(name);
    if (value.length() == 0) {
      report(_collector, "No Found AttributXML", name.utf8().c_str());
      return;
    }
    const char* kept = _values == Values::kKept ? value.utf8().c_str() : nullptr;
    zetnorv::adopt(tag, newPart<AttributXML>(name.utf8().c_str(), kept));
    if (_collector != nullptr) {
      ZetNorvBuilders::checkFFFFF(value.utf8().c_str(), _collector);
    }
  }

  const DataBalise& _entry;
  CollectorErrors* _collector;
  Values _values;
  std::vector<DOMString> _attributs;
};

void addTags(const std::vector<DOM_Element>& elements, const DataBalise& entry, MsgXML& msg,
             CollectorErrors* collector, Values values) {
  if (elements.empty()) report(collector, "No Found BaliseXML", textOf(entry.name));
  const TagMaker maker(entry, collector, values);
  for (const DOM_Element& element : elements) maker.addTo(msg, element);
}

long takeTags(const DOM_Document& document, const DataScript& script, MsgXML& msg,
              CollectorErrors* collector, Values values) {
  const NamedElements elements(document, script);
  for (int i = 0; i < script.getSize(); ++i) {
    const DataBalise* entry = script.getBalise(i);
    if (entry == nullptr) {
      ZetNorvTrace.TraPutLN(2, "ZetNorvBuilders::builderMessage balise Not Found");
      return E_FAIL;
    }
    addTags(elements.named(entry->name), *entry, msg, collector, values);
  }
  return S_OK;
}

long parseMessage(const char* buffer, int size, DOM_Document& document) {
  ZetNorvTrace.TraPutLN(2, "Before CreateMemBufInputSourceFromOstr ");
  const zetnorv::XmlPayload payload(buffer, size);
  return zetnorv::parseXml(payload.text, payload.size, "msg builderMessage", kProblems, document);
}

}  // namespace

long zetnorv::buildTags(const char* buffer, int size, const DataScript* script, MsgXML& msg,
                        CollectorErrors* collector, Values values) {
  if (buffer == nullptr) {
    ZetNorvTrace.TraPutLN(2, "builderMessage: tmp == NULL");
    return E_FAIL;
  }
  if (isNullReference(msg)) {
    ZetNorvTrace.TraPutLN(2, "builderMessage: msg == NULL");
    return E_FAIL;
  }
  return guarded("ZetNorvBuilders::builderMessage", [&] {
    DOM_Document document;
    if (parseMessage(buffer, size, document) != S_OK) return E_FAIL;
    ZetNorvTrace.TraPutLN(2, "Before datascript.getSize() ");
    return script == nullptr ? E_FAIL : takeTags(document, *script, msg, collector, values);
  });
}

long ZetNorvBuilders::builderMessage(const char* buffer, int size, DataScript* script, MsgXML& msg,
                                     CollectorErrors* collector) {
  return zetnorv::buildTags(buffer, size, script, msg, collector, Values::kKept);
}
