#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp stands in POSIX alone

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/path.h"

namespace orvo::test {

/// The bytes of any file, none when it cannot be read.
inline std::string FileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A folder of the test's own, gone with it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& below = std::filesystem::temp_directory_path())
      : path_((below / "orvo-test-XXXXXX").string()) {
    if (!mkdtemp(path_.data())) throw std::runtime_error("no temporary folder");
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  /// The folder, or something in it, in the system's form.
  std::string Path(const std::string& name = {}) const { return name.empty() ? path_ : path_ + "/" + name; }
  /// The folder as a report folder: backslashes, and one at the end.
  std::u16string ReportFolder() const { return PathFromSystem(path_ + "/"); }

  /// The bytes of a file; fails the test when it cannot be read.
  std::string Read(const std::string& name) const {
    EXPECT_TRUE(std::ifstream(Path(name)).good()) << name << " cannot be read";
    return FileBytes(Path(name));
  }
  /// Gives the file's path.
  std::string Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
  }
  bool Has(const std::string& name) const { return std::filesystem::exists(Path(name)); }
  /// The names of what is in it, hidden ones included, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }

 private:
  std::string path_;
};

/// The lines of a text, without their line ends. A last line that is not ended is marked with " (not ended)".
inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    lines.push_back(text.substr(begin, end - begin) + (end == text.size() ? " (not ended)" : ""));
    begin = end + 1;
  }
  return lines;
}

}  // namespace orvo::test
