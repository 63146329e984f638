// The parsers of this process: kept, so that a document does not pay for making one.
#pragma once

#include <memory>

#include "KelXmlScanner.h"

// Used while the platform is kept up (KelXmlPlatform::Use).
class KelXmlScannerPool {
 public:
  // A parser for one document, made when none is idle. Throws what making one throws.
  static std::unique_ptr<KelXmlScanner> Take();
  // Gives `scanner` back for later documents, if it is good for more.
  static void Give(std::unique_ptr<KelXmlScanner> scanner);
};
