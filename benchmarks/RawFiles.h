// The plainest way to read and write files: the system's own calls, nothing checked twice.
#pragma once

#include <string>
#include <string_view>

namespace bench {

// Each ends the program when a call fails: a floor that did less work would be none.
void writeRaw(const std::string& path, std::string_view bytes);
void appendRaw(const std::string& path, std::string_view bytes);
// Reads the whole file into `bytes`, whose memory is used again.
void readRaw(const std::string& path, std::string& bytes);

}  // namespace bench
