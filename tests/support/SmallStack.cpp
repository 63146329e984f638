#include "SmallStack.h"

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace {

constexpr unsigned char kPaint = 0xA5;

class Stack {
 public:
  explicit Stack(std::size_t bytes)
      : _guard(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))), _size(bytes) {
    void* memory = mmap(nullptr, _size, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no memory for a stack");
    _lowest = static_cast<unsigned char*>(memory);
    std::memset(_lowest, kPaint, _size);
    if (mprotect(_lowest, _guard, PROT_NONE) != 0) throw std::runtime_error("no guard");
  }
  ~Stack() { munmap(_lowest, _size); }
  Stack(const Stack&) = delete;
  Stack& operator=(const Stack&) = delete;

  unsigned char* start() const { return _lowest + _guard; }
  std::size_t size() const { return _size - _guard; }

  // Not what a sanitizer is to look at: frames that are gone have been here.
#if defined(__GNUC__)
  __attribute__((no_sanitize("address")))
#endif
  std::size_t
  used() const {
    const volatile unsigned char* bytes = start();
    std::size_t unused = 0;
    while (unused < size() && bytes[unused] == kPaint) ++unused;
    return _size - unused;
  }

 private:
  std::size_t _guard;
  std::size_t _size;
  unsigned char* _lowest = nullptr;
};

void* run(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  return nullptr;
}

}  // namespace

std::size_t runOnStack(std::size_t bytes, const std::function<void()>& work) {
  const Stack stack(bytes);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_t thread{};
  if (pthread_attr_setstack(&attributes, stack.start(), stack.size()) != 0 ||
      pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)) != 0) {
    throw std::runtime_error("no thread on a stack of its own");
  }
  pthread_attr_destroy(&attributes);
  pthread_join(thread, nullptr);
  return stack.used();
}
