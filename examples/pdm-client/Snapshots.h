// Blocks of data that the client fetches outside the exchange of messages, when it navigates for
// the first time. The library keeps them at the client's request.
#pragma once

#include <string>

namespace pdm {

struct SnapshotResult {
  int bytes = 0;
  std::string what;     // what was done with it
  std::string problem;  // empty when all went well
};

// Fetches the block with the given number, from 0 on. A recording run saves it; a run that follows
// a recording reads it back and compares it with what was fetched.
SnapshotResult takeSnapshot(int number);

}  // namespace pdm
