// A client that records a session of the sample client and is killed in the middle of it.
//
//   doomed-host <work folder> <exchanges> <n>
//
// The kill comes at the n-th call of the file system; of a long write, half is made before it. With
// an `n` of 0 it lives, and prints a line for every step that is done, for one who kills it from
// outside.
#include <cstdlib>
#include <iostream>

#include "FaultyFileSystem.h"
#include "pdm-client/Session.h"

int main(int count, char* arguments[]) {
  if (count != 4) return 2;
  pdm::SessionOptions options;
  options.seed = 1;
  options.workFolder = arguments[1];
  options.documentBytes = 2000;
  options.plan.exchanges = std::atoi(arguments[2]);
  options.plan.snapshots = true;
  options.log = &std::cout;
  std::cout << std::unitbuf;
  FaultyFileSystem files;
  files.killAtCall(std::atoi(arguments[3]), FaultyFileSystem::Kill::kBySignal);
  pdm::Session(options).run();
  std::cout << files.calls().size() << " calls\n";
  return 0;
}
