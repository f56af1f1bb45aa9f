#include "platform/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/error.h"
#include "platform/path.h"
#include "platform/system_file.h"

namespace orvo {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less what the process's mask takes away

/// Takes the lock that keeps other writers away, without waiting for it.
Status LockExclusively(int descriptor) {
  while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR) return StatusFromErrno(errno);
  }
  return S_OK;
}

/// True when the name still leads to the open file: it may have been replaced before the lock was taken.
bool StillNames(const std::string& path, const struct stat& opened) {
  struct stat named {};
  return fstatat(AT_FDCWD, path.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_dev == opened.st_dev &&
         named.st_ino == opened.st_ino;
}

/// Gives a file that has another name a new one, unless that is taken.
int RenameToFreeName(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOSYS && errno != EINVAL) return -1;
  // A file system that cannot rename without replacing.
  if (link(from.c_str(), to.c_str()) != 0) return -1;
  unlink(from.c_str());
  return 0;
}

}  // namespace

File::File(File&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      publish_path_(std::exchange(other.publish_path_, {})),
      temporary_path_(std::exchange(other.temporary_path_, {})) {}

File& File::operator=(File&& other) noexcept {
  if (this == &other) return *this;
  Close();
  descriptor_ = std::exchange(other.descriptor_, -1);
  publish_path_ = std::exchange(other.publish_path_, {});
  temporary_path_ = std::exchange(other.temporary_path_, {});
  return *this;
}

File::~File() {
  Close();
}

Status File::OpenExisting(std::u16string_view path, File* file) {
  if (!file) return E_POINTER;
  return Guard([&] {
    std::string system;
    Check(PathToSystem(path, &system));
    constexpr int kAttempts = 16;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      // Opening a pipe must not wait for its other end.
      Descriptor opened(OpenFile(system, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
      if (!opened) Raise(PathStatus(errno, system));
      struct stat details {};
      if (fstat(opened.get(), &details) != 0) Raise(StatusFromErrno(errno));
      if (!S_ISREG(details.st_mode)) Raise(StatusFromError(kErrorAccessDenied));
      Check(LockExclusively(opened.get()));
      if (!StillNames(system, details)) continue;
      *file = File();
      file->descriptor_ = opened.Release();
      return;
    }
    Raise(StatusFromError(kErrorSharingViolation));
  });
}

Status File::CreateUnpublished(std::u16string_view path, File* file) {
  if (!file) return E_POINTER;
  return Guard([&] {
    std::string system;
    Check(PathToSystem(path, &system));
    if (LastName(system).empty()) Raise(StatusFromError(kErrorInvalidName));
    File created;
    created.descriptor_ = CreateNameless(system, kNewFileMode);
    if (created.descriptor_ < 0) {
      created.descriptor_ = CreateBeside(system, kNewFileMode, &created.temporary_path_);
    }
    if (created.descriptor_ < 0) Raise(PathStatus(errno, system));
    created.publish_path_ = std::move(system);
    Check(LockExclusively(created.descriptor_));
    *file = std::move(created);
  });
}

Status File::Publish() {
  return Guard([&] {
    if (!is_open() || publish_path_.empty()) Raise(E_UNEXPECTED);
    int result = temporary_path_.empty() ? NameNameless(descriptor_, publish_path_)
                                         : RenameToFreeName(temporary_path_, publish_path_);
    if (result != 0) Raise(PathStatus(errno, publish_path_));
    publish_path_.clear();
    temporary_path_.clear();
  });
}

// NOLINTBEGIN(readability-make-member-function-const): these change the file, if not the object.
Status File::Write(std::string_view bytes) {
  return WriteAll(descriptor_, bytes);
}

Status File::SeekEnd(std::uint64_t* size) {
  off_t end = lseek(descriptor_, 0, SEEK_END);
  if (end < 0) return StatusFromErrno(errno);
  if (size) *size = static_cast<std::uint64_t>(end);
  return S_OK;
}

Status File::Sync() {
  return fsync(descriptor_) == 0 ? S_OK : StatusFromErrno(errno);
}

// NOLINTEND(readability-make-member-function-const)

Status File::ReadAt(std::uint64_t offset, char* destination, std::size_t count, std::size_t* read) const {
  if (!read || (!destination && count > 0)) return E_POINTER;
  *read = 0;
  while (*read < count) {
    ssize_t part = pread(descriptor_, destination + *read, count - *read, static_cast<off_t>(offset + *read));
    if (part < 0 && errno == EINTR) continue;
    if (part < 0) return StatusFromErrno(errno);
    if (part == 0) break;
    *read += static_cast<std::size_t>(part);
  }
  return S_OK;
}

Status File::Close() {
  if (!is_open()) return S_OK;
  if (!temporary_path_.empty()) unlink(temporary_path_.c_str());
  temporary_path_.clear();
  publish_path_.clear();
  // The descriptor is gone whatever close answers; an interrupted close has lost nothing.
  int result = close(std::exchange(descriptor_, -1));
  return result == 0 || errno == EINTR ? S_OK : StatusFromErrno(errno);
}

}  // namespace orvo
