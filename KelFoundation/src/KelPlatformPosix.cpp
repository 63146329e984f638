#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "KelPlatform.h"

namespace kel {
namespace {

// Longer than any name or entry that a system is known to give out.
constexpr std::size_t kNameBytes = 512;
constexpr std::size_t kEntryBytes = 16384;

bool Take(const char* name, char* buffer, std::size_t size) {
  if (name == nullptr || *name == '\0') return false;
  std::snprintf(buffer, size, "%s", name);
  return true;
}

bool SessionName(char* buffer, std::size_t size) {
  char name[kNameBytes] = {};
  return getlogin_r(name, sizeof name) == 0 && Take(name, buffer, size);
}

bool AccountName(char* buffer, std::size_t size) {
  char strings[kEntryBytes];
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, strings, sizeof strings, &found) != 0) return false;
  return found != nullptr && Take(found->pw_name, buffer, size);
}

}  // namespace

bool LocalTime(std::time_t now, std::tm* fields) {
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) return false;
  *fields = local;
  return true;
}

bool LoginName(char* buffer, std::size_t size) {
  // A process without a terminal (a server, a container) has no session to name the user.
  return SessionName(buffer, size) || AccountName(buffer, size) ||
         Take(std::getenv("LOGNAME"), buffer, size);
}

}  // namespace kel
