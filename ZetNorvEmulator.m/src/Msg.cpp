#include "Msg.h"

#include "NullReference.h"
#include "OwningArray.h"
#include "ZetNorvTrace.h"

using zetnorv::isNullReference;

namespace {

constexpr int kIncrement = 5;

bool sameField(const Composant* left, const Composant* right) {
  if (left != nullptr) return left->equals(right) != 0;
  ZetNorvTrace.TraPutLN(2, "Composant: &composant == NULL");
  return false;
}

}  // namespace

Msg::Msg() { _composants = zetnorv::newSlots<Composant>(_capacity); }

Msg::Msg(const Msg& o) {
  if (isNullReference(o) || &o == this) {
    _composants = zetnorv::newSlots<Composant>(_capacity);
    return;
  }
  _capacity = o._capacity;
  _composants = zetnorv::copySlots(o._composants, o._nbComposants, o._capacity);
  if (_composants != nullptr) _nbComposants = o._nbComposants;
}

Msg& Msg::operator=(const Msg& o) {
  if (isNullReference(o)) return *this;
  _nbComposants = o._nbComposants;
  _capacity = o._capacity;
  _composants = o._composants;
  return *this;
}

Msg::~Msg() {
  zetnorv::releaseSlots(_composants, _nbComposants);
  _nbComposants = 0;
  _capacity = 0;
}

void Msg::add(const Composant& comp) {
  if (isNullReference(comp)) {
    ZetNorvTrace.TraPutLN(2, "Msg: Composant == NULL");
    return;
  }
  zetnorv::appendCopy(_composants, _nbComposants, _capacity, kIncrement, comp);
}

int Msg::operator==(const Msg& o) const {
  if (isNullReference(o) || _nbComposants != o._nbComposants) return 0;
  for (int i = 0; i < _nbComposants; ++i) {
    if (!sameField(_composants[i], o._composants[i])) return 0;
  }
  return 1;
}

void Msg::print() const {
  ZetNorvTrace.TraPutLN(2, "## Message: Nombre de composant : ", _nbComposants);
  for (int i = 0; i < _nbComposants; ++i) {
    ZetNorvTrace.TraPutLN(2, "## Message: Comp: ", i);
    if (_composants[i] != nullptr) _composants[i]->print();
  }
}
