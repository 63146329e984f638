#include "LimitedProcess.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

// Who has no rights of his own anywhere.
constexpr uid_t kNobody = 65534;

// The highest descriptor that is taken when few are left: low, so that taking all is quick.
constexpr rlim_t kDescriptors = 128;

bool isAdministrator() { return geteuid() == 0; }

void flushAll() {
  std::cout.flush();
  std::fflush(nullptr);
}

void writeAll(int output, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = write(output, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    done += static_cast<std::size_t>(count);
  }
}

std::string readAll(int input) {
  std::string text;
  char piece[4096];
  while (true) {
    const ssize_t count = read(input, piece, sizeof piece);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(piece, static_cast<std::size_t>(count));
  }
}

[[noreturn]] void workAndEnd(const std::function<std::string()>& work, int output) {
  writeAll(output, work());
  flushAll();
  _exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

// Sets the limit on `resource` that holds now, and returns the one before.
rlim_t limit(decltype(RLIMIT_FSIZE) resource, rlim_t value) {
  rlimit limits{};
  getrlimit(resource, &limits);
  const rlim_t before = limits.rlim_cur;
  limits.rlim_cur = value;
  if (setrlimit(resource, &limits) != 0) ADD_FAILURE() << "cannot set a limit of " << value;
  return before;
}

void giveOne(const std::string& path) {
  if (lchown(path.c_str(), kNobody, kNobody) != 0) ADD_FAILURE() << "cannot give away " << path;
}

}  // namespace

std::string inCopyOfThisProcess(const std::function<std::string()>& work) {
  flushAll();
  int ends[2];
  if (pipe(ends) != 0) {
    ADD_FAILURE() << "no pipe";
    return "";
  }
  const pid_t copy = fork();
  if (copy == 0) {
    close(ends[0]);
    workAndEnd(work, ends[1]);
  }
  close(ends[1]);
  const std::string text = readAll(ends[0]);
  close(ends[0]);
  int state = -1;
  while (copy > 0 && waitpid(copy, &state, 0) < 0 && errno == EINTR) {
  }
  EXPECT_TRUE(copy > 0 && WIFEXITED(state) && WEXITSTATUS(state) == EXIT_SUCCESS) << state;
  return text;
}

FileSizeLimit::FileSizeLimit(std::size_t bytes) {
  // Without this, the system ends a process that meets the limit.
  std::signal(SIGXFSZ, SIG_IGN);
  _before = limit(RLIMIT_FSIZE, bytes);
}

FileSizeLimit::~FileSizeLimit() {
  limit(RLIMIT_FSIZE, static_cast<rlim_t>(_before));
  std::signal(SIGXFSZ, SIG_DFL);
}

FewDescriptors::FewDescriptors(int left) : _before(limit(RLIMIT_NOFILE, kDescriptors)) {
  for (int taken = 0; (taken = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
    _taken.push_back(taken);
  }
  for (; left > 0 && !_taken.empty(); --left) {
    close(_taken.back());
    _taken.pop_back();
  }
}

FewDescriptors::~FewDescriptors() {
  for (const int taken : _taken) close(taken);
  limit(RLIMIT_NOFILE, static_cast<rlim_t>(_before));
}

void becomeOrdinaryUser() {
  if (!isAdministrator()) return;
  const bool done = setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0;
  EXPECT_TRUE(done && !isAdministrator());
}

void giveToOrdinaryUser(const std::string& path) {
  if (!isAdministrator()) return;
  giveOne(path);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
    giveOne(entry.path().string());
  }
}

bool mountSmallDisk(const std::string& path, std::size_t bytes, int files) {
  if (unshare(CLONE_NEWNS) != 0) return false;
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  const std::string options =
      "size=" + std::to_string(bytes) + ",nr_inodes=" + std::to_string(files) + ",mode=700";
  return mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) == 0;
}
