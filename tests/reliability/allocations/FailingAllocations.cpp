#include "FailingAllocations.h"

#include <cstdlib>
#include <new>

namespace {

struct State {
  bool armed = false;
  long nth = 0;
  bool always = false;
  long requests = 0;
};

constinit State state;

void* get(std::size_t size, std::size_t alignment) noexcept {
  if (FailingAllocations::refuses()) return nullptr;
  const std::size_t bytes = size == 0 ? 1 : size;
  if (alignment <= alignof(std::max_align_t)) return std::malloc(bytes);
  return std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
}

void* getOrThrow(std::size_t size, std::size_t alignment = 1) {
  void* const block = get(size, alignment);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

FailingAllocations::FailingAllocations(long nth, Times times)
    : _watcher(KelXmlBlocks::SetWatcher(this)), _listener(KelTrace::SetListener(this)) {
  state = {false, nth, times == Times::kAlways, 0};
}

FailingAllocations::~FailingAllocations() {
  KelTrace::SetListener(_listener);
  KelXmlBlocks::SetWatcher(_watcher);
}

bool FailingAllocations::hasFailed() const { return state.requests >= state.nth; }

bool FailingAllocations::refuses() {
  if (!state.armed) return false;
  ++state.requests;
  return state.always ? state.requests >= state.nth : state.requests == state.nth;
}

void FailingAllocations::arm(bool armed) { state.armed = armed; }

bool FailingAllocations::OnGet(std::size_t size) {
  return !refuses() && (_watcher == nullptr || _watcher->OnGet(size));
}

void FailingAllocations::OnRelease(std::size_t size) {
  if (_watcher != nullptr) _watcher->OnRelease(size);
}

void FailingAllocations::OnLine(const char* traceName, int level, const std::string& line) {
  const bool armed = state.armed;
  state.armed = false;
  if (_listener != nullptr) _listener->OnLine(traceName, level, line);
  state.armed = armed;
}

void* operator new(std::size_t size) { return getOrThrow(size); }
void* operator new[](std::size_t size) { return getOrThrow(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return getOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return getOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return get(size, 1); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return get(size, 1); }

void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
