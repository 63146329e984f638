// The emulated database of this process, as it is before anything has used it, and again at the
// end of the test.
#pragma once

#include "ZetNorvDb.h"

class DatabaseState {
 public:
  DatabaseState() { reset(); }
  ~DatabaseState() { reset(); }
  DatabaseState(const DatabaseState&) = delete;
  DatabaseState& operator=(const DatabaseState&) = delete;

  // What a new process starts with.
  static void reset() {
    ZetNorvDb::_database.Release();
    ZetNorvDb::_path = MString();
    ZetNorvDb::_refFile = MString();
    ZetNorvDb::_copyFile = MString();
    ZetNorvDb::_nbLoad = 0;
  }
};
