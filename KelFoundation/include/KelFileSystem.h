// The seam between the foundation's file services and the operating system.
//
// All of KelFile.h and KelDirectory.h stands on this interface. One implementation talks to the
// operating system; tests put in its place one that fails where they want it to.
//
// Paths are native, handles are the implementation's own. Not synchronised.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "KelExport.h"
#include "KelFile.h"

class KEL_FOUNDATION_EXPORT KelFileSystem {
 public:
  enum class Mode { kRead, kWrite, kCreate, kAppend };

  virtual ~KelFileSystem() = default;

  // Each returns S_OK or E_FAIL; out-parameters are untouched on failure.

  // kRead opens regular files only; kWrite creates or empties; kCreate makes a new file and fails
  // when the name is there, whatever it stands for, a link to nowhere included; kAppend creates
  // when missing, reads from the start and writes at the end, each write in one step.
  virtual long Open(const std::string& path, Mode mode, int* handle) = 0;
  // One read: `*count` is 0 only at the end; fewer bytes than asked for are no failure.
  virtual long Read(int handle, char* buffer, std::size_t n, std::size_t* count) = 0;
  // One write: fewer bytes than given are no failure, none are.
  virtual long Write(int handle, const char* buffer, std::size_t n, std::size_t* count) = 0;
  // The handle is gone afterwards, also on failure.
  virtual long Close(int handle) = 0;
  virtual long Size(int handle, std::int64_t* size) = 0;
  // Cuts the file that is open for writing behind its first `size` bytes.
  virtual long Truncate(int handle, std::int64_t size) = 0;
  virtual long Stamp(const std::string& path, KelFileStamp* stamp) = 0;
  virtual long Remove(const std::string& path) = 0;
  // Replaces a file or a link of the name `to` in one step; fails for anything else of that name.
  virtual long Rename(const std::string& from, const std::string& to) = 0;
  // Makes one directory whose parent exists; S_OK only when it was made by this call.
  virtual long MakeDirectory(const std::string& path) = 0;
  // S_OK when `path` names a directory; its identity (device and file of the stamp) is filled in.
  virtual long FindDirectory(const std::string& path, KelFileStamp* identity) = 0;

  // Watches a directory for names that go (see KelDirectoryWatch).
  virtual long StartWatch(const std::string& path, int* watch) = 0;
  // Sets `*changed` when an event came since the last call.
  virtual long PollWatch(int watch, bool* changed) = 0;
  virtual void StopWatch(int watch) = 0;

  // The file system in use.
  static KelFileSystem& Current();
  // Puts `fileSystem` in use, or the operating system's own when it is null; files that are open
  // stay with the one that opened them. Returns the one before. Must outlive its being in use.
  static KelFileSystem* Install(KelFileSystem* fileSystem);
  // The operating system's.
  static KelFileSystem& Native();
};
