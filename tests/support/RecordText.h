// Records as a test reads them.
#pragma once

#include <string>

#include "KelLib.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvDb_Table.h"

// The fields of a record, joined by '|'; a null field reads "(null)".
inline std::string recordText(const ZetNorvDb_Record& record) {
  std::string joined;
  for (int i = 0; i < record.getSize(); ++i) {
    if (i > 0) joined += '|';
    const char* field = record._data[i].gchar();
    joined += field == nullptr ? "(null)" : field;
  }
  return joined;
}

// Row `i` of a table; "(no row)" when it gives none.
inline std::string rowText(const ZetNorvDb_Table& table, int i) {
  ZetNorvDb_Record record;
  return table.getRecord(i, record) == S_OK ? recordText(record) : "(no row)";
}

// The marks of a table's rows, joined by ','; a null mark reads "(no mark)".
inline std::string markText(const ZetNorvDb_Table& table) {
  std::string joined;
  for (int i = 0; i < table.getSize(); ++i) {
    if (i > 0) joined += ',';
    joined += table._marks[i] == nullptr ? "(no mark)" : recordText(*table._marks[i]);
  }
  return joined;
}
