// Arrays that the containers of this library own: byte buffers and arrays of owning pointers.
//
// All `new[]` and `delete[]` of the library stand here. A refused allocation shows as a null
// pointer, never as an exception.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "RefusedMemory.h"

namespace zetnorv {

// What was allocated; a null pointer, which tells of a refusal, is noted.
template <class T>
T* noted(T* allocated) noexcept {
  if (allocated == nullptr) RefusedMemory::note();
  return allocated;
}

// `n` zero bytes, or null. Released with releaseBytes(), or with delete[] by a host that it was
// handed to.
inline char* newBytes(std::size_t n) { return noted(new (std::nothrow) char[n]()); }

// A copy of `n` bytes followed by a NUL, or null.
inline char* copyBytes(const char* bytes, std::size_t n) {
  char* copy = newBytes(n + 1);
  if (copy != nullptr && n > 0) std::memcpy(copy, bytes, n);
  return copy;
}

inline void releaseBytes(char*& bytes) {
  delete[] bytes;
  bytes = nullptr;
}

// Releases the bytes that `bytes` points to when it goes out of scope; a caller that hands them on
// sets the pointer to null.
class OwnedBytes {
 public:
  explicit OwnedBytes(char*& bytes) : _bytes(bytes) {}
  ~OwnedBytes() { releaseBytes(_bytes); }
  OwnedBytes(const OwnedBytes&) = delete;
  OwnedBytes& operator=(const OwnedBytes&) = delete;

 private:
  char*& _bytes;
};

// `n` default-built elements, or null when they are refused or `n` is below 1.
template <class T>
T* newElements(int n) {
  return n < 1 ? nullptr : noted(new (std::nothrow) T[static_cast<std::size_t>(n)]);
}

// Destroys the elements, last to first.
template <class T>
void releaseElements(T*& elements) noexcept {
  delete[] elements;
  elements = nullptr;
}

// How many slots an array of `capacity` has in memory: the next power of two. What a container
// states as its capacity grows in small steps; the array behind it is replaced at every doubling
// only, so that filling a container of many thousands of elements costs no more than its length.
inline std::size_t slotsInMemory(int capacity) {
  return capacity < 1 ? 0 : std::bit_ceil(static_cast<std::size_t>(capacity));
}

// An array of `capacity` empty slots, or null when it is refused or `capacity` is below 1. Every
// array that growSlots() is given comes from here.
template <class T>
T** newSlots(int capacity) {
  return capacity < 1 ? nullptr : noted(new (std::nothrow) T*[slotsInMemory(capacity)]());
}

// A deep copy of one element: null for null, and when it is refused.
template <class T>
T* newCopy(const T* element) noexcept {
  if (element == nullptr) return nullptr;
  try {
    return noted(new (std::nothrow) T(*element));
  } catch (...) {
    RefusedMemory::note();
    return nullptr;
  }
}

// An array of `capacity` slots with deep copies of the first `count` elements of `slots`.
template <class T>
T** copySlots(T* const* slots, int count, int capacity) noexcept {
  T** copy = newSlots<T>(capacity);
  if (copy == nullptr || slots == nullptr) return copy;
  for (int i = 0; i < count && i < capacity; ++i) copy[i] = newCopy(slots[i]);
  return copy;
}

// Destroys the first `count` elements, then the array.
template <class T>
void releaseSlots(T**& slots, int count) noexcept {
  if (slots == nullptr) return;
  for (int i = 0; i < count; ++i) delete slots[i];
  delete[] slots;
  slots = nullptr;
}

// Makes room for one more element: the capacity of a full array grows by `increment`. The elements
// stay the objects they are; the array may be another one afterwards.
//
// Returns false, with everything as it was, when a larger array is refused.
template <class T>
bool growSlots(T**& slots, int count, int& capacity, int increment) noexcept {
  if (count + 1 <= capacity && slots != nullptr) return true;
  const int enlarged = capacity + increment;
  if (slots == nullptr || slotsInMemory(enlarged) > slotsInMemory(capacity)) {
    T** larger = newSlots<T>(enlarged);
    if (larger == nullptr) return false;
    if (slots != nullptr) std::copy_n(slots, count, larger);
    delete[] slots;
    slots = larger;
  }
  capacity = enlarged;
  return true;
}

// The same for a container whose stated policy it is that every growth copies every element: the
// array and its elements are replaced by copies.
template <class T>
bool growSlotsByCopying(T**& slots, int count, int& capacity, int increment) noexcept {
  if (count + 1 <= capacity && slots != nullptr) return true;
  T** larger = copySlots(slots, count, capacity + increment);
  if (larger == nullptr) return false;
  releaseSlots(slots, count);
  slots = larger;
  capacity += increment;
  return true;
}

// Puts `element` behind the last one, growing the array when it is full. The caller makes the
// element before, so a copy of one of the array's own is safe; a null one (refused) takes a slot as
// well. When the larger array is refused the element is destroyed and nothing changes.
template <class T>
void appendSlot(T**& slots, int& count, int& capacity, int increment,
                std::unique_ptr<T> element) noexcept {
  if (!growSlots(slots, count, capacity, increment)) return;
  slots[count] = element.release();
  ++count;
}

// The same with a deep copy of `element`.
template <class T>
void appendCopy(T**& slots, int& count, int& capacity, int increment, const T& element) noexcept {
  appendSlot(slots, count, capacity, increment, std::unique_ptr<T>(newCopy(&element)));
}

}  // namespace zetnorv
