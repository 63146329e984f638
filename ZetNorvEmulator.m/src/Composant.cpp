#include "Composant.h"

#include "NullReference.h"
#include "ZetNorvTrace.h"

using zetnorv::isNullReference;

namespace {

bool holdsInteger(const MString& spec) { return spec.glength() == 1 && spec.extract(0) == 'I'; }

}  // namespace

Composant::Composant() : _spec("S") {}

Composant::Composant(const char* name, const char* buffer, int size, int type, const char* spec)
    : _name(name), _buffer(buffer, size), _size(size), _type(type), _spec(spec) {}

Composant::Composant(const Composant& o) {
  if (isNullReference(o) || &o == this) return;
  *this = o;
}

Composant& Composant::operator=(const Composant& o) {
  if (isNullReference(o)) return *this;
  _name = o._name;
  _buffer = o._buffer;
  _size = o._size;
  _type = o._type;
  _spec = o._spec;
  return *this;
}

int Composant::operator==(const Composant& o) const {
  return equals(isNullReference(o) ? nullptr : &o);
}

int Composant::equals(const Composant* o) const {
  if (o == nullptr) {
    ZetNorvTrace.TraPutLN(2, "Composant: &composant == NULL");
    return 0;
  }
  return _type == 1 && _size == o->_size && _buffer == o->_buffer ? 1 : 0;
}

void Composant::print() const {
  ZetNorvTrace.TraPutLN(2, "## Composant  Nom : ");
  _name.print();
  ZetNorvTrace.TraPutLN(2, "Taille: ", _size);
  ZetNorvTrace.TraPutLN(2, " Type ");
  _spec.print();
  if (holdsInteger(_spec)) ZetNorvTrace.TraPutLN(2, " Spec: ", _buffer.parseSpeInt());
  ZetNorvTrace.TraPutLN(2, " Buffer : ");
  _buffer.println();
}
