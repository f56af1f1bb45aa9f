#include "platform/privilege.h"

#include <dlfcn.h>
#include <linux/capability.h>
#include <sys/auxv.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <deque>
#include <memory>
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

/// The path in full and free of links; empty when it cannot be had.
std::string RealPath(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  return real ? real.get() : "";
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

/// Whether only those can change the file of a path who can change that of this layer, and both lie in one folder.
bool IsAsSafeAsThisLayer(const std::string& path) {
  Dl_info own{};
  if (dladdr(reinterpret_cast<const void*>(&IsAsSafeAsThisLayer), &own) == 0 || !own.dli_fname) return false;
  const std::string own_path = RealPath(own.dli_fname);
  struct stat own_details {};
  struct stat details {};
  if (own_path.empty() || FolderOf(own_path) != FolderOf(path) || stat(own_path.c_str(), &own_details) != 0 ||
      lstat(path.c_str(), &details) != 0 || !S_ISREG(details.st_mode) || details.st_uid != own_details.st_uid) {
    return false;
  }
  const bool group_writes = (details.st_mode & S_IWGRP) != 0;
  const bool same_group = details.st_gid == own_details.st_gid && (own_details.st_mode & S_IWGRP) != 0;
  return (!group_writes || same_group) && (details.st_mode & S_IWOTH) == 0;
}

Status Gave(int result) {
  return result == 0 ? S_OK : StatusFromErrno(errno);
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

Status CheckTrustedLibrary(std::string_view system_path) {
  return Guard([&] {
    const Status status = CheckTrustedPath(system_path);
    return Failed(status) && IsAsSafeAsThisLayer(RealPath(std::string(system_path))) ? S_OK : status;
  });
}

Status GiveUpPrivileges() {
  return Guard([] {
    const gid_t group = getgid();
    const uid_t user = getuid();
    if (group != getegid()) Check(Gave(setresgid(group, group, group)));
    if (user != geteuid()) Check(Gave(setresuid(user, user, user)));
    prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0);  // none are left once the next line has done its work
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
    Check(Gave(static_cast<int>(syscall(SYS_capset, &header, none))));
    Check(Gave(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0)));
  });
}

}  // namespace orvo
