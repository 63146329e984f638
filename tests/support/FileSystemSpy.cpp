#include "FileSystemSpy.h"

#include <algorithm>

#include "KelLib.h"

FileSystemSpy::FileSystemSpy() : _before(KelFileSystem::Install(this)) {}

FileSystemSpy::~FileSystemSpy() { KelFileSystem::Install(_before); }

void FileSystemSpy::failOnce(const std::string& call, int nth) { _faults[call] = {nth, false}; }

void FileSystemSpy::failFrom(const std::string& call, int nth) { _faults[call] = {nth, true}; }

int FileSystemSpy::count(const std::string& call) const {
  return static_cast<int>(std::count(_calls.begin(), _calls.end(), call));
}

bool FileSystemSpy::fails(const std::string& call) {
  _calls.push_back(call);
  const auto fault = _faults.find(call);
  if (fault == _faults.end()) return false;
  --fault->second.callsUntil;
  if (fault->second.callsUntil > 0) return false;
  if (!fault->second.always) _faults.erase(fault);
  _met = true;
  return true;
}

long FileSystemSpy::Open(const std::string& path, Mode mode, int* handle) {
  return fails("Open") ? E_FAIL : _before->Open(path, mode, handle);
}

long FileSystemSpy::Read(int handle, char* buffer, std::size_t n, std::size_t* count) {
  return fails("Read") ? E_FAIL : _before->Read(handle, buffer, std::min(n, _most), count);
}

long FileSystemSpy::Write(int handle, const char* buffer, std::size_t n, std::size_t* count) {
  return fails("Write") ? E_FAIL : _before->Write(handle, buffer, std::min(n, _most), count);
}

long FileSystemSpy::Close(int handle) {
  const long closed = _before->Close(handle);
  return fails("Close") ? E_FAIL : closed;
}

long FileSystemSpy::Size(int handle, std::int64_t* size) {
  return fails("Size") ? E_FAIL : _before->Size(handle, size);
}

long FileSystemSpy::Truncate(int handle, std::int64_t size) {
  return fails("Truncate") ? E_FAIL : _before->Truncate(handle, size);
}

long FileSystemSpy::Stamp(const std::string& path, KelFileStamp* stamp) {
  return fails("Stamp") ? E_FAIL : _before->Stamp(path, stamp);
}

long FileSystemSpy::Remove(const std::string& path) {
  return fails("Remove") ? E_FAIL : _before->Remove(path);
}

long FileSystemSpy::Rename(const std::string& from, const std::string& to) {
  return fails("Rename") ? E_FAIL : _before->Rename(from, to);
}

long FileSystemSpy::MakeDirectory(const std::string& path) {
  return fails("MakeDirectory") ? E_FAIL : _before->MakeDirectory(path);
}

long FileSystemSpy::FindDirectory(const std::string& path, KelFileStamp* identity) {
  return fails("FindDirectory") ? E_FAIL : _before->FindDirectory(path, identity);
}

long FileSystemSpy::StartWatch(const std::string& path, int* watch) {
  return fails("StartWatch") ? E_FAIL : _before->StartWatch(path, watch);
}

long FileSystemSpy::PollWatch(int watch, bool* changed) {
  return fails("PollWatch") ? E_FAIL : _before->PollWatch(watch, changed);
}

void FileSystemSpy::StopWatch(int watch) {
  fails("StopWatch");
  _before->StopWatch(watch);
}
