// A tag of an XML message: a name, attributes and child tags. It owns both, recursively.
//
// Copying, comparing, printing and destroying recurse: the depth of a tree is bounded by the
// caller's stack. Names are compared by their beginnings throughout: a stored name matches every
// text that it is a beginning of, and an empty one matches all. Nothing is thrown. Not
// synchronised.
#pragma once

#include "AttributXML.h"
#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT BaliseXML {
 public:
  // No attributes, no children, room for 2 of each. `name` is taken up to its first '\n' or NUL and
  // may be null.
  BaliseXML(const char* name);

  // A deep copy. A copy of itself, or of a null reference, is an empty tag named "ERROR".
  BaliseXML(const BaliseXML& o);

  // Copies the name and shares attributes and children, freeing nothing: shallow on purpose, so the
  // two must not both be destroyed as they are. Assigning a tag to itself empties its name, as
  // MString does. A null reference changes nothing.
  BaliseXML& operator=(const BaliseXML& o);
  ~BaliseXML();

  MString getName() const { return _name; }
  int getHierarchie() const { return _hierarchie; }
  int getNbAttributs() const { return _nbAttributs; }
  int getNbChildren() const { return _nbChildren; }

  // The child or attribute at the 0-based index `i`; null outside the list. Borrowed: valid until
  // this tag changes or goes.
  BaliseXML* getChildP(int i) const;
  AttributXML* getAttributP(int i) const;

  // The first attribute whose name is a beginning of `name`; null when there is none and for a null
  // `name`. Borrowed as above.
  AttributXML* getAttribut(const char* name) const;

  // Append a deep copy, also of this tag or of an element of its own. A full list gets room for 5
  // more. A null reference is traced and not added.
  void addChildP(const BaliseXML& child);
  void addAttributP(const AttributXML& attribut);

  // Puts a deep copy of `child` in the place of the child at `i` and destroys that one. The copy
  // comes first: `child` may be this tag, or the child itself. A null `child` gives an empty tag
  // named "ERROR". An index outside the list does nothing.
  void modifChildP(int i, const BaliseXML* child);

  // 1 when the name is a beginning of the other's and both have the same number of attributes and
  // children, whose names match place by place (children recursively), else 0 with trace lines that
  // tell where. One-sided on purpose. Attribute values and levels are not looked at; an attribute
  // or child that is missing on either side is a difference.
  int operator==(const BaliseXML& o) const;
  // The same; `o` may be null.
  int equals(const BaliseXML* o) const;

  // Writes name and attributes to standard output and the counts to the trace, then every child.
  void print() const;

  MString _name;
  int _hierarchie = 0;  // level number, carried along only
  AttributXML** _attribut =
      nullptr;  // _capacityAttributs slots; null ones where memory was refused
  int _nbAttributs = 0;
  int _capacityAttributs = 2;
  BaliseXML** _child = nullptr;  // _capacityChildren slots, likewise
  int _nbChildren = 0;
  int _capacityChildren = 2;
};
