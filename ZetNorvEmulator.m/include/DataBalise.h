// One tag of an XML message that takes part in a comparison: its name, the tag that must enclose
// it, and the names of the attributes to compare. It owns these. Nothing is thrown. Not
// synchronised.
#pragma once

#include "DataAttribut.h"
#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT DataBalise {
 public:
  // No attribute names, room for 15. The texts are taken up to their first '\n' or NUL; each may be
  // null.
  DataBalise(const char* name, const char* father);

  // A deep copy. A copy of itself, or of a null reference, is empty.
  DataBalise(const DataBalise& o);
  // A deep copy. Assigning from itself or from a null reference changes nothing.
  DataBalise& operator=(const DataBalise& o);
  ~DataBalise();

  // Appends the names in `list`. Every single blank ends a name, and nothing else does: two blanks
  // in a row have an empty name between them, a trailing blank has one behind it, and an empty list
  // is one empty name. A null list adds nothing. Room is made for names beyond the 15th.
  void setAttributs(const char* list);

  MString name;
  MString father;
  DataAttribut** _attributs = nullptr;  // _capacity slots; one is null when memory was refused
  int _nbAttributs = 0;
  int _capacity = 15;

  static int _nbInstances;  // objects alive in this process
};
