// Character messages, and the checks of values and of the hierarchy. What reads XML stands in
// ZetNorvBuildersXml.cpp, what completes its model in ZetNorvBuildersRestruct.cpp, and what takes
// identifiers out of requests in ZetNorvBuildersIdentifiers.cpp.
#include "ZetNorvBuilders.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Collector.h"
#include "CollectorErrors.h"
#include "DataScript.h"
#include "Guard.h"
#include "Msg.h"
#include "MsgXML.h"
#include "ScriptKind.h"
#include "TextOf.h"

using zetnorv::guarded;
using zetnorv::textOf;

namespace {

constexpr int kVariableBytes = 4;
// A variable above this is taken for something else than a length, and replaced.
constexpr int kLongestVariableField = 100;
constexpr int kReplacementLength = 4;

// The pairs of F that a value may hold without being reported.
constexpr int kHarmlessPairs = 2;

// Cuts one message, from its first byte on.
class MessageCutter {
 public:
  MessageCutter(const char* buffer, int size) : _buffer(buffer), _size(size) {}

  bool atEnd() const { return _offset >= _size; }

  // Takes the field that `entry` describes at the present place.
  Composant take(const DataComposant& entry) {
    if (entry.name.extract(0) == '$') declareVariable(entry);
    const int length = std::min(lengthOf(entry), _size - _offset);
    const char* bytes = _buffer + _offset;
    _offset = std::max(0, _offset + length);
    return Composant(entry.name.gchar(), bytes, length, entry.compare, entry.type.gchar());
  }

 private:
  void declareVariable(const DataComposant& entry) {
    const bool complete = _size - _offset >= kVariableBytes;
    const int value = complete ? MString(_buffer + _offset, kVariableBytes).parseSpeInt() : 0;
    ZetNorvTrace.TraPutLN(2, "Ajout d'une variable.");
    _variables.add(MVar(entry.name.gchar(), value));
  }

  int lengthOf(const DataComposant& entry) {
    if (entry.sizeVar.glength() == 0) return entry.size;
    const int length = _variables.find(entry.sizeVar);
    return length > kLongestVariableField ? kReplacementLength : length;
  }

  const char* _buffer;
  int _size;
  int _offset = 0;  // never outside 0 to _size
  Collector _variables;
};

std::unique_ptr<Msg> cutMessage(const char* buffer, int size, const DataScript& script) {
  auto msg = std::make_unique<Msg>();
  MessageCutter cutter(buffer, size);
  const bool cuts = zetnorv::isOfKind(script.type, zetnorv::kCharacterScript);
  for (int i = 0; i < script.getSize() && !cutter.atEnd(); ++i) {
    const DataComposant* entry = cuts ? script.getComposant(i) : nullptr;
    if (entry == nullptr) {
      ZetNorvTrace.TraPutLN(2, "builderMessage: dc Not Found");
      return nullptr;
    }
    msg->add(cutter.take(*entry));
  }
  return msg;
}

// Number of places where the character `f` follows itself.
int pairsOf(char f, std::string_view text) {
  int pairs = 0;
  for (std::size_t k = 1; k < text.size(); ++k) {
    if (text[k - 1] == f && text[k] == f) ++pairs;
  }
  return pairs;
}

// What a script allows inside the tags of one name: DataScript::hasBalise for one father and many
// children.
class AllowedChildren {
 public:
  AllowedChildren(const DataScript& script, const MString& father) {
    for (int i = 0; i < script.getSize(); ++i) {
      const DataBalise* entry = script.getBalise(i);
      if (entry != nullptr && entry->father == father) _entries.push_back(entry);
    }
  }

  bool has(const MString& name) const {
    return std::any_of(_entries.begin(), _entries.end(),
                       [&](const DataBalise* entry) { return entry->name == name; });
  }

 private:
  std::vector<const DataBalise*> _entries;
};

// The allowed children by father, each looked up once.
class Hierarchy {
 public:
  explicit Hierarchy(const DataScript& script) : _script(script) {}

  const AllowedChildren& in(const MString& father) {
    return _fathers.try_emplace(textOf(father), _script, father).first->second;
  }

 private:
  const DataScript& _script;
  std::unordered_map<std::string, AllowedChildren> _fathers;
};

void checkChildren(const BaliseXML& parent, const AllowedChildren& allowed,
                   CollectorErrors& collector) {
  for (int i = 0; i < parent.getNbChildren(); ++i) {
    const BaliseXML* child = parent.getChildP(i);
    if (child == nullptr || allowed.has(child->_name)) continue;
    const std::string pair = std::string(textOf(child->_name)) + textOf(parent._name);
    collector.addError(10, "Error in hierarchy", pair.c_str());
  }
}

}  // namespace

Msg* ZetNorvBuilders::builderMessage(const char* buffer, int size, DataScript* script,
                                     CollectorErrors*) {
  if (buffer == nullptr) {
    ZetNorvTrace.TraPutLN(2, "builderMessage: tmp == NULL");
    return nullptr;
  }
  if (script == nullptr) return nullptr;
  Msg* msg = nullptr;
  guarded("ZetNorvBuilders::builderMessage", [&] {
    msg = cutMessage(buffer, size, *script).release();
    return S_OK;
  });
  return msg;
}

void ZetNorvBuilders::checkFather(MsgXML* msg, DataScript* script, CollectorErrors* collector) {
  if (msg == nullptr || script == nullptr || collector == nullptr) return;
  guarded("ZetNorvBuilders::checkFather", [&] {
    Hierarchy hierarchy(*script);
    for (int i = 0; i < msg->getNbBalises(); ++i) {
      const BaliseXML* parent = msg->getBalise(i);
      if (parent != nullptr) checkChildren(*parent, hierarchy.in(parent->_name), *collector);
    }
    return S_OK;
  });
}

void ZetNorvBuilders::checkFFFFF(const char* str, CollectorErrors* collect) {
  if (str == nullptr || collect == nullptr) {
    ZetNorvTrace.TraPutLN(2, "checkFFFFF: str == NULL || collect == NULL");
    return;
  }
  if (pairsOf('F', str) + pairsOf('f', str) > kHarmlessPairs) {
    collect->addError(10, "Problem value FFFFF... ", str);
  }
}
