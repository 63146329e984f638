// The text of a string that may be null.
#pragma once

#include "MString.h"

namespace zetnorv {

// Never null. Borrowed: valid until `text` changes or goes.
inline const char* textOf(const MString& text) {
  return text.gchar() == nullptr ? "" : text.gchar();
}

}  // namespace zetnorv
