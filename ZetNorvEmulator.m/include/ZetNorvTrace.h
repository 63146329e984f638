// The library's one trace: every diagnostic line goes to it, level 2 for problems and notes. It is
// quiet unless the environment variable KEL_TRACE raises its level (see KelTrace.h).
#pragma once

#include "KelTrace.h"
#include "ZetNorvExport.h"

ZETNORV_EXPORT extern KelTrace ZetNorvTrace;
