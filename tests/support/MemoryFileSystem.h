// A file system in memory, in use while it lives: for runs that make many files and keep none.
//
// It knows files and directories. The root directory is there from the start; other directories
// have to be made. Paths are told apart by their pieces: "a//b", "a/./b" and "a/c/../b" are one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "KelFileSystem.h"

class MemoryFileSystem : public KelFileSystem {
 public:
  MemoryFileSystem();
  ~MemoryFileSystem() override;
  MemoryFileSystem(const MemoryFileSystem&) = delete;
  MemoryFileSystem& operator=(const MemoryFileSystem&) = delete;

  // Takes everything away again; no file may be open.
  void clear();
  // Makes or replaces a file, with the directories that it needs.
  void put(const std::string& path, const std::string& bytes);
  // The bytes of a file; empty when it is not there.
  std::string bytes(const std::string& path) const;
  bool exists(const std::string& path) const;
  // The paths of all files, sorted.
  std::vector<std::string> files() const;
  // How many files are open.
  std::size_t openFiles() const { return _open.size(); }

  long Open(const std::string& path, Mode mode, int* handle) override;
  long Read(int handle, char* buffer, std::size_t n, std::size_t* count) override;
  long Write(int handle, const char* buffer, std::size_t n, std::size_t* count) override;
  long Close(int handle) override;
  long Size(int handle, std::int64_t* size) override;
  long Truncate(int handle, std::int64_t size) override;
  long Stamp(const std::string& path, KelFileStamp* stamp) override;
  long Remove(const std::string& path) override;
  long Rename(const std::string& from, const std::string& to) override;
  long MakeDirectory(const std::string& path) override;
  long FindDirectory(const std::string& path, KelFileStamp* identity) override;
  long StartWatch(const std::string& path, int* watch) override;
  long PollWatch(int watch, bool* changed) override;
  void StopWatch(int watch) override { _watches.erase(watch); }

 private:
  struct File {
    std::string bytes;
    std::uint64_t number;
    std::int64_t changed;
  };
  struct OpenFile {
    std::shared_ptr<File> file;
    Mode mode;
    std::size_t position;
  };

  std::shared_ptr<File> newFile();
  bool hasParent(const std::string& path) const;
  // A name went from the directory that it was in.
  void wentFrom(const std::string& path);

  std::map<std::string, std::shared_ptr<File>> _files;
  std::map<std::string, std::uint64_t> _directories;  // with their numbers
  std::map<int, OpenFile> _open;
  std::map<int, std::pair<std::string, bool>> _watches;  // the directory, and whether it changed
  std::int64_t _clock = 0;
  std::uint64_t _numbers = 0;
  int _handles = 0;
  KelFileSystem* _before;
};
