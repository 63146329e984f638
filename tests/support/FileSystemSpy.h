// Stands between the foundation and the operating system's files while it lives: notes the calls,
// and fails those it is told to.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "KelFileSystem.h"

class FileSystemSpy : public KelFileSystem {
 public:
  FileSystemSpy();
  ~FileSystemSpy() override;
  FileSystemSpy(const FileSystemSpy&) = delete;
  FileSystemSpy& operator=(const FileSystemSpy&) = delete;

  // Lets the `nth` call named `call` ("Open", "Write", …; counted from 1, from now on) fail. A
  // failing "Close" closes the file all the same.
  void failOnce(const std::string& call, int nth);
  // The same, and every later one too.
  void failFrom(const std::string& call, int nth);
  // Whether a call was failed.
  bool metFault() const { return _met; }

  // Lets one read or write move at most `most` bytes.
  void limitTransfers(std::size_t most) { _most = most; }

  // The names of the calls so far, in order, the failed ones included.
  const std::vector<std::string>& calls() const { return _calls; }
  int count(const std::string& call) const;
  void forgetCalls() { _calls.clear(); }

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
  void StopWatch(int watch) override;

 private:
  struct Fault {
    int callsUntil;
    bool always;
  };

  // Notes the call. Whether it is to fail.
  bool fails(const std::string& call);

  KelFileSystem* _before;
  std::map<std::string, Fault> _faults;
  bool _met = false;
  std::size_t _most = static_cast<std::size_t>(-1);
  std::vector<std::string> _calls;
};
