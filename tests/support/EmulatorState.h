// The static members of the emulator, which live as long as the library is loaded.
#pragma once

#include "DatabaseState.h"
#include "ZetNorvEmul.h"

// Sets every one of them back to what it is when the library is loaded.
inline void resetEmulator() {
  ZetNorvEmul::_nOp = 0;
  ZetNorvEmul::_posCursPre = 0;
  ZetNorvEmul::_posCursPost = 0;
  ZetNorvEmul::_posKavFirst = 0;
  ZetNorvEmul::_ids.Release();
  ZetNorvEmul::_idsRef.Release();
  ZetNorvEmul::_date = MString();
  DatabaseState::reset();
}
