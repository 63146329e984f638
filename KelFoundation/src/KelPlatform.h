// What the foundation asks the operating system beside files and directories.
#pragma once

#include <cstddef>
#include <ctime>

namespace kel {

// Breaks `now` down to local time. False, with `fields` untouched, when the system cannot.
bool LocalTime(std::time_t now, std::tm* fields);

// Writes the login name of the process's user, NUL-terminated and cut to fit, to `buffer`, which
// has room for `size` bytes, at least one. False when the user has no name.
bool LoginName(char* buffer, std::size_t size);

}  // namespace kel
