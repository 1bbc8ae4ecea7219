// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>

extern char** environ;

namespace plumetta {
namespace {

// How long a child that has ended may go unnoticed while something of its own holds the pipe open.
constexpr int kLookMilliseconds = 20;

// What a spawned process begins with: a group of its own, nothing to read, its output in the pipe.
class SpawnPlan {
 public:
  explicit SpawnPlan(int output) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnPlan() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

}  // namespace

struct ChildProcess::System {
  pid_t process = -1;
  int output = -1;

  bool hasEnded() {
    if (process > 0 && waitpid(process, nullptr, WNOHANG) == process) process = -1;
    return process <= 0;
  }
};

std::string ownExecutable() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

ChildProcess::ChildProcess() : system_(std::make_unique<System>()) {}
ChildProcess::~ChildProcess() { kill(); }

bool ChildProcess::start(const std::string& executable, const std::vector<std::string>& arguments) {
  kill();
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  std::vector<char*> words{const_cast<char*>(executable.c_str())};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const SpawnPlan plan(ends[1]);
  const int failure = posix_spawn(&system_->process, executable.c_str(), &plan.actions, &plan.attributes,
                                  words.data(), environ);
  close(ends[1]);
  system_->output = ends[0];
  if (failure == 0) return true;
  system_->process = -1;
  kill();
  return false;
}

ChildProcess::Reading ChildProcess::read(std::string& output, std::chrono::milliseconds longest) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + longest;
  std::array<char, 4096> part;
  while (system_->output >= 0) {
    // Before the look at the pipe: what it has written until it ended is there then.
    const bool ended = system_->hasEnded();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd wait{system_->output, POLLIN, 0};
    const int wanted = static_cast<int>(std::clamp<long long>(left, 0, kLookMilliseconds));
    const int ready = poll(&wait, 1, ended ? 0 : wanted);
    if (ready > 0) {
      const ssize_t bytes = ::read(system_->output, part.data(), part.size());
      if (bytes > 0) {
        output.append(part.data(), static_cast<size_t>(bytes));
        return Reading::some;
      }
      if (bytes == 0) return Reading::ended;
    }
    if (ended) return Reading::ended;
    if (left <= 0) return Reading::nothing;
  }
  return Reading::ended;
}

void ChildProcess::kill() {
  if (system_->process > 0) {
    ::kill(-system_->process, SIGKILL);
    while (waitpid(system_->process, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  if (system_->output >= 0) close(system_->output);
  *system_ = System{};
}

void settleAsChild() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
}

}  // namespace plumetta
