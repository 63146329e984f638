// What a hook does in its mode.
#pragma once

namespace zetnorv {

// SAVE: records the request; for operation 321 its document is staged as well.
long recordRequest(const char* message, int size);

// SAVE: records the answer; for operation 321 the database file is extended from it. A null `size`
// or `status` counts as 0, is traced and gives E_FAIL; the answer keeps its line all the same.
long recordAnswer(const char* answer, const int* size, const int* status);

// REPLAY, SCAN, OLDREPLAY: checks the request against the recording and collects its identifiers.
long checkRequest(const char* message, int size);

// REPLAY, OLDREPLAY: puts the recorded answer in place of the client's, `*answer`. A null `answer`,
// `size` or `status` is traced and refused.
long replayAnswer(char** answer, int* size, int* status);

}  // namespace zetnorv
