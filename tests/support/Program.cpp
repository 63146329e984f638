#include "Program.h"

#include <array>
#include <cstdio>

#if defined(_WIN32)
#define popen _popen
#define pclose _pclose
#else
#include <sys/wait.h>
#endif

namespace {

std::string quoted(const std::string& word) {
#if defined(_WIN32)
  return '"' + word + '"';
#else
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + '\'';
#endif
}

int exitStatus(int state) {
#if defined(_WIN32)
  return state;
#else
  return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
#endif
}

}  // namespace

ProgramRun runProgram(const std::string& program, const std::vector<std::string>& arguments) {
  std::string command = quoted(program);
  for (const std::string& argument : arguments) command += ' ' + quoted(argument);
  ProgramRun run;
  std::FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) return run;
  std::array<char, 4096> piece;
  std::size_t count = 0;
  while ((count = std::fread(piece.data(), 1, piece.size(), output)) > 0) {
    run.output.append(piece.data(), count);
  }
  run.status = exitStatus(pclose(output));
  return run;
}
