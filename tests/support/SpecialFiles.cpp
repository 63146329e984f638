#include "SpecialFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

void makeFifo(const std::string& path) {
  if (mkfifo(path.c_str(), 0600) != 0) ADD_FAILURE() << "cannot make the FIFO " << path;
}

const char* nullDevice() { return "/dev/null"; }

const char* fullDevice() { return "/dev/full"; }
