// The name of an attribute that a comparison script wants compared. A plain value. Nothing is
// thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT DataAttribut {
 public:
  // `attributName` is taken up to its first '\n' or NUL and may be null.
  DataAttribut(const char* attributName);

  // A copy of itself, or of a null reference, has no name and the value 0.
  DataAttribut(const DataAttribut& o);
  // Assigning from itself or from a null reference changes nothing.
  DataAttribut& operator=(const DataAttribut& o);
  ~DataAttribut();

  MString name;
  int value = 0;  // nothing reads it

  static int _nbInstances;  // objects alive in this process
};
