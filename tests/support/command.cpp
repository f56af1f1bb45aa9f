#include "tests/support/command.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace orvo::test {
namespace {

[[noreturn]] void BecomeProgram(const std::string& program, const std::vector<std::string>& arguments,
                                const std::vector<std::pair<std::string, std::string>>& environment) {
  setenv("TZ", "UTC", 1);
  setenv("LC_ALL", "C", 1);
  setenv("ORVO_REGISTRY", "/nonexistent/registry.xml", 1);
  for (const auto& [name, value] : environment) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  std::vector<char*> words{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  execv(program.c_str(), words.data());
  _exit(127);
}

int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

}  // namespace

RunningCommand::RunningCommand(const std::string& program, const std::vector<std::string>& arguments,
                               const std::vector<std::pair<std::string, std::string>>& environment) {
  int output[2];
  int messages[2];
  if (pipe2(output, O_CLOEXEC) != 0 || pipe2(messages, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  process_ = fork();
  if (process_ < 0) throw std::runtime_error("no process");
  if (process_ == 0) {
    dup2(output[1], STDOUT_FILENO);
    dup2(messages[1], STDERR_FILENO);
    BecomeProgram(program, arguments, environment);
  }
  close(output[1]);
  close(messages[1]);
  streams_ = {{output[0], &CommandResult::output}, {messages[0], &CommandResult::messages}};
}

RunningCommand::RunningCommand(const std::vector<std::string>& arguments,
                               const std::vector<std::pair<std::string, std::string>>& environment)
    : RunningCommand(ORVO_BINARY_DIR "/bin/orvo-report", arguments, environment) {}

RunningCommand::~RunningCommand() {
  for (const Stream& stream : streams_) close(stream.descriptor);
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void RunningCommand::Signal(int signal) const {
  kill(process_, signal);
}

bool RunningCommand::Read(int milliseconds) {
  std::vector<pollfd> polled;
  for (const Stream& stream : streams_) polled.push_back({stream.descriptor, POLLIN, 0});
  if (polled.empty() || poll(polled.data(), polled.size(), milliseconds) <= 0) return !polled.empty();
  for (std::size_t i = polled.size(); i-- > 0;) {
    if (polled[i].revents == 0) continue;
    char bytes[4096];
    const ssize_t count = read(polled[i].fd, bytes, sizeof bytes);
    if (count > 0) {
      (result_.*streams_[i].text).append(bytes, static_cast<std::size_t>(count));
    } else {
      close(polled[i].fd);
      streams_.erase(streams_.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  return true;
}

bool RunningCommand::WaitFor(const std::string& text, int times) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (CountOf(result_.output, text) + CountOf(result_.messages, text) < times) {
    constexpr int kMilliseconds = 200;
    if (std::chrono::steady_clock::now() > end || !Read(kMilliseconds)) return false;
  }
  return true;
}

void RunningCommand::ReadFor(std::chrono::milliseconds time) {
  using std::chrono::milliseconds;
  const auto end = std::chrono::steady_clock::now() + time;
  for (milliseconds left = time; left.count() > 0;) {
    if (!Read(static_cast<int>(left.count()))) return;
    left = std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now());
  }
}

CommandResult RunningCommand::Finish() {
  while (Read(-1)) {
  }
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
  result_.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result_;
}

CommandResult RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment) {
  return RunningCommand(program, arguments, environment).Finish();
}

CommandResult RunCommand(const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment) {
  return RunProgram(ORVO_BINARY_DIR "/bin/orvo-report", arguments, environment);
}

}  // namespace orvo::test
