// The process's database for one test: empty, and taken for loaded, so that no file is read. It is
// empty and not loaded again afterwards.
#pragma once

#include <gtest/gtest.h>

#include "KelLib.h"
#include "ZetNorvDb.h"

class LoadedDatabase {
 public:
  LoadedDatabase() {
    ZetNorvDb::_database.Release();
    ZetNorvDb::_path = MString("loaded");
  }
  ~LoadedDatabase() {
    ZetNorvDb::_database.Release();
    ZetNorvDb::_path = MString();
  }
  LoadedDatabase(const LoadedDatabase&) = delete;
  LoadedDatabase& operator=(const LoadedDatabase&) = delete;

  // Adds a row of `fields` fields, cut from `line` at its commas.
  void add(const char* line, int fields = 10) {
    ZetNorvDb_Record record(fields, MString(line), 0);
    ASSERT_EQ(S_OK, ZetNorvDb::_database.add(record));
  }

  // Sets one field of row `i`; a null string makes it null.
  void set(int i, int column, const MString& value) {
    ASSERT_EQ(S_OK, ZetNorvDb::_database._rows[i]->setData(column, value));
  }

  // Leaves row `i` as a refused allocation does.
  void refuse(int i) {
    delete ZetNorvDb::_database._rows[i];
    ZetNorvDb::_database._rows[i] = nullptr;
  }
};
