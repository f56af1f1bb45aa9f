#include "util/folders.h"

#include <string>

#include "platform/file.h"

namespace orvo {
namespace {

// No system takes a longer path; whoever gives one gets no folder for it.
constexpr std::size_t kLongestPath = 32767;

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
  if (path.empty() || path.size() > kLongestPath) return false;
  std::u16string whole(path);
  if (!whole.ends_with(u'\\')) whole += u'\\';
  bool made = false;
  for (std::size_t end = whole.find(u'\\'); end != std::u16string::npos; end = whole.find(u'\\', end + 1)) {
    std::u16string_view prefix = std::u16string_view(whole).substr(0, end);
    if (prefix.empty() || prefix.ends_with(u':')) continue;
    Status status = CreateFolder(prefix);
    // No longer prefix can succeed.
    if (status == StatusFromError(kErrorNameTooLong)) return false;
    made = Succeeded(status);
  }
  return made;
}

}  // namespace orvo
