#include "app/served_folder.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "app/messages.h"

namespace orvo::app {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
/// A pipe must not make the server wait for somebody to write into it.
constexpr int kFileFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

/// Names that a report gives its files: none is hidden, so that "." and ".." are none of them either.
bool IsName(std::string_view name) {
  return !name.empty() && name.front() != '.' &&
         std::ranges::none_of(name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == '\\'; });
}

/// open(2) from a folder, again when a signal interrupts it.
int OpenAt(int folder, const std::string& name, int flags) {
  int descriptor = -1;
  do {
    descriptor = openat(folder, name.c_str(), flags);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

std::string TagOf(const struct stat& details) {
  return fmt::format("\"{:x}-{:x}-{:x}.{:x}\"", details.st_ino, details.st_size, details.st_mtim.tv_sec,
                     details.st_mtim.tv_nsec);
}

}  // namespace

ServedFile::~ServedFile() {
  close(descriptor_);
}

std::size_t ServedFile::ReadAt(std::uint64_t offset, char* destination, std::size_t count) const {
  ssize_t read = 0;
  do {
    read = pread(descriptor_, destination, count, static_cast<off_t>(offset));
  } while (read < 0 && errno == EINTR);
  return read > 0 ? static_cast<std::size_t>(read) : 0;
}

ServedFolder::ServedFolder(const std::string& path) : descriptor_(OpenAt(AT_FDCWD, path, kFolderFlags)) {
  if (descriptor_ >= 0) return;
  throw CommandError(kFailed, fmt::format("{}: cannot be opened ({}); name the folder of a report", path,
                                          std::generic_category().message(errno)));
}

ServedFolder::~ServedFolder() {
  close(descriptor_);
}

std::shared_ptr<const ServedFile> ServedFolder::Open(std::string_view path) const {
  int folder = descriptor_;
  int opened = -1;
  for (bool is_last = false; !is_last;) {
    const std::size_t end = path.find('/');
    is_last = end == path.npos;
    const std::string_view name = path.substr(0, end);
    opened = IsName(name) ? OpenAt(folder, std::string(name), is_last ? kFileFlags : kFolderFlags | O_NOFOLLOW) : -1;
    if (folder != descriptor_) close(folder);
    if (opened < 0) return nullptr;
    folder = opened;
    if (!is_last) path.remove_prefix(end + 1);
  }
  struct stat details {};
  if (fstat(opened, &details) != 0 || !S_ISREG(details.st_mode)) {
    close(opened);
    return nullptr;
  }
  return std::make_shared<const ServedFile>(opened, static_cast<std::uint64_t>(details.st_size), TagOf(details));
}

}  // namespace orvo::app
