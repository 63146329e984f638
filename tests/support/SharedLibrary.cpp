#include "SharedLibrary.h"

#include <dlfcn.h>

bool SharedLibrary::load(const std::string& path, Names names, Binding binding,
                         std::string& problem) {
  unload();
  _handle = dlopen(path.c_str(), (names == Names::kLocal ? RTLD_LOCAL : RTLD_GLOBAL) |
                                     (binding == Binding::kLazy ? RTLD_LAZY : RTLD_NOW));
  if (_handle != nullptr) return true;
  const char* reason = dlerror();
  problem = reason == nullptr ? "unknown" : reason;
  return false;
}

void SharedLibrary::unload() {
  if (_handle != nullptr) dlclose(_handle);
  _handle = nullptr;
}

void* SharedLibrary::find(const char* name) const { return dlsym(_handle, name); }
