#include "tests/support/command.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
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

/// Reads both pipes until the program has closed them.
void ReadBoth(int output, int messages, CommandResult* result) {
  std::array<pollfd, 2> pipes{{{output, POLLIN, 0}, {messages, POLLIN, 0}}};
  std::array<std::string*, 2> texts{&result->output, &result->messages};
  for (int open = 2; open > 0;) {
    poll(pipes.data(), pipes.size(), -1);
    for (std::size_t i = 0; i < pipes.size(); ++i) {
      if (pipes[i].fd < 0 || pipes[i].revents == 0) continue;
      char bytes[4096];
      ssize_t count = read(pipes[i].fd, bytes, sizeof bytes);
      if (count > 0) {
        texts[i]->append(bytes, static_cast<std::size_t>(count));
      } else {
        close(pipes[i].fd);
        pipes[i].fd = -1;
        --open;
      }
    }
  }
}

}  // namespace

CommandResult RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment) {
  int output[2];
  int messages[2];
  if (pipe(output) != 0 || pipe(messages) != 0) throw std::runtime_error("no pipe");
  pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    dup2(output[1], STDOUT_FILENO);
    dup2(messages[1], STDERR_FILENO);
    for (int end : {output[0], output[1], messages[0], messages[1]}) close(end);
    BecomeProgram(program, arguments, environment);
  }
  close(output[1]);
  close(messages[1]);
  CommandResult result;
  ReadBoth(output[0], messages[0], &result);
  int status = 0;
  waitpid(child, &status, 0);
  result.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

CommandResult RunCommand(const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment) {
  return RunProgram(ORVO_BINARY_DIR "/bin/orvo-report", arguments, environment);
}

}  // namespace orvo::test
