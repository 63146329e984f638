// One field of a character message, as a comparison script describes it. A plain value. Nothing is
// thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT DataComposant {
 public:
  // The texts are taken up to their first '\n' or NUL; each may be null. `size` is kept as given,
  // also when it is negative.
  DataComposant(const char* name, int size, const char* sizeVar, int compare, const char* type,
                const char* repeat);

  // A copy of itself, or of a null reference, is empty.
  DataComposant(const DataComposant& o);
  // Assigning from itself or from a null reference changes nothing.
  DataComposant& operator=(const DataComposant& o);
  ~DataComposant();

  MString name;     // one that begins with "$" also declares a variable
  int size = 0;     // bytes; 0 when a variable gives the length
  MString sizeVar;  // the variable's name, its "$" included; empty when `size` counts
  int compare = 0;  // 1: takes part in the comparison
  MString type;     // "S" (text) or "I" (integer); only printing looks at it
  MString repeat;   // as written; nothing reads it

  static int _nbInstances;  // objects alive in this process
};
