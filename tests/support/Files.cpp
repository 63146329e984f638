#include "Files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

std::string readBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    ADD_FAILURE() << "cannot read " << path;
    return {};
  }
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return std::move(bytes).str();
}

void writeBytes(const std::string& path, const std::string& bytes) {
  const std::filesystem::path target(path);
  if (target.has_parent_path()) std::filesystem::create_directories(target.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) ADD_FAILURE() << "cannot write " << path;
}

bool exists(const std::string& path) { return std::filesystem::exists(path); }

std::vector<std::string> namesIn(const std::string& path) {
  std::vector<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(path, missing)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}
