// XML messages: the tags that a script names, with their attributes and the names of their
// children.
#include <memory>
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
#include "ScriptKind.h"
#include "TagReading.h"
#include "TextOf.h"
#include "XmlText.h"
#include "ZetNorvBuilders.h"

using zetnorv::adopt;
using zetnorv::newPart;
using zetnorv::TagSink;
using zetnorv::textOf;

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

// Hands on the tags of one entry of the script.
class TagReader {
 public:
  TagReader(const DataBalise& entry, TagSink& sink, CollectorErrors* collector)
      : _entry(entry), _sink(sink), _collector(collector) {
    for (int i = 0; i < entry._nbAttributs; ++i) {
      if (entry._attributs[i] != nullptr)
        _attributs.emplace_back(textOf(entry._attributs[i]->name));
    }
  }

  void read(const DOM_Element& element) const {
    _sink.begin(_entry.name);
    for (const DOMString& name : _attributs) readAttribut(element, name);
    for (DOM_Node node = element.getFirstChild(); !node.isNull(); node = node.getNextSibling()) {
      _sink.child(node.getNodeName());
    }
    _sink.end();
  }

 private:
  void readAttribut(const DOM_Element& element, const DOMString& name) const {
    const DOMString value = element.getAttribute(name);
    if (value.length() == 0) {
      report(_collector, "No Found AttributXML", name.utf8().c_str());
      return;
    }
    _sink.attribut(name, value);
    if (_collector != nullptr) ZetNorvBuilders::checkFFFFF(value.utf8().c_str(), _collector);
  }

  const DataBalise& _entry;
  TagSink& _sink;
  CollectorErrors* _collector;
  std::vector<DOMString> _attributs;
};

void readEntry(const std::vector<DOM_Element>& elements, const DataBalise& entry, TagSink& sink,
               CollectorErrors* collector) {
  if (elements.empty()) report(collector, "No Found BaliseXML", textOf(entry.name));
  const TagReader reader(entry, sink, collector);
  for (const DOM_Element& element : elements) reader.read(element);
}

long readDocument(const DOM_Document& document, const DataScript& script, TagSink& sink,
                  CollectorErrors* collector) {
  const NamedElements elements(document, script);
  const bool names = zetnorv::isOfKind(script.type, zetnorv::kXmlScript);
  for (int i = 0; i < script.getSize(); ++i) {
    const DataBalise* entry = names ? script.getBalise(i) : nullptr;
    if (entry == nullptr) {
      ZetNorvTrace.TraPutLN(2, "ZetNorvBuilders::builderMessage balise Not Found");
      return E_FAIL;
    }
    readEntry(elements.named(entry->name), *entry, sink, collector);
  }
  return S_OK;
}

long parseMessage(const char* buffer, int size, DOM_Document& document) {
  ZetNorvTrace.TraPutLN(2, "Before CreateMemBufInputSourceFromOstr ");
  const zetnorv::XmlPayload payload(buffer, size);
  return zetnorv::parseXml(payload.text, payload.size, "msg builderMessage", kProblems, document);
}

// Makes the model that hosts know, every part of it an object of its own.
class ModelMaker : public TagSink {
 public:
  explicit ModelMaker(MsgXML& msg) : _msg(msg) {}

  void begin(const MString& name) override { _tag = newPart<BaliseXML>(name.gchar()); }

  void attribut(const DOMString& name, const DOMString& value) override {
    if (_tag == nullptr) return;  // refused
    adopt(*_tag, newPart<AttributXML>(name.utf8().c_str(), value.utf8().c_str()));
  }

  void child(const DOMString& name) override {
    if (_tag != nullptr) adopt(*_tag, newPart<BaliseXML>(name.utf8().c_str()));
  }

  void end() override { adopt(_msg, std::move(_tag)); }

 private:
  MsgXML& _msg;
  std::unique_ptr<BaliseXML> _tag;
};

}  // namespace

long zetnorv::readTags(const char* buffer, int size, const DataScript* script, TagSink& sink,
                       CollectorErrors* collector) {
  return guarded("ZetNorvBuilders::builderMessage", [&] {
    DOM_Document document;
    if (parseMessage(buffer, size, document) != S_OK) return E_FAIL;
    ZetNorvTrace.TraPutLN(2, "Before datascript.getSize() ");
    return script == nullptr ? E_FAIL : readDocument(document, *script, sink, collector);
  });
}

long ZetNorvBuilders::builderMessage(const char* buffer, int size, DataScript* script, MsgXML& msg,
                                     CollectorErrors* collector) {
  if (buffer == nullptr) {
    ZetNorvTrace.TraPutLN(2, "builderMessage: tmp == NULL");
    return E_FAIL;
  }
  if (zetnorv::isNullReference(msg)) {
    ZetNorvTrace.TraPutLN(2, "builderMessage: msg == NULL");
    return E_FAIL;
  }
  ModelMaker maker(msg);
  return zetnorv::readTags(buffer, size, script, maker, collector);
}
