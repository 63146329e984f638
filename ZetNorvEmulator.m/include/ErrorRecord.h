// One finding of a comparison. A plain value. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ErrorRecord {
 public:
  // Both texts are taken up to their first '\n' or NUL; a null one counts as empty.
  ErrorRecord(int errorCode, const char* errorName, const char* errorDetails);

  // A copy of itself, or of a null reference, is empty and has code 0.
  ErrorRecord(const ErrorRecord& o);
  // Copies member by member. A null reference changes nothing.
  ErrorRecord& operator=(const ErrorRecord& o);
  ~ErrorRecord() = default;

  int code = 0;     // below 10 a warning, exactly 10 an error, above 10 neither
  MString name;     // short name
  MString details;  // text
};
