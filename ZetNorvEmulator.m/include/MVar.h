// A named integer. A plain value. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT MVar {
 public:
  // No name, value 0.
  MVar() = default;

  // `name` is taken up to its first '\n' or NUL; null gives an empty name.
  MVar(const char* name, int value);
  // Value 0.
  MVar(const char* name);

  // A copy of itself, or of a null reference, has no name and the value 0.
  MVar(const MVar& o);
  // Assigning from itself or from a null reference changes nothing.
  void operator=(const MVar& o);
  ~MVar() = default;

  int getValue() const { return _value; }
  MString getName() const { return _name; }

  // Replaces both; `name` is taken as in the constructors.
  void set(const char* name, int value);

  // Writes the line "Var : <name> ==> <value>" to standard output.
  void println() const;

  int _value = 0;
  MString _name;
};
