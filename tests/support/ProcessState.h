// What belongs to the whole process, so that a library must leave it as its host has set it.
#pragma once

#include <string>
#include <vector>

struct ProcessState {
  // As it is now.
  static ProcessState now();

  bool operator==(const ProcessState&) const = default;

  std::string workingDirectory;
  unsigned fileRights = 0;            // those that new files don't get
  std::vector<std::string> handlers;  // what each signal does
  std::string blocked;                // the signals that this thread does not hear
  std::vector<std::string> environment;
  std::string locale;
};
