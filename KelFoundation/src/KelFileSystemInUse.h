// Which file system is in use, for what outlives a change of it.
#pragma once

#include <cstdint>

namespace kel {

// The number of times a file system was put in use. What was handed out by the one in use is good
// only while this number stays: the one before may be gone, and another may stand at its address.
std::uint64_t FileSystemChanges();

}  // namespace kel
