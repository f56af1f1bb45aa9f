#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/path.h"

namespace orvo::test {

/// A folder of the test's own that goes with it.
class TempFolder {
 public:
  explicit TempFolder(const std::filesystem::path& below = std::filesystem::temp_directory_path()) {
    std::string pattern = (below / "orvo-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) ADD_FAILURE() << "no temporary folder";
    path_ = pattern;
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  /// A name in the folder, in the system's form and in the interfaces'.
  std::string System(const std::string& name = {}) const { return (name.empty() ? path_ : path_ / name).string(); }
  std::u16string Path(const std::string& name = {}) const { return PathFromSystem(System(name)); }

  /// Number of entries, hidden ones included.
  std::size_t Count() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

  void Put(const std::string& name, const std::string& content) const {
    std::ofstream(path_ / name, std::ios::binary) << content;
  }
  std::string Get(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
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
