#include "ErrorRecord.h"

#include "NullReference.h"

using zetnorv::isNullReference;

ErrorRecord::ErrorRecord(int errorCode, const char* errorName, const char* errorDetails)
    : code(errorCode), name(errorName), details(errorDetails) {}

ErrorRecord::ErrorRecord(const ErrorRecord& o) {
  if (isNullReference(o) || &o == this) return;
  *this = o;
}

ErrorRecord& ErrorRecord::operator=(const ErrorRecord& o) {
  if (isNullReference(o)) return *this;
  code = o.code;
  name = o.name;
  details = o.details;
  return *this;
}
