#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A file that no second writer may hold open at the same time, opened for reading and writing.
/// Links are not followed at the last component and only regular files are opened, so that nothing outside the folder
/// that the caller named is ever written. All paths are texts with backslashes (see path.h).
class ORVO_PLATFORM_API File {
 public:
  File() = default;
  File(File&& other) noexcept;
  File& operator=(File&& other) noexcept;
  ~File();

  /// Opens a file that exists, unchanged, positioned at its start. kErrorFileNotFound when there is none,
  /// kErrorSharingViolation when somebody else holds it, else the platform's error.
  static Status OpenExisting(std::u16string_view path, File* file);

  /// Makes a new file, held by this object, that has no name yet; Publish gives it its name.
  static Status CreateUnpublished(std::u16string_view path, File* file);

  /// Gives the new file the name it was made for. kErrorAlreadyExists when the name is taken by then. Whoever opens the
  /// name finds what was written before and, until this object closes the file, a sharing violation.
  Status Publish();

  /// Writes all bytes at the position; a part may have been written when it fails.
  Status Write(std::string_view bytes);
  /// Reads up to `count` bytes at `offset`, without moving the position.
  Status ReadAt(std::uint64_t offset, char* destination, std::size_t count, std::size_t* read) const;
  Status SeekEnd(std::uint64_t* size);
  /// Makes the bytes durable.
  Status Sync();
  /// Closes the file, releases it to others, and tells what the system held back until now.
  Status Close();

  bool is_open() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
  std::string publish_path_;    // name to be given by Publish; empty once given
  std::string temporary_path_;  // the name until then, where the file system knows no nameless files
};

/// True when the path's attributes can be read.
ORVO_PLATFORM_API bool PathAttributes(std::u16string_view path, bool* is_folder);
/// kErrorAlreadyExists when there is one.
ORVO_PLATFORM_API Status CreateFolder(std::u16string_view path);
ORVO_PLATFORM_API Status DeleteFile(std::u16string_view path);
/// Copies a file's bytes, replacing the target (written beside and renamed).
ORVO_PLATFORM_API Status CopyFile(std::u16string_view source, std::u16string_view target);
/// Deletes a folder with everything in it; never follows a link.
ORVO_PLATFORM_API Status DeleteTree(std::u16string_view path);
/// Writes the bytes beside the file, syncs, and renames: the old content or the new, never a mixture.
ORVO_PLATFORM_API Status ReplaceFile(std::u16string_view path, std::string_view bytes);
/// The same with bytes that are asked for block by block, until an empty one. What `next_block` raises is returned, and
/// leaves the old content.
ORVO_PLATFORM_API Status ReplaceFile(std::u16string_view path, const std::function<std::string_view()>& next_block);
/// Reads a whole regular file of at most `limit` bytes (larger: E_OUTOFMEMORY).
ORVO_PLATFORM_API Status ReadFile(std::u16string_view path, std::uint64_t limit, std::string* bytes);

}  // namespace orvo
