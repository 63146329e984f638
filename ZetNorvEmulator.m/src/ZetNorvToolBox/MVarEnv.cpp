#include "MVarEnv.h"

MVarEnv& MVarEnv::operator=(const MVarEnv&) { return *this; }
