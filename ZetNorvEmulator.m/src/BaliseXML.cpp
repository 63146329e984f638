#include "BaliseXML.h"

#include <memory>
#include <new>

#include "ModelParts.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "ZetNorvTrace.h"

using zetnorv::isNullReference;

namespace {

// Traces where two tags differ and answers for their comparison.
int differs(const char* line) {
  ZetNorvTrace.TraPutLN(2, line);
  return 0;
}

template <class T>
T* elementAt(T* const* slots, int count, int i) {
  return i < 0 || i >= count ? nullptr : slots[i];
}

bool sameAttribut(const AttributXML* left, const AttributXML* right) {
  return left != nullptr && right != nullptr && *left == *right;
}

}  // namespace

BaliseXML::BaliseXML(const char* name) : _name(name) {
  _attribut = zetnorv::newSlots<AttributXML>(_capacityAttributs);
  _child = zetnorv::newSlots<BaliseXML>(_capacityChildren);
}

BaliseXML::BaliseXML(const BaliseXML& o) {
  if (isNullReference(o) || &o == this) {
    _name.set("ERROR");
    _attribut = zetnorv::newSlots<AttributXML>(_capacityAttributs);
    _child = zetnorv::newSlots<BaliseXML>(_capacityChildren);
    return;
  }
  _name = o._name;
  _hierarchie = o._hierarchie;
  _capacityAttributs = o._capacityAttributs;
  _attribut = zetnorv::copySlots(o._attribut, o._nbAttributs, o._capacityAttributs);
  if (_attribut != nullptr) _nbAttributs = o._nbAttributs;
  _capacityChildren = o._capacityChildren;
  _child = zetnorv::copySlots(o._child, o._nbChildren, o._capacityChildren);
  if (_child != nullptr) _nbChildren = o._nbChildren;
}

BaliseXML& BaliseXML::operator=(const BaliseXML& o) {
  if (isNullReference(o)) return *this;
  _name = o._name;
  _hierarchie = o._hierarchie;
  _attribut = o._attribut;
  _nbAttributs = o._nbAttributs;
  _capacityAttributs = o._capacityAttributs;
  _child = o._child;
  _nbChildren = o._nbChildren;
  _capacityChildren = o._capacityChildren;
  return *this;
}

BaliseXML::~BaliseXML() {
  zetnorv::releaseSlots(_child, _nbChildren);
  zetnorv::releaseSlots(_attribut, _nbAttributs);
  _hierarchie = 0;
}

BaliseXML* BaliseXML::getChildP(int i) const { return elementAt(_child, _nbChildren, i); }

AttributXML* BaliseXML::getAttributP(int i) const { return elementAt(_attribut, _nbAttributs, i); }

AttributXML* BaliseXML::getAttribut(const char* name) const {
  for (int i = 0; i < _nbAttributs; ++i) {
    if (_attribut[i] != nullptr && _attribut[i]->_name.compare(name)) return _attribut[i];
  }
  return nullptr;
}

void BaliseXML::addChildP(const BaliseXML& child) {
  if (isNullReference(child)) {
    ZetNorvTrace.TraPutLN(2, "BaliseXML: child == NULL");
    return;
  }
  zetnorv::appendCopy(_child, _nbChildren, _capacityChildren, zetnorv::kModelGrowth, child);
}

void BaliseXML::addAttributP(const AttributXML& attribut) {
  if (isNullReference(attribut)) {
    ZetNorvTrace.TraPutLN(2, "BaliseXML: attribut == NULL");
    return;
  }
  zetnorv::appendCopy(_attribut, _nbAttributs, _capacityAttributs, zetnorv::kModelGrowth, attribut);
}

void BaliseXML::modifChildP(int i, const BaliseXML* child) {
  if (i < 0 || i >= _nbChildren) return;
  // What is replaced goes last: `child` may be it, or this tag, which holds it.
  std::unique_ptr<BaliseXML> before(_child[i]);
  _child[i] = child == nullptr ? zetnorv::noted(new (std::nothrow) BaliseXML("ERROR"))
                               : zetnorv::newCopy(child);
}

int BaliseXML::operator==(const BaliseXML& o) const {
  return equals(isNullReference(o) ? nullptr : &o);
}

int BaliseXML::equals(const BaliseXML* o) const {
  if (o == nullptr) return differs("BaliseXML operator == : balise == NULL");
  if (_name != o->_name) return differs("Problem with _name.");
  if (_nbAttributs != o->_nbAttributs) return differs("Problem with _nbAttributs.");
  for (int i = 0; i < _nbAttributs; ++i) {
    // The "[i]" of these lines is text: readers search their traces for it.
    if (!sameAttribut(_attribut[i], o->_attribut[i])) return differs("Problem with _attribut[i].");
  }
  if (_nbChildren != o->_nbChildren) return differs("Problem with _nbChildren.");
  for (int i = 0; i < _nbChildren; ++i) {
    if (_child[i] == nullptr || !_child[i]->equals(o->_child[i])) {
      return differs("Problem with _child[i].");
    }
  }
  return 1;
}

void BaliseXML::print() const {
  ZetNorvTrace.TraPutLN(2, "################## ");
  _name.println();
  ZetNorvTrace.TraPutLN(2, " NBAttr: ", _nbAttributs);
  for (int i = 0; i < _nbAttributs; ++i) {
    if (_attribut[i] != nullptr) {
      _attribut[i]->print();
    } else {
      ZetNorvTrace.TraPutLN(2, "Attribut NULL");
    }
  }
  ZetNorvTrace.TraPutLN(2, " nb child ", _nbChildren);
  for (int i = 0; i < _nbChildren; ++i) {
    if (_child[i] != nullptr) {
      _child[i]->print();
    } else {
      // The attribute's line stands for a child as well.
      ZetNorvTrace.TraPutLN(2, "Attribut NULL");
    }
  }
}
