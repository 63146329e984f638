#include "ProcessState.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <cstdint>
#include <filesystem>

namespace {

std::string handlerOf(int signal) {
  struct sigaction action {};
  if (sigaction(signal, nullptr, &action) != 0) return "none";
  const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
  return std::to_string(handler) + ' ' + std::to_string(action.sa_flags);
}

}  // namespace

ProcessState ProcessState::now() {
  ProcessState state;
  state.workingDirectory = std::filesystem::current_path().string();
  // It can only be read by setting it.
  state.fileRights = umask(0);
  umask(state.fileRights);
  sigset_t blocked;
  sigemptyset(&blocked);
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  for (int signal = 1; signal < NSIG; ++signal) {
    state.handlers.push_back(handlerOf(signal));
    state.blocked += sigismember(&blocked, signal) == 1 ? '1' : '0';
  }
  for (char** variable = environ; *variable != nullptr; ++variable) {
    state.environment.emplace_back(*variable);
  }
  state.locale = std::setlocale(LC_ALL, nullptr);
  return state;
}
