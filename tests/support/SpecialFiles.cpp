#include "SpecialFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

void makeFifo(const std::string& path) {
  if (mkfifo(path.c_str(), 0600) != 0) ADD_FAILURE() << "cannot make the FIFO " << path;
}

FifoPartner::FifoPartner(const std::string& path)
    : _handle(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
  if (_handle < 0) ADD_FAILURE() << "cannot open the FIFO " << path;
}

FifoPartner::~FifoPartner() { close(_handle); }

void FifoPartner::offer(const std::string& bytes) {
  EXPECT_EQ(write(_handle, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string FifoPartner::content() {
  char bytes[4096];
  const ssize_t count = read(_handle, bytes, sizeof bytes);
  return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : "";
}

void makeSocket(const std::string& path) {
  if (mknod(path.c_str(), S_IFSOCK | 0600, 0) != 0) {
    ADD_FAILURE() << "cannot make the socket " << path;
  }
}

const char* nullDevice() { return "/dev/null"; }

const char* fullDevice() { return "/dev/full"; }

const char* endlessDevice() { return "/dev/zero"; }
