// A placeholder of the toolbox, kept for the hosts that name it. It holds nothing.
#pragma once

#include "ZetNorvExport.h"

class ZETNORV_EXPORT MVarEnv {
 public:
  MVarEnv() = default;
  MVarEnv(const MVarEnv&) = default;
  // Copies nothing.
  MVarEnv& operator=(const MVarEnv& other);
};
