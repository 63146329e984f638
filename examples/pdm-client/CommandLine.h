// The command line of the sample client.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pdm-client/Session.h"

namespace pdm {

struct CommandLine {
  SessionOptions session;
  bool queries = false;
  bool quiet = false;
  bool help = false;
  std::string fault;  // what is wrong with the arguments; empty when nothing is
};

// Reads the arguments behind the program's name. Without --seed the session gets one of its own.
CommandLine readCommandLine(const std::vector<std::string>& arguments);

std::string_view usage();

}  // namespace pdm
