// The two kinds of comparison scripts, as DataScript::type tells them.
#pragma once

#include <cstring>

#include "MString.h"
#include "TextOf.h"

namespace zetnorv {

inline constexpr const char* kCharacterScript = "CHAR";
inline constexpr const char* kXmlScript = "XML_";

// Whether `type` is `kind`: the whole text, not a beginning of it.
inline bool isOfKind(const MString& type, const char* kind) {
  return std::strcmp(textOf(type), kind) == 0;
}

}  // namespace zetnorv
