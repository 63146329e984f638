// Nothing is thrown across the foundation's interface: what can run out of memory runs in here.
#pragma once

#include "KelLib.h"

namespace kel {

// Runs `body` and returns its result, or E_FAIL when it throws.
template <class Body>
long Guarded(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace kel
