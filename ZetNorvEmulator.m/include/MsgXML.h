// An XML message: its top-level tags, in order. It owns them. Nothing is thrown. Not synchronised.
#pragma once

#include "BaliseXML.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT MsgXML {
 public:
  // No tags, room for 5.
  MsgXML();

  // A deep copy. A copy of itself, or of a null reference, has no tags.
  MsgXML(const MsgXML& o);

  // Shares the tags of `o` and frees nothing: shallow on purpose, so the two must not both be
  // destroyed as they are.
  MsgXML& operator=(const MsgXML& o);
  ~MsgXML();

  // Appends a deep copy, also of a tag of its own. A full message gets room for 5 more. A null
  // reference is traced and not added.
  void add(const BaliseXML& balise);

  int getNbBalises() const { return _nbBalises; }

  // The tag at the 0-based index `i`; null outside the list. Borrowed: valid until this message
  // changes or goes.
  BaliseXML* getBalise(int i) const;

  // The first tag whose name is a beginning of `name`; null when there is none. An empty slot ends
  // the search with null. A null `name` is traced and finds nothing. Borrowed as above.
  BaliseXML* findBalise(const char* name) const;

  // 1 when both have the same number of tags and each tag of this message equals (see BaliseXML)
  // the other's at its place, else 0 with trace lines that tell where.
  int operator==(const MsgXML& o) const;

  // Prints the tags whose name begins with "E-BOM" and no others: the rest of a message is too long
  // for a console. An empty slot is a trace line.
  void print() const;

  // Does nothing; kept for the hosts that call it.
  void writeLog() const {}

  int _nbBalises = 0;
  int _capacity = 5;
  BaliseXML** _balise = nullptr;  // _capacity slots; one is null when memory was refused
};
