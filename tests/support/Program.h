// Runs another program and waits for its end.
#pragma once

#include <string>
#include <vector>

struct ProgramRun {
  int status = -1;     // the program's exit status; -1 when it did not end by itself
  std::string output;  // what it wrote to standard output
};

// Starts `program` with these arguments and with this process's environment. What it writes to
// standard error goes where this process's goes.
ProgramRun runProgram(const std::string& program, const std::vector<std::string>& arguments);
