#include "ComparedMessage.h"

#include <new>
#include <utility>

#include "DataScript.h"
#include "Guard.h"
#include "ModelParts.h"
#include "Restructuring.h"

namespace zetnorv {

namespace {

// Appends `part` to a list that does not own it; null for one that was refused.
void appendShared(BaliseXML**& slots, int& count, int& capacity, BaliseXML* part) {
  if (growSlots(slots, count, capacity, kModelGrowth)) slots[count++] = part;
}

void disown(BaliseXML** slots, int count) {
  for (int i = 0; i < count; ++i) slots[i] = nullptr;
}

}  // namespace

ComparedMessage::~ComparedMessage() {
  for (const Tag& tag : _tags) disown(tag->_child, tag->_nbChildren);
  disown(_model._balise, _model._nbBalises);
}

long ComparedMessage::build(const char* buffer, int size, const DataScript& script,
                            CollectorErrors* collector) {
  return readTags(buffer, size, &script, *this, collector);
}

void ComparedMessage::restructure() {
  guarded("ZetNorvBuilders::restructMessage", [this] {
    fillTags(_model, [this](int parent, int c, int found) { put(parent, c, found); });
    return S_OK;
  });
}

void ComparedMessage::begin(const MString& name) {
  _name = name.gchar();
  _key.assign(_name == nullptr ? "" : _name);
  _attributs.clear();
  _children.clear();
}

void ComparedMessage::attribut(const DOMString& name, const DOMString&) {
  _attributs.push_back(name.utf8());
  _key.append(1, '\0').append(name.utf8());
}

void ComparedMessage::child(const DOMString& name) { _children.push_back(nameOnly(name.utf8())); }

void ComparedMessage::end() {
  BaliseXML* tag = nullptr;
  if (_children.empty()) {
    tag = leaf();
  } else if (Tag made = makeTag(); made != nullptr) {
    tag = _tags.emplace_back(std::move(made)).get();
    for (BaliseXML* child : _children) {
      appendShared(tag->_child, tag->_nbChildren, tag->_capacityChildren, child);
    }
  }
  appendShared(_model._balise, _model._nbBalises, _model._capacity, tag);
}

ComparedMessage::Tag ComparedMessage::makeTag() const {
  Tag tag = newPart<BaliseXML>(_name);
  if (tag == nullptr) return tag;
  for (const std::string& name : _attributs) {
    adopt(*tag, newPart<AttributXML>(name.c_str(), nullptr));
  }
  return tag;
}

BaliseXML* ComparedMessage::leaf() {
  const auto [place, isNew] = _leaves.try_emplace(_key);
  if (isNew) place->second = makeTag();
  return place->second.get();
}

BaliseXML* ComparedMessage::nameOnly(const std::string& name) {
  const auto [place, isNew] = _nameOnly.try_emplace(name);
  if (isNew) place->second = newPart<BaliseXML>(name.c_str());
  return place->second.get();
}

void ComparedMessage::put(int parent, int c, int found) {
  BaliseXML* tag = _model.getBalise(parent);
  if (found > parent) {
    tag->_child[c] = unfilled(found);
  } else if (found < parent) {
    tag->_child[c] = _model.getBalise(found);
  } else {
    Tag copy(newCopy(tag));
    _halfFilled.push_back(std::move(copy));
    tag->_child[c] = _halfFilled.back().get();
  }
}

BaliseXML* ComparedMessage::unfilled(int found) {
  const auto [place, isNew] = _unfilled.try_emplace(found);
  if (isNew) place->second.reset(newCopy(_model.getBalise(found)));
  return place->second.get();
}

}  // namespace zetnorv
