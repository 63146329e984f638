#include "Collector.h"

#include "NullReference.h"
#include "OwningArray.h"
#include "ZetNorvTrace.h"

using zetnorv::isNullReference;

namespace {

constexpr int kIncrement = 1;

}  // namespace

Collector::Collector() { _vars = zetnorv::newSlots<MVar>(_capacity); }

Collector::Collector(const Collector& o) : Collector() { *this = o; }

Collector& Collector::operator=(const Collector& o) {
  if (isNullReference(o) || &o == this) return *this;
  MVar** copies = zetnorv::copySlots(o._vars, o._nbVars, o._capacity);
  if (copies == nullptr) return *this;
  zetnorv::releaseSlots(_vars, _nbVars);
  _vars = copies;
  _nbVars = o._nbVars;
  _capacity = o._capacity;
  return *this;
}

Collector::~Collector() {
  zetnorv::releaseSlots(_vars, _nbVars);
  _nbVars = 0;
  _capacity = 0;
}

void Collector::add(const MVar& v) {
  if (isNullReference(v)) {
    ZetNorvTrace.TraPutLN(2, "Collector: var == NULL");
    return;
  }
  zetnorv::appendCopy(_vars, _nbVars, _capacity, kIncrement, v);
}

int Collector::find(MString name) const {
  if (name.isNull()) {
    ZetNorvTrace.TraPutLN(2, "Collector: name == NULL");
    return 0;
  }
  for (int i = 0; i < _nbVars; ++i) {
    if (_vars[i] != nullptr && _vars[i]->_name == name) return _vars[i]->_value;
  }
  return 0;
}

void Collector::print() const {
  for (int i = 0; i < _nbVars; ++i) {
    if (_vars[i] != nullptr) _vars[i]->println();
  }
}
