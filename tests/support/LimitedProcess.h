// Processes that have less of the system than others: room on the disk, descriptors, rights.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

// Runs `work` in a copy of this process, so that limits end with it, and returns what it returned.
// The running test fails when an assertion fails in the copy, or when the copy does not end by
// itself. What the copy records of its test's properties is lost.
std::string inCopyOfThisProcess(const std::function<std::string()>& work);

// While it lives, no file of this process grows beyond `bytes`; writing ends there as on a disk
// that is full.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::size_t bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  unsigned long long _before = 0;
};

// While it lives, only `left` more descriptors can be opened.
class FewDescriptors {
 public:
  explicit FewDescriptors(int left);
  ~FewDescriptors();
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  std::vector<int> _taken;
  unsigned long long _before = 0;
};

// Takes the rights of the system's administrator from this process, if it has them, for good.
void becomeOrdinaryUser();

// Makes `path` and everything below it that user's, if this process is the administrator's.
void giveToOrdinaryUser(const std::string& path);

// Mounts an empty disk of `bytes` bytes with room for `files` files on the directory `path`, where
// this process alone sees it. False where the system does not allow that.
bool mountSmallDisk(const std::string& path, std::size_t bytes, int files);
