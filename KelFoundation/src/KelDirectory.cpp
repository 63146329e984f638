#include "KelDirectory.h"

#include <string>
#include <vector>

#include "KelFileSystem.h"
#include "KelGuard.h"
#include "KelLib.h"
#include "KelPath.h"

namespace {

bool Found(const std::string& path) {
  KelFileStamp identity;
  return KelFileSystem::Current().FindDirectory(path, &identity) == S_OK;
}

// Makes one directory. Whether it is there afterwards, whoever made it.
bool MakeOne(const std::string& path) {
  return KelFileSystem::Current().MakeDirectory(path) == S_OK || Found(path);
}

// `path` and the directories above it, the uppermost first.
std::vector<std::string> Chain(const std::string& path) {
  std::vector<std::string> chain;
  std::size_t at = 0;
  while (true) {
    const std::size_t start = path.find_first_not_of('/', at);
    if (start == std::string::npos) return chain;
    at = path.find('/', start);
    chain.push_back(path.substr(0, at));
    if (at == std::string::npos) return chain;
  }
}

// Makes the directory `path`, which is not there, and those above it that are not there either.
bool MakeWithParents(const std::string& path) {
  const std::vector<std::string> chain = Chain(path);
  std::size_t present = chain.empty() ? 0 : chain.size() - 1;
  while (present > 0 && !Found(chain[present - 1])) --present;
  for (std::size_t i = present; i < chain.size(); ++i) {
    if (!MakeOne(chain[i])) return false;
  }
  return !chain.empty();
}

}  // namespace

long KelCreateDirectory(const wchar_t* path) {
  if (path == nullptr || *path == L'\0') return E_FAIL;
  return kel::Guarded([&] {
    const std::string native = kel::NativePath(path);
    return Found(native) || MakeWithParents(native) ? KelLibSucces : E_FAIL;
  });
}

long KelMakePath(const wchar_t* path) { return KelCreateDirectory(path); }
