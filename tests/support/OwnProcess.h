// What this process holds of the system, as the system tells it.
#pragma once

#include <cstddef>
#include <string>

// How many descriptors are open.
int openDescriptors();

// Whether a library whose file name begins with `name` lies in the process's memory.
bool isMapped(const std::string& name);

// The bytes of memory that are allocated and not given back. 0 where the allocator does not say.
std::size_t allocatedBytes();
