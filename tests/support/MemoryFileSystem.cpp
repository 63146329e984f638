#include "MemoryFileSystem.h"

#include <algorithm>
#include <filesystem>

#include "KelLib.h"

namespace {

constexpr const char* kRoot = "/";

// One text for every way to write a path, without a separator at its end; a path that does not say
// where it starts is taken from the root.
std::string plain(const std::string& path) {
  const bool isPlain = path.starts_with('/') && path.find("//") == std::string::npos &&
                       path.find("/.") == std::string::npos;
  std::string text =
      isPlain ? path : (std::filesystem::path(kRoot) / path).lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

std::string parentOf(const std::string& path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

// The longest name and the longest path that the operating system takes, in bytes.
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestPath = 4095;

bool isTooLong(const std::string& path) {
  if (path.size() <= kLongestName) return false;
  if (path.size() > kLongestPath) return true;
  const std::filesystem::path pieces(path);
  return std::any_of(pieces.begin(), pieces.end(),
                     [](const auto& piece) { return piece.native().size() > kLongestName; });
}

}  // namespace

MemoryFileSystem::MemoryFileSystem() : _before(KelFileSystem::Install(this)) { clear(); }

MemoryFileSystem::~MemoryFileSystem() { KelFileSystem::Install(_before); }

void MemoryFileSystem::clear() {
  for (auto& [watch, state] : _watches) state.second = true;
  _files.clear();
  _directories = {{kRoot, ++_numbers}};
}

void MemoryFileSystem::put(const std::string& path, const std::string& bytes) {
  const std::string name = plain(path);
  for (std::string parent = parentOf(name); !_directories.contains(parent);
       parent = parentOf(parent)) {
    _directories[parent] = ++_numbers;
  }
  _files[name] = newFile();
  _files[name]->bytes = bytes;
}

std::string MemoryFileSystem::bytes(const std::string& path) const {
  const auto found = _files.find(plain(path));
  return found == _files.end() ? "" : found->second->bytes;
}

bool MemoryFileSystem::exists(const std::string& path) const {
  return _files.contains(plain(path));
}

std::vector<std::string> MemoryFileSystem::files() const {
  std::vector<std::string> paths;
  for (const auto& [path, file] : _files) paths.push_back(path);
  return paths;
}

long MemoryFileSystem::Open(const std::string& path, Mode mode, int* handle) {
  const std::string name = plain(path);
  const bool namesDirectory = path.empty() || path.back() == '/' || _directories.contains(name);
  if (namesDirectory || isTooLong(path)) return E_FAIL;
  const bool there = _files.contains(name);
  if (mode == Mode::kRead ? !there : !hasParent(name)) return E_FAIL;
  if (mode == Mode::kCreate && there) return E_FAIL;
  if (!there) _files[name] = newFile();
  const std::shared_ptr<File>& file = _files[name];
  if (mode == Mode::kWrite) {
    file->bytes.clear();
    file->changed = ++_clock;
  }
  *handle = ++_handles;
  _open[*handle] = {file, mode, 0};
  return S_OK;
}

long MemoryFileSystem::Read(int handle, char* buffer, std::size_t n, std::size_t* count) {
  const auto found = _open.find(handle);
  if (found == _open.end() || found->second.mode == Mode::kWrite ||
      found->second.mode == Mode::kCreate) {
    return E_FAIL;
  }
  OpenFile& open = found->second;
  const std::string& bytes = open.file->bytes;
  *count = open.position < bytes.size() ? std::min(n, bytes.size() - open.position) : 0;
  std::copy_n(bytes.data() + std::min(open.position, bytes.size()), *count, buffer);
  open.position += *count;
  return S_OK;
}

long MemoryFileSystem::Write(int handle, const char* buffer, std::size_t n, std::size_t* count) {
  const auto found = _open.find(handle);
  if (found == _open.end() || found->second.mode == Mode::kRead) return E_FAIL;
  OpenFile& open = found->second;
  std::string& bytes = open.file->bytes;
  if (open.mode == Mode::kAppend) {
    bytes.append(buffer, n);
  } else {
    if (bytes.size() < open.position + n) bytes.resize(open.position + n);
    std::copy_n(buffer, n, bytes.data() + open.position);
    open.position += n;
  }
  open.file->changed = ++_clock;
  *count = n;
  return S_OK;
}

long MemoryFileSystem::Close(int handle) { return _open.erase(handle) == 1 ? S_OK : E_FAIL; }

long MemoryFileSystem::Size(int handle, std::int64_t* size) {
  const auto found = _open.find(handle);
  if (found == _open.end()) return E_FAIL;
  *size = static_cast<std::int64_t>(found->second.file->bytes.size());
  return S_OK;
}

long MemoryFileSystem::Truncate(int handle, std::int64_t size) {
  const auto found = _open.find(handle);
  if (found == _open.end() || size < 0) return E_FAIL;
  found->second.file->bytes.resize(static_cast<std::size_t>(size));
  found->second.file->changed = ++_clock;
  return S_OK;
}

long MemoryFileSystem::Stamp(const std::string& path, KelFileStamp* stamp) {
  const auto found = _files.find(plain(path));
  if (found == _files.end() || path.back() == '/' || isTooLong(path)) return E_FAIL;
  const File& file = *found->second;
  stamp->device = 1;
  stamp->file = file.number;
  stamp->size = static_cast<std::int64_t>(file.bytes.size());
  stamp->modified = file.changed;
  stamp->changed = file.changed;
  // The clock counts changes, so two states never have one time.
  stamp->settled = true;
  return S_OK;
}

long MemoryFileSystem::Remove(const std::string& path) {
  const std::string name = plain(path);
  if (path.empty() || path.back() == '/' || _files.erase(name) == 0) return E_FAIL;
  wentFrom(name);
  return S_OK;
}

long MemoryFileSystem::Rename(const std::string& from, const std::string& to) {
  const std::string source = plain(from);
  const std::string target = plain(to);
  if (!_files.contains(source) || _directories.contains(target) || isTooLong(to) || to.empty() ||
      to.back() == '/' || !hasParent(target)) {
    return E_FAIL;
  }
  if (source == target) return S_OK;
  _files[target] = _files[source];
  _files[target]->changed = ++_clock;
  _files.erase(source);
  wentFrom(source);
  return S_OK;
}

long MemoryFileSystem::MakeDirectory(const std::string& path) {
  const std::string name = plain(path);
  if (path.empty() || isTooLong(path) || _files.contains(name) || _directories.contains(name) ||
      !hasParent(name)) {
    return E_FAIL;
  }
  _directories[name] = ++_numbers;
  return S_OK;
}

long MemoryFileSystem::FindDirectory(const std::string& path, KelFileStamp* identity) {
  const auto found = _directories.find(plain(path));
  if (path.empty() || found == _directories.end()) return E_FAIL;
  identity->device = 1;
  identity->file = found->second;
  return S_OK;
}

long MemoryFileSystem::StartWatch(const std::string& path, int* watch) {
  const std::string name = plain(path);
  if (!_directories.contains(name)) return E_FAIL;
  *watch = ++_handles;
  _watches[*watch] = {name, false};
  return S_OK;
}

long MemoryFileSystem::PollWatch(int watch, bool* changed) {
  const auto found = _watches.find(watch);
  if (found == _watches.end()) return E_FAIL;
  *changed = found->second.second;
  found->second.second = false;
  return S_OK;
}

std::shared_ptr<MemoryFileSystem::File> MemoryFileSystem::newFile() {
  return std::make_shared<File>(File{"", ++_numbers, ++_clock});
}

bool MemoryFileSystem::hasParent(const std::string& path) const {
  return _directories.contains(parentOf(path));
}

void MemoryFileSystem::wentFrom(const std::string& path) {
  const std::string parent = parentOf(path);
  for (auto& [watch, state] : _watches) state.second = state.second || state.first == parent;
}
