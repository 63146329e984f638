// Whole files as bytes, past the foundation.
#pragma once

#include <string>
#include <vector>

// The bytes of the file `path`; the running test fails when it cannot be read.
std::string readBytes(const std::string& path);

// Creates or replaces the file `path`, with the directories it needs.
void writeBytes(const std::string& path, const std::string& bytes);

bool exists(const std::string& path);

// The names in the directory `path`, sorted; empty when it is not there.
std::vector<std::string> namesIn(const std::string& path);
