// The foundation's error return: one place through which failures are reported.
#pragma once

#include "KelExport.h"

class KEL_FOUNDATION_EXPORT KelError {
 public:
  // Reports that the source line `sourceFile`:`line` met the error `code`.
  //
  // Returns S_OK for code 0 and E_FAIL for any other.
  static long GetReturn(int code, const char* sourceFile, int line);
};
