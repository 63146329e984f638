#include "ZetNorvTrace.h"

KelTrace ZetNorvTrace("ZetNorvTrace", "Traces for ZetNorvTrace", 0, "STDERR", 1024);
