#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/temporary_folder.h"

namespace orvo::test {

/// A folder whose paths have the interfaces' form.
class TempFolder : public TemporaryFolder {
 public:
  using TemporaryFolder::TemporaryFolder;

  std::string System(const std::string& name = {}) const { return TemporaryFolder::Path(name); }
  std::u16string Path(const std::string& name = {}) const { return PathFromSystem(System(name)); }
  std::size_t Count() const { return Names().size(); }
  void Put(const std::string& name, const std::string& content) const { Write(name, content); }
  std::string Get(const std::string& name) const { return Read(name); }
};

/// Runs the body in a child process and gives what it returned, 0 to 125.
template <class Body>
int InChildProcess(Body&& body) {
  pid_t child = fork();
  if (child == 0) _exit(body());
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace orvo::test
