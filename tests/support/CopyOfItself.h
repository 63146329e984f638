// What an old host makes when it initialises an object from itself (`Thing thing(thing)`).
#pragma once

#include <new>

template <class T>
class CopyOfItself {
 public:
  CopyOfItself() {
    // Through a volatile, so that the compiler doesn't see (and warn about) what is copied.
    T* volatile self = reinterpret_cast<T*>(_storage);
    _object = new (_storage) T(*self);
  }
  ~CopyOfItself() { _object->~T(); }
  CopyOfItself(const CopyOfItself&) = delete;
  CopyOfItself& operator=(const CopyOfItself&) = delete;

  T* operator->() { return _object; }
  T& operator*() { return *_object; }

 private:
  alignas(T) unsigned char _storage[sizeof(T)] = {};
  T* _object;
};
