// From the parser's UTF-16 to UTF-8, whatever the locale is.
#pragma once

#include <cstddef>
#include <string>

// The most bytes of UTF-8 that one unit of UTF-16 becomes.
inline constexpr std::size_t kMaxUtf8PerUnit = 3;

// Writes the `count` units at `units` to `out`, which has room for kMaxUtf8PerUnit bytes a unit,
// and returns the end of what it wrote. Half a surrogate pair becomes U+FFFD.
char* WriteUtf8(const char16_t* units, std::size_t count, char* out);

// The NUL-terminated `units` as a text of its own; empty for null.
std::string ToUtf8(const char16_t* units);
