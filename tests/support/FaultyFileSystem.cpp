#include "FaultyFileSystem.h"

#include <algorithm>
#include <cstdlib>

#include "DoomedProgram.h"
#include "KelLib.h"

FaultyFileSystem::FaultyFileSystem() : _before(KelFileSystem::Install(this)) {}

FaultyFileSystem::~FaultyFileSystem() { KelFileSystem::Install(_before); }

void FaultyFileSystem::fail(Call call, int nth, Times times) { _planned[call] = {nth - 1, times}; }

bool FaultyFileSystem::fails(Call call) {
  const auto planned = _planned.find(call);
  if (planned == _planned.end() || planned->second.callsBefore-- > 0) return false;
  planned->second.callsBefore = 0;
  if (planned->second.times == Times::kOnce) _planned.erase(planned);
  ++_faults;
  return true;
}

bool FaultyFileSystem::meets(Call call) {
  if (_callsToLive > 0 && --_callsToLive == 0) {
    if (_kill == Kill::kBySignal) killThisProcess();
    std::_Exit(kKilled);
  }
  _calls.push_back(call);
  return fails(call);
}

int FaultyFileSystem::count(Call call) const {
  return static_cast<int>(std::count(_calls.begin(), _calls.end(), call));
}

void FaultyFileSystem::fillDiskAtWrite(int nth) {
  fail(Call::kWrite, nth, Times::kAlways);
  _halfTaken = false;
}

long FaultyFileSystem::Open(const std::string& path, Mode mode, int* handle) {
  const Call call = mode == Mode::kRead                             ? Call::kOpenRead
                    : mode == Mode::kWrite || mode == Mode::kCreate ? Call::kOpenWrite
                                                                    : Call::kOpenAppend;
  if (meets(Call::kOpen) || fails(call)) return E_FAIL;
  const long result = _before->Open(path, mode, handle);
  if (result != S_OK) return result;
  ++_openFiles;
  if (call == Call::kOpenWrite) _written.insert(*handle);
  return result;
}

long FaultyFileSystem::Read(int handle, char* buffer, std::size_t n, std::size_t* count) {
  return meets(Call::kRead) ? E_FAIL : _before->Read(handle, buffer, std::min(n, _most), count);
}

long FaultyFileSystem::Write(int handle, const char* buffer, std::size_t n, std::size_t* count) {
  constexpr std::size_t kLong = 512;  // bytes; an index line is shorter
  if (_callsToLive == 1 && n > kLong) _before->Write(handle, buffer, n / 2, count);
  if (!meets(Call::kWrite)) return _before->Write(handle, buffer, std::min(n, _most), count);
  if (_halfTaken) return E_FAIL;
  _halfTaken = true;
  return _before->Write(handle, buffer, n / 2, count);
}

long FaultyFileSystem::Close(int handle) {
  --_openFiles;
  const bool failing = meets(Call::kClose);
  const bool written = _written.erase(handle) > 0;
  if (failing && written && _closeLoses) loseHalf(handle);
  const long result = _before->Close(handle);
  return failing ? E_FAIL : result;
}

void FaultyFileSystem::loseHalf(int handle) {
  std::int64_t size = 0;
  if (_before->Size(handle, &size) == S_OK) _before->Truncate(handle, size / 2);
}

long FaultyFileSystem::Size(int handle, std::int64_t* size) {
  return meets(Call::kSize) ? E_FAIL : _before->Size(handle, size);
}

long FaultyFileSystem::Truncate(int handle, std::int64_t size) {
  return meets(Call::kTruncate) ? E_FAIL : _before->Truncate(handle, size);
}

long FaultyFileSystem::Stamp(const std::string& path, KelFileStamp* stamp) {
  return meets(Call::kStamp) ? E_FAIL : _before->Stamp(path, stamp);
}

long FaultyFileSystem::Remove(const std::string& path) {
  return meets(Call::kRemove) ? E_FAIL : _before->Remove(path);
}

long FaultyFileSystem::Rename(const std::string& from, const std::string& to) {
  return meets(Call::kRename) ? E_FAIL : _before->Rename(from, to);
}

long FaultyFileSystem::MakeDirectory(const std::string& path) {
  return meets(Call::kMakeDirectory) ? E_FAIL : _before->MakeDirectory(path);
}

long FaultyFileSystem::FindDirectory(const std::string& path, KelFileStamp* identity) {
  return meets(Call::kFindDirectory) ? E_FAIL : _before->FindDirectory(path, identity);
}

long FaultyFileSystem::StartWatch(const std::string& path, int* watch) {
  return meets(Call::kStartWatch) ? E_FAIL : _before->StartWatch(path, watch);
}

long FaultyFileSystem::PollWatch(int watch, bool* changed) {
  return meets(Call::kPollWatch) ? E_FAIL : _before->PollWatch(watch, changed);
}

void FaultyFileSystem::StopWatch(int watch) {
  _calls.push_back(Call::kStopWatch);
  _before->StopWatch(watch);
}
