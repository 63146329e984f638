// Makes the directories that recordings and logs are written into.
#pragma once

#include "MString.h"

namespace zetnorv {

// Makes the directory `path` with its parents. A failure is silent: it shows when a file in it
// cannot be opened. Returns whether the directory is there.
bool ensureDirectory(const MString& path);

}  // namespace zetnorv
