// What the process's environment says, read afresh at every call.
#pragma once

#include "KelExport.h"

// Returns S_OK when the variable `name` is defined, with or without a value; E_FAIL when it is not,
// or `name` is null.
KEL_FOUNDATION_EXPORT long KelGetEnv(const char* name);

// Gives the text of the variable `name`, when it has one that is not empty.
//
// Returns S_OK with `*value` set (borrowed: valid until the environment changes), or E_FAIL with
// `*value` null.
KEL_FOUNDATION_EXPORT long KelGetEnvValue(const char* name, const char** value);

// Writes the login name of the process's user, cut to `size` - 1 bytes, NUL-terminated, to
// `buffer`.
//
// Returns S_OK, or E_FAIL with an empty text in `buffer` (when it has room for one).
KEL_FOUNDATION_EXPORT long KelGetLoginName(char* buffer, int size);
