// Files that are no regular ones, where the system has them.
#pragma once

#include <string>

// Makes a FIFO, a pipe with a name; the running test fails when it cannot be made.
void makeFifo(const std::string& path);

// A device that takes every byte and keeps none, and one that never has room for a byte. Both hold
// no end of bytes (or none) for one who reads them past the foundation.
const char* nullDevice();
const char* fullDevice();
