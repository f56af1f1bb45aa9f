#include "app/browser.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace orvo::app {

bool OpenInBrowser(const std::string& address) {
  // A session of its own: what ends the command in its terminal leaves the browser alone. Signals work there as usual.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  // What browsers tell a terminal is of no use there.
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);

  std::string program = "xdg-open";
  std::string argument = address;
  const std::array<char*, 3> words{program.data(), argument.data(), nullptr};
  pid_t child = 0;
  const bool started = posix_spawnp(&child, program.c_str(), &files, &attributes, words.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  return started;
}

}  // namespace orvo::app
