// An attribute of a tag: a name and a value. A plain value. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT AttributXML {
 public:
  // No name, no value.
  AttributXML() = default;

  // Both are taken up to their first '\n' or NUL; either may be null.
  AttributXML(const char* name, const char* value);

  // A copy of itself, or of a null reference, is empty.
  AttributXML(const AttributXML& o);

  // Copies name and value, so that assigning an attribute to itself empties it as MString does. A
  // null reference changes nothing.
  AttributXML& operator=(const AttributXML& o);
  ~AttributXML() = default;

  MString getValue() const { return _value; }

  // 1 when this name is a beginning of the other's, else 0; also 0 for a null reference. Values are
  // never compared: they hold identifiers that differ from run to run.
  int operator==(const AttributXML& o) const;

  // Writes name, two blanks, value and a line end to standard output.
  void print() const;

  MString _name;
  MString _value;
};
