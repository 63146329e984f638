#include "KelEnv.h"

#include <cstddef>
#include <cstdlib>

#include "KelLib.h"
#include "KelPlatform.h"

long KelGetEnv(const char* name) {
  return name != nullptr && std::getenv(name) != nullptr ? S_OK : E_FAIL;
}

long KelGetEnvValue(const char* name, const char** value) {
  if (value == nullptr) return E_FAIL;
  *value = nullptr;
  if (name == nullptr) return E_FAIL;
  const char* text = std::getenv(name);
  if (text == nullptr || *text == '\0') return E_FAIL;
  *value = text;
  return S_OK;
}

long KelGetLoginName(char* buffer, int size) {
  if (buffer == nullptr || size < 1) return E_FAIL;
  *buffer = '\0';
  return kel::LoginName(buffer, static_cast<std::size_t>(size)) ? S_OK : E_FAIL;
}
