// One field of a character message: its bytes, and whether it takes part in comparisons. A plain
// value. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT Composant {
 public:
  // An empty field of kind "S" and type 0.
  Composant();

  // `name` and `spec` are taken up to their first '\n' or NUL; either may be null. The field holds
  // exactly `size` bytes of `buffer`, NULs and line feeds included; none when `buffer` is null or
  // `size` is below 1, while `size` itself is kept as given.
  Composant(const char* name, const char* buffer, int size, int type, const char* spec);

  // A copy of everything. A copy of itself, or of a null reference, is empty: it has no kind
  // either.
  Composant(const Composant& o);

  // Copies member by member, so that assigning a field to itself empties its texts as MString does.
  // A null reference changes nothing.
  Composant& operator=(const Composant& o);
  ~Composant() = default;

  // 1 when this field's type is 1, both sizes are equal and the other's bytes begin with this
  // field's, else 0. One-sided on purpose: the other's type, the names and the kinds are not looked
  // at, and a field of another type is unequal even to itself: comparison scripts switch fields off
  // that way. A null reference is traced and unequal.
  int operator==(const Composant& o) const;
  // The same; `o` may be null.
  int equals(const Composant* o) const;

  // Writes the texts to standard output and the numbers to the trace.
  void print() const;

  MString _name;
  MString _buffer;
  int _size = 0;  // bytes, as given
  int _type = 0;  // 1: compared
  MString _spec;  // "S" (text) or "I" (the first four bytes are a little-endian integer)
};
