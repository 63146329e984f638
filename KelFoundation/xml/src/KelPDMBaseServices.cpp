#include "KelPDMBaseServices.h"

#include <string>
#include <string_view>

#include "KelLib.h"

long KelPDMBaseServices::CreateMemBufInputSourceFromChar(const char* buffer, int size,
                                                         const char* name,
                                                         std::unique_ptr<KelInputSource>& source) {
  source.reset();
  if (buffer == nullptr || size < 0) return E_FAIL;
  const std::string_view text(buffer, static_cast<std::size_t>(size));
  source = std::make_unique<KelInputSource>(text, name);
  return S_OK;
}

long KelPDMBaseServices::CreateMemBufInputSourceFromOstr(std::ostringstream& stream,
                                                         const char* name,
                                                         std::unique_ptr<KelInputSource>& source) {
  source.reset();
  source = std::make_unique<KelInputSource>(std::move(stream).str(), name);
  stream.str({});
  return S_OK;
}
