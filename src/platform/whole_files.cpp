#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/error.h"
#include "platform/file.h"
#include "platform/path.h"
#include "platform/system_file.h"

namespace orvo {
namespace {

constexpr std::size_t kCopyBlock = std::size_t{1} << 20;

std::string SystemPath(std::u16string_view path) {
  std::string system;
  Check(PathToSystem(path, &system));
  return system;
}

}  // namespace

bool PathAttributes(std::u16string_view path, bool* is_folder) {
  std::string system;
  struct stat details {};
  if (Failed(PathToSystem(path, &system)) || stat(system.c_str(), &details) != 0) return false;
  if (is_folder) *is_folder = S_ISDIR(details.st_mode);
  return true;
}

Status CreateFolder(std::u16string_view path) {
  return Guard([&] {
    std::string system = SystemPath(path);
    if (mkdir(system.c_str(), 0777) == 0) return;
    // Only a missing parent makes mkdir miss something.
    Raise(errno == ENOENT ? StatusFromError(kErrorPathNotFound) : StatusFromErrno(errno));
  });
}

Status DeleteFile(std::u16string_view path) {
  return Guard([&] {
    std::string system = SystemPath(path);
    if (unlink(system.c_str()) != 0) Raise(PathStatus(errno, system));
  });
}

Status CopyFile(std::u16string_view source, std::u16string_view target) {
  return Guard([&] {
    Descriptor from;
    Check(OpenForReading(SystemPath(source), &from));
    Replacement replacement(SystemPath(target));
    std::string block;
    do {
      Check(ReadSome(from.get(), kCopyBlock, &block));
      Check(WriteAll(replacement.descriptor(), block));
    } while (block.size() == kCopyBlock);
    replacement.Commit(/*durable=*/false);
  });
}

Status ReplaceFile(std::u16string_view path, std::string_view bytes) {
  return ReplaceFile(path, [&] { return std::exchange(bytes, {}); });
}

Status ReplaceFile(std::u16string_view path, const std::function<std::string_view()>& next_block) {
  return Guard([&] {
    Replacement replacement(SystemPath(path));
    for (std::string_view block = next_block(); !block.empty(); block = next_block()) {
      Check(WriteAll(replacement.descriptor(), block));
    }
    replacement.Commit(/*durable=*/true);
  });
}

Status ReadFile(std::u16string_view path, std::uint64_t limit, std::string* bytes) {
  if (!bytes) return E_POINTER;
  bytes->clear();
  return Guard([&] {
    Descriptor file;
    Check(OpenForReading(SystemPath(path), &file));
    struct stat details {};
    if (fstat(file.get(), &details) != 0) Raise(StatusFromErrno(errno));
    if (static_cast<std::uint64_t>(details.st_size) > limit) Raise(E_OUTOFMEMORY);
    // The file may grow while it is read, and some system files do not tell their size.
    std::string content;
    Check(ReadSome(file.get(), static_cast<std::size_t>(limit) + (limit < SIZE_MAX ? 1 : 0), &content));
    if (content.size() > limit) Raise(E_OUTOFMEMORY);
    *bytes = std::move(content);
  });
}

}  // namespace orvo
