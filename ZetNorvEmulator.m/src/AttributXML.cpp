#include "AttributXML.h"

#include <iostream>

#include "Guard.h"
#include "NullReference.h"

using zetnorv::isNullReference;

AttributXML::AttributXML(const char* name, const char* value) : _name(name), _value(value) {}

AttributXML::AttributXML(const AttributXML& o) {
  if (isNullReference(o) || &o == this) return;
  *this = o;
}

AttributXML& AttributXML::operator=(const AttributXML& o) {
  if (isNullReference(o)) return *this;
  _name = o._name;
  _value = o._value;
  return *this;
}

int AttributXML::operator==(const AttributXML& o) const {
  if (isNullReference(o)) return 0;
  return _name == o._name;
}

void AttributXML::print() const {
  zetnorv::guarded("AttributXML::print", [this] {
    _name.print();
    std::cout << "  ";
    _value.println();
    return S_OK;
  });
}
