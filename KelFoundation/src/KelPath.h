// Paths of the client's writing turned into the system's.
#pragma once

#include <string>

namespace kel {

// The native form of `name`; empty for null. May throw for want of memory.
std::string NativePath(const wchar_t* name);

}  // namespace kel
