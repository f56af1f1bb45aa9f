#include "app/leave_privileges.h"

#include <fmt/core.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "app/messages.h"
#include "platform/privilege.h"

namespace orvo::app {
namespace {

namespace fs = std::filesystem;

fs::path ExistingPart(fs::path path) {
  std::error_code error;
  path = fs::absolute(path, error).lexically_normal();
  while (!fs::exists(path, error) && path.has_relative_path()) path = path.parent_path();
  return path;
}

void Become(const struct stat& owner) {
  const passwd* user = getpwuid(owner.st_uid);
  const gid_t group = user ? user->pw_gid : owner.st_gid;
  const int grouped = user ? initgroups(user->pw_name, group) : setgroups(0, nullptr);
  if (grouped == 0 && setresgid(group, group, group) == 0 && setresuid(owner.st_uid, owner.st_uid, owner.st_uid) == 0) {
    return;
  }
  const Status status = StatusFromErrno(errno);
  throw CommandError(kFailed, fmt::format("cannot go on as user {}: {}", owner.st_uid, Describe(status)));
}

}  // namespace

void LeavePrivileges(const fs::path& folder) {
  struct stat owner {};
  if (geteuid() == 0 && stat(ExistingPart(folder).c_str(), &owner) == 0 && owner.st_uid != 0) Become(owner);
  Require(GiveUpPrivileges(), "privileges cannot be given up");
}

}  // namespace orvo::app
