// Runs a fuzz target on the inputs that are kept for it, in any build and without the fuzzer.
//
//   corpus_<name> <directory>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "Files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: %s <directory>\n", arguments[0]);
    return 2;
  }
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const std::filesystem::path& file : files) {
    // The last line printed names the input when the target ends the process.
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    // In a block of exactly its size, so that a sanitizer sees what reads past it.
    const std::string text = readBytes(file.string());
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  std::printf("%zu inputs held\n", files.size());
  return 0;
}
