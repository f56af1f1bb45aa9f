#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace orvo::app {

/// A regular file that is open for reading.
class ServedFile {
 public:
  ServedFile(int descriptor, std::uint64_t size, std::string tag)
      : descriptor_(descriptor), size_(size), tag_(std::move(tag)) {}
  ServedFile(const ServedFile&) = delete;
  ServedFile& operator=(const ServedFile&) = delete;
  ~ServedFile();

  /// Bytes when it was opened.
  std::uint64_t size() const { return size_; }
  /// Tells this state of the file from others, as an entity tag (RFC 9110, 8.8.3).
  const std::string& tag() const { return tag_; }
  /// Reads up to `count` bytes at `offset`; gives their number, 0 at the end and when the file cannot be read.
  std::size_t ReadAt(std::uint64_t offset, char* destination, std::size_t count) const;

 private:
  int descriptor_;
  std::uint64_t size_;
  std::string tag_;
};

/// A folder whose files are given to a browser, and nothing outside of it.
class ServedFolder {
 public:
  /// Opens the folder itself, through links where its path has such. Raises a CommandError when it cannot be read.
  explicit ServedFolder(const std::string& path);
  ServedFolder(const ServedFolder&) = delete;
  ServedFolder& operator=(const ServedFolder&) = delete;
  ~ServedFolder();

  /// Opens "name" or "folder/name". Null for what is no regular file, is hidden, or is reached through a link. Every
  /// folder on the way is opened from the one before it, so that nobody can exchange one between a check and its use.
  std::shared_ptr<const ServedFile> Open(std::string_view path) const;

 private:
  int descriptor_;
};

}  // namespace orvo::app
