// Runs a piece of work on a stack of its own and tells how much of it was used.
#pragma once

#include <cstddef>
#include <functional>

// How much larger the frames are than those of an ordinary build, at most: sanitizers put space
// around every variable.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr std::size_t kFrameFactor = 2;
#else
inline constexpr std::size_t kFrameFactor = 1;
#endif

// Runs `work` in a thread whose stack is `bytes` large, what the system takes of it and the guard
// at its end included. Returns the bytes used, as far as they were written to.
std::size_t runOnStack(std::size_t bytes, const std::function<void()>& work);
