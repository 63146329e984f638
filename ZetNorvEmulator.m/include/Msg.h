// A character message: fields in the order in which they lie in the message. It owns its fields.
// Nothing is thrown. Not synchronised.
#pragma once

#include "Composant.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT Msg {
 public:
  // No fields, room for 5.
  Msg();

  // A deep copy. A copy of itself, or of a null reference, has no fields.
  Msg(const Msg& o);

  // Shares the fields of `o` and frees nothing: shallow on purpose, so the two must not both be
  // destroyed as they are.
  Msg& operator=(const Msg& o);
  ~Msg();

  // Appends a deep copy, also of a field of its own. A full message gets room for 5 more. A null
  // reference is traced and not added.
  void add(const Composant& comp);

  // 1 when both have the same number of fields and each field of this message equals (see
  // Composant) the other's at its place, else 0. A missing field is traced and unequal.
  int operator==(const Msg& o) const;

  // Prints every field, with its index as a trace line before it.
  void print() const;

  int _nbComposants = 0;
  int _capacity = 5;
  Composant** _composants = nullptr;  // _capacity slots; one is null when memory was refused
};
