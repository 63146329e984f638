// What an old host hands in when it dereferences a null pointer.
#pragma once

// A reference whose address is null. Only for arguments that the library tests for it.
template <class T>
#if defined(__GNUC__)
__attribute__((noinline, no_sanitize("undefined")))
#endif
T& nullReferenceTo() {
  T* volatile nothing = nullptr;
  return *nothing;
}
