#include "MsgXML.h"

#include <cstring>

#include "ModelParts.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "ZetNorvTrace.h"

using zetnorv::isNullReference;

namespace {

bool isPrinted(const MString& name) {
  return !name.isNull() && std::strncmp(name.gchar(), "E-BOM", 5) == 0;
}

}  // namespace

MsgXML::MsgXML() { _balise = zetnorv::newSlots<BaliseXML>(_capacity); }

MsgXML::MsgXML(const MsgXML& o) {
  if (isNullReference(o) || &o == this) {
    _balise = zetnorv::newSlots<BaliseXML>(_capacity);
    return;
  }
  _capacity = o._capacity;
  _balise = zetnorv::copySlots(o._balise, o._nbBalises, o._capacity);
  if (_balise != nullptr) _nbBalises = o._nbBalises;
}

MsgXML& MsgXML::operator=(const MsgXML& o) {
  if (isNullReference(o)) return *this;
  _nbBalises = o._nbBalises;
  _capacity = o._capacity;
  _balise = o._balise;
  return *this;
}

MsgXML::~MsgXML() {
  zetnorv::releaseSlots(_balise, _nbBalises);
  _nbBalises = 0;
  _capacity = 0;
}

void MsgXML::add(const BaliseXML& balise) {
  if (isNullReference(balise)) {
    ZetNorvTrace.TraPutLN(2, "MsgXML: balise == NULL");
    return;
  }
  zetnorv::appendCopy(_balise, _nbBalises, _capacity, zetnorv::kModelGrowth, balise);
}

BaliseXML* MsgXML::getBalise(int i) const {
  return i < 0 || i >= _nbBalises ? nullptr : _balise[i];
}

BaliseXML* MsgXML::findBalise(const char* name) const {
  if (name == nullptr) {
    ZetNorvTrace.TraPutLN(2, "MsgXML: name == NULL");
    return nullptr;
  }
  for (int i = 0; i < _nbBalises; ++i) {
    if (_balise[i] == nullptr || _balise[i]->_name.compare(name)) return _balise[i];
  }
  return nullptr;
}

int MsgXML::operator==(const MsgXML& o) const {
  if (isNullReference(o)) {
    ZetNorvTrace.TraPutLN(2, "MsgXML operator == : msg == NULL");
    return 0;
  }
  if (_nbBalises != o._nbBalises) {
    ZetNorvTrace.TraPutLN(2, "Problem with _nbBalises.");
    return 0;
  }
  for (int i = 0; i < _nbBalises; ++i) {
    if (_balise[i] == nullptr || !_balise[i]->equals(o._balise[i])) {
      ZetNorvTrace.TraPutLN(2, "Problem with _balise[i]. ");
      return 0;
    }
  }
  return 1;
}

void MsgXML::print() const {
  ZetNorvTrace.TraPutLN(2, "Affichage du message XML:: ", _nbBalises);
  for (int i = 0; i < _nbBalises; ++i) {
    if (_balise[i] == nullptr) {
      ZetNorvTrace.TraPutLN(2, " RIEN DE RIEN ");
    } else if (isPrinted(_balise[i]->_name)) {
      _balise[i]->print();
    }
  }
}
