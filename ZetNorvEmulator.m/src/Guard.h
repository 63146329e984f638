// Nothing is thrown across the library's interface: what can meet an exception (memory, streams)
// runs in here.
#pragma once

#include <cerrno>
#include <cstdio>

#include "KelLib.h"
#include "RefusedMemory.h"
#include "ZetNorvTrace.h"

namespace zetnorv {

// Gives the caller its error number back: a hook may stand between the client's receiving and its
// look at why that failed.
class KeptErrorNumber {
 public:
  KeptErrorNumber() : _before(errno) {}
  ~KeptErrorNumber() { errno = _before; }
  KeptErrorNumber(const KeptErrorNumber&) = delete;
  KeptErrorNumber& operator=(const KeptErrorNumber&) = delete;

 private:
  int _before;
};

// Runs `body` and returns its result, or E_FAIL with the trace line "Problem in <operation>:
// exception" when it throws.
template <class Body>
long guarded(const char* operation, Body&& body) noexcept {
  const KeptErrorNumber errorNumber;
  const RefusedMemory::Call call;
  try {
    return body();
  } catch (...) {
    RefusedMemory::note();
    char line[160];
    std::snprintf(line, sizeof line, "Problem in %s: exception", operation);
    ZetNorvTrace.TraPutLN(2, line);
    return E_FAIL;
  }
}

}  // namespace zetnorv
