// A shared library that is loaded while the program runs.
#pragma once

#include <string>

class SharedLibrary {
 public:
  enum class Names { kLocal, kGlobal };  // whether libraries loaded later see its names
  enum class Binding { kLazy, kNow };    // when its own calls are bound

  SharedLibrary() = default;
  ~SharedLibrary() { unload(); }
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;

  // False with `problem` set when it cannot be loaded.
  bool load(const std::string& path, Names names, Binding binding, std::string& problem);
  void unload();

  // The address of what the library, or one that it was linked with, calls `name`, as the linker
  // knows it; null when there is none.
  void* find(const char* name) const;

 private:
  void* _handle = nullptr;
};
