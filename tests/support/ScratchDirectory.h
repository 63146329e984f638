// A fresh directory for one test. It goes with the object, unless the test has failed by then: then
// it stays and its path is printed.
#pragma once

#include <filesystem>
#include <string>

class ScratchDirectory {
 public:
  ScratchDirectory();
  ~ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  const std::filesystem::path& path() const { return _path; }
  // The path of `name` in the directory, as text.
  std::string file(const std::string& name) const { return (_path / name).string(); }

 private:
  std::filesystem::path _path;
};
