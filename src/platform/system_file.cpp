#include "platform/system_file.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

/// A name that nobody else is likely to choose at this moment.
std::string TemporaryName() {
  std::uint64_t number = 0;
  if (getrandom(&number, sizeof number, GRND_NONBLOCK) != sizeof number) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    number = static_cast<std::uint64_t>(now.tv_nsec) ^ (static_cast<std::uint64_t>(getpid()) << 32);
  }
  char digits[16];
  auto [end, error] = std::to_chars(digits, digits + sizeof digits, number, 16);
  (void)error;  // sixteen digits hold every 64-bit number
  return ".orvo-" + std::string(digits, end) + ".tmp";
}

/// Offers names beside the path to `take`, which leaves errno, until it takes one; empty when it takes none.
template <class Take>
std::string NameBeside(const std::string& path, Take take) {
  std::string folder = ParentFolder(path);
  if (!folder.ends_with('/')) folder += '/';
  constexpr int kAttempts = 100;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    std::string name = folder + TemporaryName();
    if (take(name)) return name;
    if (errno != EEXIST) break;
  }
  return {};
}

}  // namespace

Descriptor::~Descriptor() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::string ParentFolder(const std::string& path) {
  std::size_t slash = path.rfind('/');
  if (slash == path.npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string LastName(const std::string& path) {
  std::string name = path.substr(path.rfind('/') + 1);
  return name == "." || name == ".." ? std::string() : name;
}

Status PathStatus(int error, const std::string& path) {
  struct stat details {};
  if (error == ENOENT && stat(ParentFolder(path).c_str(), &details) != 0 && errno == ENOENT) {
    return StatusFromError(kErrorPathNotFound);
  }
  return StatusFromErrno(error);
}

int OpenFile(const std::string& path, int flags, mode_t mode) {
  int descriptor = -1;
  do {
    descriptor = open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

int CreateNameless(const std::string& path, mode_t mode) {
  // Such a file gets its name through the process's own table of open files.
  if (access("/proc/self/fd", X_OK) != 0) return -1;
  return OpenFile(ParentFolder(path), O_TMPFILE | O_RDWR, mode);
}

int NameNameless(int descriptor, const std::string& path) {
  const std::string self = "/proc/self/fd/" + std::to_string(descriptor);
  return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW);
}

int CreateBeside(const std::string& path, mode_t mode, std::string* temporary_path) {
  int descriptor = -1;
  *temporary_path = NameBeside(path, [&](const std::string& name) {
    descriptor = OpenFile(name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
    return descriptor >= 0;
  });
  return descriptor;
}

Status WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t part = write(descriptor, bytes.data(), bytes.size());
    if (part < 0 && errno == EINTR) continue;
    if (part <= 0) return StatusFromErrno(part < 0 ? errno : EIO);
    bytes.remove_prefix(static_cast<std::size_t>(part));
  }
  return S_OK;
}

Status ReadSome(int descriptor, std::size_t limit, std::string* bytes) {
  bytes->clear();
  while (bytes->size() < limit) {
    std::size_t start = bytes->size();
    bytes->resize(start + std::min(kBlock, limit - start));
    ssize_t part = read(descriptor, bytes->data() + start, bytes->size() - start);
    int error = errno;
    bytes->resize(start + (part > 0 ? static_cast<std::size_t>(part) : 0));
    if (part < 0 && error == EINTR) continue;
    if (part < 0) return StatusFromErrno(error);
    if (part == 0) break;
  }
  return S_OK;
}

Status OpenForReading(const std::string& path, Descriptor* descriptor) {
  // Opening a pipe must not wait for its other end.
  Descriptor opened(OpenFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY));
  if (!opened) return PathStatus(errno, path);
  struct stat details {};
  if (fstat(opened.get(), &details) != 0) return StatusFromErrno(errno);
  if (S_ISDIR(details.st_mode)) return StatusFromError(kErrorIsAFolder);
  if (!S_ISREG(details.st_mode)) return StatusFromError(kErrorAccessDenied);
  *descriptor = std::move(opened);
  return S_OK;
}

Replacement::Replacement(std::string path) : path_(std::move(path)) {
  if (LastName(path_).empty()) Raise(StatusFromError(kErrorInvalidName));
  struct stat old {};
  bool replaces = lstat(path_.c_str(), &old) == 0;
  if (replaces && S_ISDIR(old.st_mode)) Raise(StatusFromError(kErrorIsAFolder));
  bool keeps_mode = replaces && S_ISREG(old.st_mode);
  mode_t mode = keeps_mode ? old.st_mode & 0777 : 0666;
  // A process that is killed leaves nothing of a file that has no name yet.
  descriptor_ = Descriptor(CreateNameless(path_, mode));
  if (!descriptor_) descriptor_ = Descriptor(CreateBeside(path_, mode, &temporary_path_));
  if (!descriptor_) Raise(PathStatus(errno, path_));
  // The process's mask may have taken away what the old file had. That this fails on file systems without modes is
  // no reason to refuse the write.
  if (keeps_mode) (void)!fchmod(descriptor_.get(), mode);
}

Replacement::~Replacement() {
  if (!temporary_path_.empty()) unlink(temporary_path_.c_str());
}

void Replacement::Commit(bool durable) {
  if (durable && fsync(descriptor_.get()) != 0) Raise(StatusFromErrno(errno));
  if (temporary_path_.empty()) {
    temporary_path_ =
        NameBeside(path_, [&](const std::string& name) { return NameNameless(descriptor_.get(), name) == 0; });
    if (temporary_path_.empty()) Raise(PathStatus(errno, path_));
  }
  if (close(descriptor_.Release()) != 0 && errno != EINTR) Raise(StatusFromErrno(errno));
  if (rename(temporary_path_.c_str(), path_.c_str()) != 0) Raise(PathStatus(errno, path_));
  temporary_path_.clear();
  if (!durable) return;
  // The new name is durable once its folder is; a folder that cannot be opened for that does not undo the rename.
  Descriptor folder(OpenFile(ParentFolder(path_), O_RDONLY | O_DIRECTORY));
  if (folder) fsync(folder.get());
}

}  // namespace orvo
