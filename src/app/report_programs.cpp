#include "app/report_programs.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "app/messages.h"

namespace orvo::app {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostRunning = 4;
constexpr std::size_t kMostWaiting = 100;

bool IsProgram(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

/// Where the program is: told now, since its first run may be an hour away.
std::string FindProgram(const std::string& program) {
  std::string found;
  if (program.find('/') != std::string::npos) {
    std::error_code error;
    found = fs::absolute(program, error).string();
  } else {
    const char* variable = std::getenv("PATH");
    const std::string_view path = variable ? variable : "";
    for (std::size_t begin = 0; begin <= path.size() && !IsProgram(found);) {
      const std::size_t end = std::min(path.find(':', begin), path.size());
      found = (fs::path(path.substr(begin, end - begin)) / program).string();
      begin = end + 1;
    }
  }
  if (IsProgram(found)) return found;
  std::error_code error;
  throw CommandError(kUsage, fmt::format("--on-report {}: {}", program,
                                         fs::is_regular_file(found, error) ? "may not be executed; chmod +x lets it be"
                                                                           : "there is no such program"));
}

/// Why a program that was found could not be started: its file is there, so that the errors about files mean something
/// else.
std::string WhyNotStarted(int error, const std::string& program) {
  std::error_code ignored;
  if (error == ENOENT && fs::exists(program, ignored))
    return "the interpreter that its first line names does not exist";
  if (error == ENOEXEC)
    return "it is no program of this machine, and no first line such as #!/bin/sh names its interpreter";
  return Describe(StatusFromErrno(error));
}

/// How a program begins: signals as they are for every other, nothing to read, and no file of ours.
class Beginning {
 public:
  Beginning() {
    posix_spawnattr_init(&attributes_);
    posix_spawn_file_actions_init(&actions_);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
  }
  Beginning(const Beginning&) = delete;
  Beginning& operator=(const Beginning&) = delete;
  ~Beginning() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }

  const posix_spawnattr_t* attributes() const { return &attributes_; }
  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

ReportPrograms::ReportPrograms(const std::string& program) : program_(program.empty() ? "" : FindProgram(program)) {}

void ReportPrograms::Add(std::uint32_t severity, const std::string& text) {
  if (program_.empty()) return;
  if (waiting_.size() == kMostWaiting) {
    waiting_.pop_front();
    Warn(fmt::format("is too slow; the oldest of {} reports is passed over", kMostWaiting));
  }
  waiting_.push_back({severity, text});
}

void ReportPrograms::Tend() {
  Reap();
  while (!waiting_.empty() && running_.size() < kMostRunning) {
    Start(waiting_.front());
    waiting_.pop_front();
  }
}

void ReportPrograms::Reap() {
  std::erase_if(running_, [this](pid_t process) {
    int status = 0;
    const pid_t ended = waitpid(process, &status, WNOHANG);
    if (ended == 0) return false;
    if (ended == process && WIFSIGNALED(status)) Warn(fmt::format("was ended by signal {}", WTERMSIG(status)));
    if (ended == process && WIFEXITED(status) && WEXITSTATUS(status) != 0) {
      Warn(fmt::format("ended with status {}", WEXITSTATUS(status)));
    }
    return true;
  });
}

void ReportPrograms::Start(const Call& call) {
  const Beginning beginning;
  std::string severity = std::to_string(call.severity);
  std::string text = call.text;
  std::array<char*, 4> words = {program_.data(), severity.data(), text.data(), nullptr};
  pid_t process = 0;
  running_.reserve(running_.size() + 1);
  const int error =
      posix_spawn(&process, program_.c_str(), beginning.actions(), beginning.attributes(), words.data(), environ);
  if (error != 0) {
    Warn("cannot be started: " + WhyNotStarted(error, program_));
    return;
  }
  running_.push_back(process);
}

void ReportPrograms::Warn(const std::string& what) const {
  PrintWarning(fmt::format("--on-report {}: {}", program_, what));
}

}  // namespace orvo::app
