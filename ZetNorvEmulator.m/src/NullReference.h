// Old hosts hand in `*pointer` with a null pointer. This is the one place that tells: the address
// goes through a volatile, so that the compiler cannot conclude that a reference is never null.
#pragma once

#include <memory>

namespace zetnorv {

template <class T>
bool isNullReference(const T& reference) {
  const void* volatile address = std::addressof(reference);
  return address == nullptr;
}

}  // namespace zetnorv
