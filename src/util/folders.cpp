#include "util/folders.h"

#include <string>

#include "platform/file.h"

namespace orvo {
namespace {

constexpr std::size_t kDriveLimit = 2;
constexpr std::size_t kPartLimit = 255;

void Cut(std::u16string* text, std::size_t limit) {
  if (text->size() > limit) text->resize(limit);
}

}  // namespace

bool PathExists(std::u16string_view path) {
  bool is_folder = false;
  return !path.empty() && PathAttributes(path, &is_folder);
}

bool FolderExists(std::u16string_view path) {
  bool is_folder = false;
  return !path.empty() && PathAttributes(path, &is_folder) && is_folder;
}

bool MakeFolders(std::u16string_view path) {
  if (path.empty()) return false;
  std::u16string whole(path);
  if (!whole.ends_with(u'\\')) whole += u'\\';
  bool made = false;
  for (std::size_t end = whole.find(u'\\'); end != std::u16string::npos; end = whole.find(u'\\', end + 1)) {
    std::u16string_view prefix = std::u16string_view(whole).substr(0, end);
    if (prefix.empty() || prefix.ends_with(u':')) continue;
    Status status = CreateFolder(prefix);
    // No longer prefix can succeed, and a path without end is not walked to its end.
    if (status == StatusFromError(kErrorNameTooLong)) return false;
    made = Succeeded(status);
  }
  return made;
}

PathParts SplitPathParts(std::u16string_view path) {
  PathParts parts = SplitPath(path);
  Cut(&parts.drive, kDriveLimit);
  Cut(&parts.folder, kPartLimit);
  Cut(&parts.name, kPartLimit);
  Cut(&parts.extension, kPartLimit);
  return parts;
}

}  // namespace orvo
