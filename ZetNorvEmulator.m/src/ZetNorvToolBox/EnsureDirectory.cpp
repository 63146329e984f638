#include "ZetNorvToolBox/EnsureDirectory.h"

#include "Guard.h"
#include "KelDirectory.h"
#include "KelUnicodeString.h"

namespace zetnorv {

bool ensureDirectory(const MString& path) {
  const long result = guarded("ensureDirectory", [&]() -> long {
    if (RefusedMemory::wasMet()) return E_FAIL;
    const KelUnicodeString name(path.gchar());
    const long created = KelCreateDirectory(name.ConvertToWide());
    if (created == KelLibSucces) KelMakePath(name.ConvertToWide());
    return created;
  });
  return result == KelLibSucces;
}

}  // namespace zetnorv
