#pragma once

#include <string>
#include <vector>

namespace orvo::test {

/// A folder of the test's own, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The folder, or something in it, in the system's form.
  std::string Path(const std::string& name = {}) const;
  /// The folder as a report folder: backslashes, and one at the end.
  std::u16string ReportFolder() const;

  /// The bytes of a file; fails the test when it cannot be read.
  std::string Read(const std::string& name) const;
  void Write(const std::string& name, const std::string& bytes) const;
  bool Has(const std::string& name) const;
  /// The names of what is in it, sorted.
  std::vector<std::string> Names() const;

 private:
  std::string path_;
};

/// The lines of a text, without their line ends. A last line that is not ended is marked with " (not ended)".
std::vector<std::string> Lines(const std::string& text);

}  // namespace orvo::test
