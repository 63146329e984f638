#include "DataScript.h"

#include "KelLib.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "ScriptKind.h"
#include "ZetNorvTrace.h"

namespace {

constexpr int kIncrement = 5;

long refuse(const char* line) {
  ZetNorvTrace.TraPutLN(2, line);
  return E_FAIL;
}

}  // namespace

int DataScript::_nbInstances = 0;

DataScript::DataScript(const char* kind) : type(kind) {
  ZetNorvTrace.TraPutLN(2, "ZetNorvScript_Pool: ", _nbInstances);
  ++_nbInstances;
  if (zetnorv::isOfKind(type, zetnorv::kCharacterScript)) {
    _capacity = kIncrement;
    _composants = zetnorv::newSlots<DataComposant>(_capacity);
  } else if (zetnorv::isOfKind(type, zetnorv::kXmlScript)) {
    _capacity = kIncrement;
    _balises = zetnorv::newSlots<DataBalise>(_capacity);
  }
}

DataScript::DataScript(const DataScript& o) {
  ++_nbInstances;
  *this = o;
}

DataScript& DataScript::operator=(const DataScript& o) {
  if (zetnorv::isNullReference(o) || &o == this) return *this;
  zetnorv::releaseSlots(_composants, _size);
  zetnorv::releaseSlots(_balises, _size);
  type = o.type;
  if (o._composants != nullptr) {
    _composants = zetnorv::copySlots(o._composants, o._size, o._capacity);
  }
  if (o._balises != nullptr) _balises = zetnorv::copySlots(o._balises, o._size, o._capacity);
  _size = _composants == nullptr && _balises == nullptr ? 0 : o._size;
  _capacity = o._capacity;
  return *this;
}

DataScript::~DataScript() {
  zetnorv::releaseSlots(_composants, _size);
  zetnorv::releaseSlots(_balises, _size);
  --_nbInstances;
}

long DataScript::addComposant(const DataComposant* composant) {
  if (composant == nullptr) return refuse("DataScript: DataComposant == NULL");
  if (_composants == nullptr) return refuse("DataScript: no list of DataComposant");
  zetnorv::appendCopy(_composants, _size, _capacity, kIncrement, *composant);
  return S_OK;
}

long DataScript::addBalise(const DataBalise* balise) {
  // The line names the other class; those who search their traces know it so.
  if (balise == nullptr) return refuse("DataBalise: DataComposant == NULL");
  if (_balises == nullptr) return refuse("DataScript: no list of DataBalise");
  zetnorv::appendCopy(_balises, _size, _capacity, kIncrement, *balise);
  return S_OK;
}

DataComposant* DataScript::getComposant(int i) const {
  return _composants == nullptr || i < 0 || i >= _size ? nullptr : _composants[i];
}

DataBalise* DataScript::getBalise(int i) const {
  return _balises == nullptr || i < 0 || i >= _size ? nullptr : _balises[i];
}

int DataScript::hasBalise(MString father, MString name) const {
  for (int i = 0; i < _size; ++i) {
    const DataBalise* entry = getBalise(i);
    if (entry != nullptr && entry->name == name && entry->father == father) return 1;
  }
  return 0;
}
