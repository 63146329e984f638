#include "ScratchDirectory.h"

#include <gtest/gtest.h>

#include <iostream>
#include <random>

ScratchDirectory::ScratchDirectory() {
  std::random_device random;
  do {
    _path = std::filesystem::temp_directory_path() / ("zetnorv-test-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(_path));
}

ScratchDirectory::~ScratchDirectory() {
  if (testing::Test::HasFailure()) {
    std::cerr << "The failed test's files are in " << _path.string() << "\n";
    return;
  }
  std::error_code ignored;
  std::filesystem::remove_all(_path, ignored);
}
