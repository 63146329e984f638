// A list of named integers, in the order in which they were added. It owns them. Nothing is thrown.
// Not synchronised.
#pragma once

#include "MString.h"
#include "MVar.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT Collector {
 public:
  // No variables, room for 2.
  Collector();

  // Deep copies. A copy of itself, or of a null reference, has no variables; assigning from either
  // changes nothing.
  Collector(const Collector& o);
  Collector& operator=(const Collector& o);
  ~Collector();

  // Appends a deep copy, also of a variable of its own. A full list gets room for 1 more. A null
  // reference is traced and not added.
  void add(const MVar& v);

  // Returns the value of the first variable whose name is a beginning of `name`, or 0 when there is
  // none. So "LG" is found for "LGTOT", and a variable without a name for everything: scripts rely
  // on the order. A null string is traced and finds nothing.
  int find(MString name) const;

  // Writes one line a variable to standard output, as MVar::println does.
  void print() const;

  MVar** _vars = nullptr;  // _capacity slots; one is null when memory was refused
  int _nbVars = 0;
  int _capacity = 2;
};
