#include "platform/path.h"

#include <array>
#include <mutex>
#include <optional>
#include <shared_mutex>

#include "platform/utf.h"

namespace orvo {
namespace {

constexpr std::size_t kLongestDrive = 2;
constexpr std::size_t kLongestPart = 255;

// A byte b of a system name that cannot be written as a character travels as the unpaired surrogate kEscape + b.
constexpr char16_t kEscape = 0xDC00;
constexpr char16_t kEscapedBackslash = kEscape + u'\\';

/// 0 to 25 for a letter, nothing for anything else.
std::optional<std::size_t> LetterIndex(char16_t letter) {
  char16_t lower = letter | 0x20;
  if (lower < u'a' || lower > u'z') return std::nullopt;
  return lower - u'a';
}

struct Drives {
  std::shared_mutex lock;
  std::array<std::string, 26> folders;
};

Drives& AllDrives() {
  static Drives drives;
  return drives;
}

bool StartsWithDrive(std::u16string_view path) {
  return path.size() >= 2 && path[1] == u':' && LetterIndex(path[0]);
}

bool IsEscape(char16_t unit) {
  return unit == kEscapedBackslash || (unit >= kEscape + 0x80 && unit <= kEscape + 0xFF);
}

/// Appends one character of a path; false when no system name can hold it.
bool AppendSystem(CodePoint code_point, char16_t unit, std::string* system) {
  if (!code_point.valid) {
    if (!IsEscape(unit)) return false;
    system->push_back(static_cast<char>(unit - kEscape));
    return true;
  }
  if (code_point.value == 0 || code_point.value == U'/') return false;
  if (code_point.value != U'\\') {
    AppendCodePoint(code_point.value, system);
  } else if (!system->ends_with('/')) {
    system->push_back('/');
  }
  return true;
}

}  // namespace

Status PathToSystem(std::u16string_view path, std::string* system) {
  if (path.empty()) return StatusFromError(kErrorInvalidName);
  std::string result;
  if (StartsWithDrive(path)) {
    Drives& drives = AllDrives();
    std::shared_lock lock(drives.lock);
    result = drives.folders[*LetterIndex(path[0])];
    if (result.empty()) return StatusFromError(kErrorPathNotFound);
    path.remove_prefix(2);
    if (!path.empty() && !result.ends_with('/')) result += '/';
  }
  for (std::size_t at = 0; at < path.size();) {
    CodePoint code_point = NextCodePoint(path, at);
    if (!AppendSystem(code_point, path[at], &result)) return StatusFromError(kErrorInvalidName);
    at += code_point.length;
  }
  *system = std::move(result);
  return S_OK;
}

std::u16string PathFromSystem(std::string_view system) {
  std::u16string path;
  path.reserve(system.size());
  for (std::size_t at = 0; at < system.size();) {
    CodePoint code_point = NextCodePoint(system, at);
    if (!code_point.valid) {
      path += static_cast<char16_t>(kEscape + static_cast<std::uint8_t>(system[at]));
      ++at;
      continue;
    }
    if (code_point.value == U'/') {
      path += u'\\';
    } else if (code_point.value == U'\\') {
      path += kEscapedBackslash;
    } else {
      AppendCodePoint(code_point.value, &path);
    }
    at += code_point.length;
  }
  // A relative name such as "c:data" must not turn into a drive.
  if (StartsWithDrive(path)) path.insert(0, u".\\");
  return path;
}

void AddDrive(char16_t letter, std::string_view system_folder) {
  std::optional<std::size_t> index = LetterIndex(letter);
  if (!index) return;
  Drives& drives = AllDrives();
  std::unique_lock lock(drives.lock);
  drives.folders[*index] = system_folder;
}

PathParts SplitPath(std::u16string_view path) {
  PathParts parts;
  if (path.size() >= 2 && path[1] == u':') {
    parts.drive = path.substr(0, kLongestDrive);
    path.remove_prefix(2);
  }
  std::size_t folder = path.rfind(u'\\') + 1;  // 0 when there is none
  std::u16string_view file = path.substr(folder);
  std::size_t dot = file.rfind(u'.');
  if (dot == file.npos) dot = file.size();
  parts.folder = path.substr(0, folder).substr(0, kLongestPart);
  parts.name = file.substr(0, dot).substr(0, kLongestPart);
  parts.extension = file.substr(dot).substr(0, kLongestPart);
  return parts;
}

}  // namespace orvo
