// A row of text fields. The number of fields is fixed when the row is built; it owns its strings.
// Indices are 0-based. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvDb_Record {
 public:
  // No fields.
  ZetNorvDb_Record() = default;

  // `n` fields cut from `text`: with mode 0 at every ',' (an empty or missing piece reads "NULL", a
  // piece beyond the n-th is dropped), with any other mode from the groups between '<' and '>' (a
  // missing group gives a null field). No fields when `n` is below 1.
  ZetNorvDb_Record(int n, MString text, int mode);

  // A deep copy. A copy of itself, or of a null reference, has no fields.
  ZetNorvDb_Record(const ZetNorvDb_Record& o);

  // A deep copy. Assigning a record to itself, or from a null reference, leaves it without fields
  // and does not free those it had: a host that holds their array, as it lies in `_data`, keeps
  // it and deletes it with delete[]. Kept so on purpose.
  ZetNorvDb_Record& operator=(const ZetNorvDb_Record& o);
  ~ZetNorvDb_Record();

  // Frees the fields and leaves the record without any.
  void Release();

  // Copies field `i` to `out`. E_FAIL, with `out` untouched, outside the record.
  long getData(int i, MString& out) const;
  // Replaces field `i`. E_FAIL outside the record.
  long setData(int i, MString value);
  // Number of fields.
  int getSize() const { return _nbData; }

  // Writes the fields to standard output, one behind the other with nothing between or after them;
  // a null field is a trace line instead.
  void print() const;

  MString* _data = nullptr;  // _nbData fields, or null
  int _nbData = 0;
};
