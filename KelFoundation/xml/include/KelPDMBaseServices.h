// Makes input sources for the XML parser.
#pragma once

#include <memory>
#include <sstream>

#include "KelExport.h"
#include "KelInputSource.h"

class KEL_XML_EXPORT KelPDMBaseServices {
 public:
  // Makes a source over `size` bytes at `buffer`, called `name`. The bytes are borrowed: they must
  // outlive the source. A size of 0 makes an empty source, which no document can be parsed from.
  //
  // Returns S_OK with `source` set, or E_FAIL with `source` null when `buffer` is null or `size` is
  // negative.
  static long CreateMemBufInputSourceFromChar(const char* buffer, int size, const char* name,
                                              std::unique_ptr<KelInputSource>& source);

  // Makes a source over what was written to `stream`, which is left empty.
  static long CreateMemBufInputSourceFromOstr(std::ostringstream& stream, const char* name,
                                              std::unique_ptr<KelInputSource>& source);
};
