// Result codes that every operation of the foundation and of its users speaks.
#pragma once

#include <cstdint>

// The operation did what it says.
inline constexpr long S_OK = 0;

// The operation failed: the 32-bit pattern 0x80004005 as a negative number.
inline constexpr long E_FAIL = static_cast<std::int32_t>(0x80004005u);

// What the directory operations answer when the directory is there.
inline constexpr long KelLibSucces = 0;

constexpr bool SUCCEEDED(long result) { return result >= 0; }
constexpr bool FAILED(long result) { return result < 0; }
