#include "WatchedSystem.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

constinit WatchedSystem* current = nullptr;
constinit bool watching = false;

// Watches nothing of its own work.
class Pause {
 public:
  Pause() : _before(watching) { watching = false; }
  ~Pause() { watching = _before; }

  bool wasWatching() const { return _before; }

 private:
  bool _before;
};

// The function that the one of the same name here stands for.
template <class Function>
Function systems(const char* name) {
  const Pause pause;
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

mode_t modeOf(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

void* get(std::size_t size, std::size_t alignment) noexcept {
  const std::size_t bytes = std::max<std::size_t>(size, 1);
  void* const block =
      alignment <= alignof(std::max_align_t)
          ? std::malloc(bytes)
          : std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
  if (block != nullptr) WatchedSystem::noteMemory(static_cast<long>(malloc_usable_size(block)));
  return block;
}

void* getOrThrow(std::size_t size, std::size_t alignment = 1) {
  void* const block = get(size, alignment);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  if (block != nullptr) WatchedSystem::noteMemory(-static_cast<long>(malloc_usable_size(block)));
  std::free(block);
}

}  // namespace

WatchedSystem::WatchedSystem() : _before(KelXmlBlocks::SetWatcher(this)) { current = this; }

WatchedSystem::~WatchedSystem() {
  current = nullptr;
  KelXmlBlocks::SetWatcher(_before);
}

void WatchedSystem::watch(bool on) { watching = on; }

void WatchedSystem::noteOpened(const char* path) {
  const Pause pause;
  if (pause.wasWatching()) current->_opened.emplace_back(path == nullptr ? "(null)" : path);
}

void WatchedSystem::noteConnection() {
  if (watching) ++current->_connections;
}

void WatchedSystem::noteMemory(long bytes) {
  if (!watching) return;
  current->_taken += bytes;
  current->_peak = std::max(current->_peak, current->_taken);
}

bool WatchedSystem::OnGet(std::size_t size) {
  noteMemory(static_cast<long>(size));
  return true;
}

void WatchedSystem::OnRelease(std::size_t size) { noteMemory(-static_cast<long>(size)); }

// --- In the place of the system's ---

// Seen by the libraries, or they would go on with the system's own.
#pragma GCC visibility push(default)
extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  WatchedSystem::noteOpened(path);
  return systems<int (*)(const char*, int, ...)>("open")(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  WatchedSystem::noteOpened(path);
  return systems<int (*)(const char*, int, ...)>("open64")(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  WatchedSystem::noteOpened(path);
  return systems<int (*)(int, const char*, int, ...)>("openat")(directory, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
  WatchedSystem::noteOpened(path);
  return systems<FILE* (*)(const char*, const char*)>("fopen")(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  WatchedSystem::noteOpened(path);
  return systems<FILE* (*)(const char*, const char*)>("fopen64")(path, mode);
}

int socket(int domain, int type, int protocol) noexcept {
  WatchedSystem::noteConnection();
  return systems<int (*)(int, int, int)>("socket")(domain, type, protocol);
}

int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** found) {
  WatchedSystem::noteConnection();
  return systems<int (*)(const char*, const char*, const addrinfo*, addrinfo**)>("getaddrinfo")(
      node, service, hints, found);
}

hostent* gethostbyname(const char* name) {
  WatchedSystem::noteConnection();
  return systems<hostent* (*)(const char*)>("gethostbyname")(name);
}
}
#pragma GCC visibility pop

void* operator new(std::size_t size) { return getOrThrow(size); }
void* operator new[](std::size_t size) { return getOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return get(size, 1); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return get(size, 1); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return getOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return getOrThrow(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete(void* block, std::align_val_t) noexcept { release(block); }
void operator delete[](void* block, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { release(block); }
