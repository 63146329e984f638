#include "MVar.h"

#include <iostream>
#include <string>

#include "Guard.h"
#include "NullReference.h"

using zetnorv::isNullReference;

MVar::MVar(const char* name, int value) : _value(value), _name(name) {}

MVar::MVar(const char* name) : _name(name) {}

MVar::MVar(const MVar& o) { *this = o; }

void MVar::operator=(const MVar& o) {
  if (isNullReference(o) || &o == this) return;
  _value = o._value;
  _name = o._name;
}

void MVar::set(const char* name, int value) {
  _name.set(name);
  _value = value;
}

void MVar::println() const {
  zetnorv::guarded("MVar::println", [this] {
    std::cout << "Var : ";
    _name.print();
    // As a text: a host may have left the stream in another number format.
    std::cout << " ==> " << std::to_string(_value) << std::endl;
    return S_OK;
  });
}
