#include "RawFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace bench {

namespace {

void insist(bool done, const std::string& path) {
  if (done) return;
  std::perror(path.c_str());
  std::exit(2);
}

void put(const std::string& path, int flags, std::string_view bytes) {
  const int file = open(path.c_str(), flags | O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
  insist(file >= 0, path);
  insist(write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), path);
  insist(close(file) == 0, path);
}

}  // namespace

void writeRaw(const std::string& path, std::string_view bytes) { put(path, O_TRUNC, bytes); }

void appendRaw(const std::string& path, std::string_view bytes) { put(path, O_APPEND, bytes); }

void readRaw(const std::string& path, std::string& bytes) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat found {};
  insist(file >= 0 && fstat(file, &found) == 0, path);
  bytes.resize(static_cast<std::size_t>(found.st_size));
  insist(read(file, bytes.data(), bytes.size()) == found.st_size, path);
  insist(close(file) == 0, path);
}

}  // namespace bench
