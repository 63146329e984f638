#include "Environment.h"

#include <cstdlib>

namespace {

constexpr const char* kVariables[] = {"ZETNORV_DEBUG", "ZETNORV_CMD",  "ZETNORV_MODE",
                                      "ZETNORV_CONST", "ZET_LOG_NAME", "BIX_ZET_IN",
                                      "BIX_ZET_TMP",   "App_CfgFile",  "App_RefFile",
                                      "App_SceFile",   "App_ErrFile",  "KEL_DRIVE_ROOT"};

void put(const std::string& name, const std::optional<std::string>& value) {
#if defined(_WIN32)
  _putenv_s(name.c_str(), value ? value->c_str() : "");
#else
  if (value) {
    setenv(name.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name.c_str());
  }
#endif
}

}  // namespace

Environment::Environment() {
  for (const char* name : kVariables) unset(name);
}

Environment::~Environment() {
  for (const auto& [name, value] : _before) put(name, value);
}

void Environment::set(const std::string& name, const std::string& value) {
  remember(name);
  put(name, value);
}

void Environment::unset(const std::string& name) {
  remember(name);
  put(name, std::nullopt);
}

void Environment::remember(const std::string& name) {
  if (_before.count(name) != 0) return;
  const char* value = std::getenv(name.c_str());
  _before[name] = value == nullptr ? std::nullopt : std::optional<std::string>(value);
}
