#include "DataComposant.h"

#include "NullReference.h"

int DataComposant::_nbInstances = 0;

DataComposant::DataComposant(const char* fieldName, int fieldSize, const char* variable,
                             int comparison, const char* kind, const char* repetition)
    : name(fieldName),
      size(fieldSize),
      sizeVar(variable),
      compare(comparison),
      type(kind),
      repeat(repetition) {
  ++_nbInstances;
}

DataComposant::DataComposant(const DataComposant& o) {
  ++_nbInstances;
  *this = o;
}

DataComposant& DataComposant::operator=(const DataComposant& o) {
  if (zetnorv::isNullReference(o) || &o == this) return *this;
  name = o.name;
  size = o.size;
  sizeVar = o.sizeVar;
  compare = o.compare;
  type = o.type;
  repeat = o.repeat;
  return *this;
}

DataComposant::~DataComposant() { --_nbInstances; }
