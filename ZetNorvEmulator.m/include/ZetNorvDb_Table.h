// Rows under a header that names the columns. Every row has a mark beside it, which reads "read"
// once a search has selected the row and "NULL" before.
//
// The table is the header record and owns its rows. It grows by exactly one slot whenever it is
// full, with a deep copy of every row: linear growth is the policy, so a large table is costly to
// fill. Indices are 0-based. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvDb_Table : public ZetNorvDb_Record {
 public:
  // No header, no rows, no slots.
  ZetNorvDb_Table() = default;

  // `n` columns named by the comma-separated `header`, 3 empty slots.
  ZetNorvDb_Table(int n, MString header);

  // Copy the header and share the rows, marks and counts of `o`: a table and its copy must not both
  // be destroyed. Shallow on purpose; the library itself copies no table. An assignment does not
  // free the rows that the target had (another table may share them), and assigning a table to
  // itself takes its header from it, as with any record.
  ZetNorvDb_Table(const ZetNorvDb_Table& o);
  ZetNorvDb_Table& operator=(const ZetNorvDb_Table& o);
  ~ZetNorvDb_Table();

  // Frees all rows, marks and slots and keeps the header.
  void Release();

  // Number of rows.
  int getSize() const { return _nbRows; }

  // Prints the header, then every row.
  void print() const;

  // Copies the header to `out`. E_FAIL when it has no field.
  long getStructure(ZetNorvDb_Record& out) const;

  // Copies row `i` to `out`. E_FAIL, with `out` untouched, when there is no such row.
  long getRecord(int i, ZetNorvDb_Record& out) const;

  // Replaces the content of row `i`. E_FAIL when there is no such row or `rec` has no field. The
  // row itself as `rec` is left without fields (see the record's assignment).
  long setRecord(int i, ZetNorvDb_Record& rec);

  // Searches the column whose name is a beginning of `column` for a field that is a beginning of
  // `value` (so an empty field matches everything), and copies the row to `out`: the first match
  // that is not a reference (field 4 a beginning of "Reference", or no field 4), else the last
  // match. Every row selected on the way is marked "read".
  //
  // `trace` 1 tells the steps on the trace; it says "Rien dans la base. " also when the scan ends
  // on a reference that was found. Returns E_FAIL, with `out` untouched, when nothing matches.
  long getRecord(const char* column, const char* value, ZetNorvDb_Record& out, int trace);

  // Appends a deep copy of `rc`, with any number of fields, as a new last row. A null reference is
  // traced and refused.
  long add(ZetNorvDb_Record& rc);

  // Appends a row of as many fields as the header has, cut from `line` at its commas. A null string
  // is traced and refused.
  long addRecord(MString line);

  ZetNorvDb_Record** _rows = nullptr;   // _capacity slots, _nbRows in use
  ZetNorvDb_Record** _marks = nullptr;  // the mark of every row, a record of one field
  int _capacity = 0;
  int _nbRows = 0;
};
