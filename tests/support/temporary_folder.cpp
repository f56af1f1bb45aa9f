#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/path.h"

namespace orvo::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() : path_((fs::temp_directory_path() / "orvo-test-XXXXXX").string()) {
  if (!mkdtemp(path_.data())) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::Path(const std::string& name) const {
  return name.empty() ? path_ : path_ + "/" + name;
}

std::u16string TemporaryFolder::ReportFolder() const {
  return PathFromSystem(path_ + "/");
}

std::string TemporaryFolder::Read(const std::string& name) const {
  std::ifstream file(Path(name), std::ios::binary);
  EXPECT_TRUE(file.good()) << name << " cannot be read";
  return {std::istreambuf_iterator<char>(file), {}};
}

void TemporaryFolder::Write(const std::string& name, const std::string& bytes) const {
  std::ofstream(Path(name), std::ios::binary) << bytes;
}

bool TemporaryFolder::Has(const std::string& name) const {
  return fs::exists(Path(name));
}

std::vector<std::string> TemporaryFolder::Names() const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(path_))
    names.push_back(entry.path().filename().string());
  std::ranges::sort(names);
  return names;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  while (begin < text.size()) {
    std::size_t end = text.find('\n', begin);
    if (end == std::string::npos) {
      lines.push_back(text.substr(begin) + " (not ended)");
      break;
    }
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

}  // namespace orvo::test
