#include "DataAttribut.h"

#include "NullReference.h"

int DataAttribut::_nbInstances = 0;

DataAttribut::DataAttribut(const char* attributName) : name(attributName) { ++_nbInstances; }

DataAttribut::DataAttribut(const DataAttribut& o) {
  ++_nbInstances;
  *this = o;
}

DataAttribut& DataAttribut::operator=(const DataAttribut& o) {
  if (zetnorv::isNullReference(o) || &o == this) return *this;
  name = o.name;
  value = o.value;
  return *this;
}

DataAttribut::~DataAttribut() { --_nbInstances; }
