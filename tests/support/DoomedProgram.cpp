#include "DoomedProgram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

namespace {

// The child's side: becomes the program.
[[noreturn]] void become(const std::string& program, std::vector<std::string> arguments,
                         int output) {
  std::vector<char*> words{const_cast<char*>(program.c_str())};
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  dup2(output, STDOUT_FILENO);
  close(output);
  execv(program.c_str(), words.data());
  std::_Exit(127);
}

// The child works on meanwhile.
void passTime(int microseconds) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::microseconds(microseconds);
  while (Clock::now() < end) {
  }
}

// Reads until the other side ends; kills `child` some time after it has written `enough` lines.
int linesFrom(int input, pid_t child, int enough, int microseconds) {
  int lines = 0;
  char piece[256];
  while (true) {
    const ssize_t count = read(input, piece, sizeof piece);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return lines;
    lines += static_cast<int>(std::count(piece, piece + count, '\n'));
    if (enough == 0 || lines < enough) continue;
    passTime(microseconds);
    kill(child, SIGKILL);
  }
}

}  // namespace

DoomedRun runDoomed(const std::string& program, const std::vector<std::string>& arguments,
                    int lines, int microseconds) {
  DoomedRun run;
  int ends[2];
  if (pipe(ends) != 0) return run;
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    become(program, arguments, ends[1]);
  }
  close(ends[1]);
  if (child > 0) {
    run.lines = linesFrom(ends[0], child, lines, microseconds);
    int state = 0;
    while (waitpid(child, &state, 0) < 0 && errno == EINTR) {
    }
    run.killed = WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL;
    if (WIFEXITED(state)) run.status = WEXITSTATUS(state);
  }
  close(ends[0]);
  return run;
}

void killThisProcess() {
  std::raise(SIGKILL);
  std::abort();
}
