// Runs another program and kills it with the signal that nobody can catch.
#pragma once

#include <string>
#include <vector>

struct DoomedRun {
  bool killed = false;  // it ended by that signal; false also when it ended before it came
  int status = -1;      // its exit status, when it ended by itself
  int lines = 0;        // how many whole lines it had written when it ended
};

// Starts `program` with this process's environment and waits for its end. It is killed so many
// microseconds after it has written `lines` lines to standard output; 0 lines: it is left to
// itself.
DoomedRun runDoomed(const std::string& program, const std::vector<std::string>& arguments,
                    int lines = 0, int microseconds = 0);

// Kills this process. Nothing is flushed or cleaned up.
[[noreturn]] void killThisProcess();
