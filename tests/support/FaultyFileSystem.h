// The operating system's file system with faults where a test wants them, and a note of every call.
// In use while it lives.
#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "KelFileSystem.h"

class FaultyFileSystem : public KelFileSystem {
 public:
  enum class Call {
    kOpen,  // in any mode
    kOpenRead,
    kOpenWrite,  // or to create
    kOpenAppend,
    kRead,
    kWrite,
    kClose,
    kSize,
    kTruncate,
    kStamp,
    kRemove,
    kRename,
    kMakeDirectory,
    kFindDirectory,
    kStartWatch,
    kPollWatch,
    kStopWatch,  // noted only: it cannot fail
  };
  enum class Times { kOnce, kAlways };

  FaultyFileSystem();
  ~FaultyFileSystem() override;
  FaultyFileSystem(const FaultyFileSystem&) = delete;
  FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;

  // Makes the `nth` of the following calls of the kind `call` fail, counted from 1, and, with
  // kAlways, all behind it.
  void fail(Call call, int nth = 1, Times times = Times::kOnce);
  // Makes the `nth` of the following writes take half of its bytes and all behind it fail: a disk
  // that is full.
  void fillDiskAtWrite(int nth = 1);
  // Ends the process at the `nth` of the following calls, with the status kKilled or by the signal
  // that nobody can catch, as a kill from outside would: nothing is flushed or cleaned up, and the
  // call is not made. Of a long write, which the system may do in pieces, half is made.
  enum class Kill { kByStatus, kBySignal };
  void killAtCall(int nth, Kill kill = Kill::kByStatus) {
    _callsToLive = nth;
    _kill = kill;
  }
  static constexpr int kKilled = 99;
  // Makes a failing close cost a file that was opened for writing the second half of its bytes, as
  // where they are stored only then.
  void loseBytesAtFailedClose() { _closeLoses = true; }
  // Lets one read or write move at most `most` bytes.
  void limitTransfers(std::size_t most) { _most = most; }

  // The calls since, in order, those that failed included; a file's opening in any mode is kOpen.
  const std::vector<Call>& calls() const { return _calls; }
  int count(Call call) const;
  void forgetCalls() { _calls.clear(); }

  // How many calls were made to fail.
  int faults() const { return _faults; }
  // How many files were opened since and are not closed.
  int openFiles() const { return _openFiles; }

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
    int callsBefore;
    Times times;
  };

  // Whether this call of the kind `call` is to fail.
  bool fails(Call call);
  // The same, and notes the call, unless it is the one that ends the process.
  bool meets(Call call);

  void loseHalf(int handle);

  std::map<Call, Fault> _planned;
  std::vector<Call> _calls;
  std::size_t _most = std::numeric_limits<std::size_t>::max();
  bool _halfTaken = true;  // the last write before a full disk
  int _callsToLive = 0;    // 0: for ever
  Kill _kill = Kill::kByStatus;
  bool _closeLoses = false;
  std::set<int> _written;  // the handles that were opened for writing
  int _faults = 0;
  int _openFiles = 0;
  KelFileSystem* _before;
};
