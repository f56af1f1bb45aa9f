#include "platform/privilege.h"

#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <deque>
#include <string>
#include <vector>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr int kLinkLimit = 40;  // as many as the system itself follows

std::atomic<bool> pretended{false};

/// Puts the names of a path in front of those that are still to be walked.
void PushNames(std::string_view path, std::deque<std::string>* names) {
  std::vector<std::string> cut;
  while (!path.empty()) {
    std::size_t slash = std::min(path.find('/'), path.size());
    if (slash > 0) cut.emplace_back(path.substr(0, slash));
    path.remove_prefix(std::min(slash + 1, path.size()));
  }
  names->insert(names->begin(), cut.begin(), cut.end());
}

std::string LinkTarget(const std::string& path) {
  char target[PATH_MAX];
  ssize_t length = readlink(path.c_str(), target, sizeof target);
  if (length < 0) Raise(StatusFromErrno(errno));
  if (static_cast<std::size_t>(length) >= sizeof target) Raise(StatusFromError(kErrorNameTooLong));
  return {target, static_cast<std::size_t>(length)};
}

/// Raises access denied unless only root can change what stands at this path. A link has no permissions of its own:
/// who may change it is said by its folder.
struct stat CheckOne(const std::string& path) {
  struct stat details {};
  if (lstat(path.c_str(), &details) != 0) Raise(StatusFromErrno(errno));
  bool others_write = !S_ISLNK(details.st_mode) && (details.st_mode & (S_IWGRP | S_IWOTH)) != 0;
  if (details.st_uid != 0 || others_write) Raise(StatusFromError(kErrorAccessDenied));
  return details;
}

/// Walks the path as the system does, so that every folder is looked at in which a name of it, or of a link's target,
/// is found.
void CheckWay(std::string_view path) {
  std::deque<std::string> names;
  PushNames(path, &names);
  if (!path.starts_with('/')) {
    char folder[PATH_MAX];
    if (!getcwd(folder, sizeof folder)) Raise(StatusFromErrno(errno));
    PushNames(folder, &names);
  }
  std::string way;  // without the root's separator; free of links
  CheckOne("/");
  int links = 0;
  while (!names.empty()) {
    std::string name = std::move(names.front());
    names.pop_front();
    if (name == ".") continue;
    if (name == "..") {
      way.erase(std::min(way.rfind('/'), way.size()));
      continue;
    }
    std::string next = way;
    next.append("/").append(name);
    struct stat details = CheckOne(next);
    if (!S_ISLNK(details.st_mode)) {
      way = std::move(next);
      continue;
    }
    if (++links > kLinkLimit) Raise(StatusFromErrno(ELOOP));
    std::string target = LinkTarget(next);
    if (target.starts_with('/')) way.clear();
    PushNames(target, &names);
  }
}

}  // namespace

bool HasBorrowedPrivileges() {
  return pretended.load(std::memory_order_relaxed) || getauxval(AT_SECURE) != 0 || getuid() != geteuid() ||
         getgid() != getegid();
}

void PretendBorrowedPrivileges(bool pretend) {
  pretended.store(pretend, std::memory_order_relaxed);
}

Status CheckTrustedPath(std::string_view system_path) {
  return Guard([&] {
    if (system_path.empty()) Raise(StatusFromError(kErrorInvalidName));
    CheckWay(system_path);
  });
}

}  // namespace orvo
