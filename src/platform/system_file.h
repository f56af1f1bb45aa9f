#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/status.h"

namespace orvo {

/// Owns a file descriptor of the system; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~Descriptor();

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }
  int Release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

// Everything below takes paths in the system's form.

/// The folder that a path's last name stands in ("." when the path names none), and that name, which is empty for a
/// path that ends with a separator or with "." or "..".
std::string ParentFolder(const std::string& path);
std::string LastName(const std::string& path);

/// The status of an errno value for work on a path: one that failed because its folder is missing says so.
Status PathStatus(int error, const std::string& path);

/// Opens without leaking into programs that this one starts, again when interrupted; -1 and errno on failure.
int OpenFile(const std::string& path, int flags, mode_t mode = 0);

/// Makes an empty file in the folder of `path` that has no name, so that it vanishes with its last descriptor; -1 where
/// the file system knows no such files. The other one gives it a name that is free: 0, or -1 and errno.
int CreateNameless(const std::string& path, mode_t mode);
int NameNameless(int descriptor, const std::string& path);

/// Makes an empty file with a name of its own in the same folder as `path`; -1 and errno on failure.
int CreateBeside(const std::string& path, mode_t mode, std::string* temporary_path);

/// Writes all bytes at the descriptor's position.
Status WriteAll(int descriptor, std::string_view bytes);

/// Reads on at the descriptor's position until `limit` bytes are read or the end is reached.
Status ReadSome(int descriptor, std::size_t limit, std::string* bytes);

/// Opens a regular file for reading, following links; access denied for anything else but a folder.
Status OpenForReading(const std::string& path, Descriptor* descriptor);

/// A file written beside another that takes its place only when it is complete.
class Replacement {
 public:
  /// Begins the new file with the mode of the one it will replace. Raises a status.
  explicit Replacement(std::string path);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  /// Removes what was not committed.
  ~Replacement();

  int descriptor() const { return descriptor_.get(); }
  /// Raises a status.
  void Commit(bool durable);

 private:
  std::string path_;
  std::string temporary_path_;
  Descriptor descriptor_;
};

}  // namespace orvo
