// The comparison script of one message number: the fields of a character message (kind "CHAR") or
// the tags of an XML message (kind "XML_"), in the order of the script file. It owns them. Nothing
// is thrown. Not synchronised.
#pragma once

#include "DataBalise.h"
#include "DataComposant.h"
#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT DataScript {
 public:
  // No entries, room for 5 of the kind. With any other text than "CHAR" or "XML_" the script has no
  // list and a capacity of 0, and no entry can be added. Traces how many scripts were alive before.
  DataScript(const char* type);

  // A deep copy; not traced. A copy of itself, or of a null reference, is empty and of no kind.
  DataScript(const DataScript& o);
  // A deep copy. Assigning from itself or from a null reference changes nothing.
  DataScript& operator=(const DataScript& o);
  ~DataScript();

  // Append a copy; the caller keeps its object. A full list grows by 5.
  //
  // Return S_OK, or E_FAIL with a trace line for a null argument and for a script of the other
  // kind.
  long addComposant(const DataComposant* composant);
  long addBalise(const DataBalise* balise);

  // Number of entries.
  int getSize() const { return _size; }

  // The entry at the 0-based index `i`; null outside the list and for a script of the other kind.
  // Borrowed: valid until this script changes or goes.
  DataComposant* getComposant(int i) const;
  DataBalise* getBalise(int i) const;

  // 1 when an entry allows the tag `name` inside the tag `father`, else 0; 0 for a "CHAR" script.
  // The entry's texts stand left of MString's one-sided ==: an entry "Ref" inside "Doc" also allows
  // "Reference" inside "Document", and an entry without a father allows every one.
  int hasBalise(MString father, MString name) const;

  MString type;
  DataComposant** _composants = nullptr;  // kind "CHAR": _capacity slots
  DataBalise** _balises = nullptr;        // kind "XML_": _capacity slots
  int _size = 0;
  int _capacity = 0;

  static int _nbInstances;  // objects alive in this process
};
