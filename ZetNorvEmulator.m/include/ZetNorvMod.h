// Compares a request that is about to be sent with the one that was recorded. Without state.
// Nothing is thrown. Not synchronised: the client's exchange thread uses it.
#pragma once

#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvMod {
 public:
  // Compares `size` bytes at `buffer` with the file `referencePath` under the comparison script of
  // `messageNumber`, and appends a section with what was found to "error.log". Message 325 is never
  // compared.
  //
  // Returns S_OK when the comparison was carried out, whatever it found: the outcome stands in
  // "error.log" only. E_FAIL, with a trace line and no section, for a null argument and when the
  // script, the file or a model of either message is not to be had; an empty file is none.
  static long runNorvLike(int messageNumber, const char* buffer, int size,
                          const char* referencePath);
};
