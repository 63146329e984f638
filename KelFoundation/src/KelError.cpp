#include "KelError.h"

#include <cstdio>

#include "KelLib.h"
#include "KelTrace.h"

namespace {

constexpr int kProblemLevel = 1;

KelTrace errorTrace("KelError", "Errors returned through KelError", 0, "STDERR", 256);

}  // namespace

long KelError::GetReturn(int code, const char* sourceFile, int line) {
  if (code == 0) return S_OK;
  if (errorTrace.Listens(kProblemLevel)) {
    char text[1024];
    std::snprintf(text, sizeof text, "%s:%d: error %d", sourceFile == nullptr ? "?" : sourceFile,
                  line, code);
    errorTrace.TraPutLN(kProblemLevel, text);
  }
  return E_FAIL;
}
