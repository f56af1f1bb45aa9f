#include "platform/privilege.h"

#include <dlfcn.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/platform/temp_folder.h"

namespace orvo {
namespace {

using test::TempFolder;

constexpr Status kDenied = StatusFromError(kErrorAccessDenied);

TEST(PrivilegeTest, WhatOthersCanChangeIsNotTrusted) {
  EXPECT_FALSE(HasBorrowedPrivileges());
  PretendBorrowedPrivileges(true);
  EXPECT_TRUE(HasBorrowedPrivileges());
  PretendBorrowedPrivileges(false);

  TempFolder folder("/tmp");
  folder.Put("file", "");
  EXPECT_EQ(CheckTrustedPath(folder.System("file")), kDenied);
  // A link that anybody could have laid, whatever it leads to.
  ASSERT_EQ(symlink("/", folder.System("root").c_str()), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("root")), kDenied);
  EXPECT_EQ(CheckTrustedPath(""), StatusFromError(kErrorInvalidName));
}

TEST(PrivilegeTest, ALibraryBesideThisLayerIsAsGoodAsThisLayer) {
  namespace fs = std::filesystem;
  Dl_info layer{};
  ASSERT_NE(dladdr(reinterpret_cast<const void*>(&CheckTrustedLibrary), &layer), 0);
  const fs::path own = fs::canonical(layer.dli_fname);
  const std::string beside = own.string() + ".beside-" + std::to_string(getpid());
  fs::copy_file(own, beside);
  EXPECT_EQ(CheckTrustedLibrary(beside), S_OK);
  ASSERT_EQ(chmod(beside.c_str(), 0646), 0);
  EXPECT_EQ(CheckTrustedLibrary(beside), kDenied) << "others can change it";
  fs::remove(beside);

  TempFolder folder("/tmp");
  folder.Put("library", "");
  EXPECT_EQ(CheckTrustedLibrary(folder.System("library")), kDenied);
  ASSERT_EQ(symlink(folder.System("library").c_str(), beside.c_str()), 0);
  EXPECT_EQ(CheckTrustedLibrary(beside), kDenied) << "it lies elsewhere";
  fs::remove(beside);
}

TEST(PrivilegeTest, WhatIsGivenUpIsGone) {
  const pid_t child = fork();
  if (child == 0) {
    const bool given = Succeeded(GiveUpPrivileges());
    std::ifstream file("/proc/self/status");
    const std::string status{std::istreambuf_iterator<char>(file), {}};
    bool none = prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1;
    for (const char* set : {"CapInh", "CapPrm", "CapEff", "CapAmb"}) {
      none &= status.find(std::string(set) + ":\t0000000000000000\n") != std::string::npos;
    }
    _exit(given && none ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST(PrivilegeTest, WhatOnlyRootCanChangeIsTrusted) {
  if (CheckTrustedPath("/var") != S_OK) GTEST_SKIP() << "this system's own folders are not root's alone";
  EXPECT_EQ(CheckTrustedPath("/var/../var/./"), S_OK);
  EXPECT_EQ(CheckTrustedPath("/var/no-such-entry"), StatusFromError(kErrorFileNotFound));
  if (geteuid() != 0) GTEST_SKIP() << "the rest needs a folder of root's";

  TempFolder folder("/var");
  folder.Put("file", "");
  ASSERT_EQ(chmod(folder.System("file").c_str(), 0644), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("file")), S_OK);
  ASSERT_EQ(symlink("file", folder.System("link").c_str()), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("link")), S_OK);
  ASSERT_EQ(symlink("/tmp/anything", folder.System("out").c_str()), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("out")), kDenied);
  ASSERT_EQ(symlink("loop", folder.System("loop").c_str()), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("loop")), kDenied);

  ASSERT_EQ(chmod(folder.System("file").c_str(), 0664), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("link")), kDenied);
  ASSERT_EQ(chmod(folder.System("file").c_str(), 0644), 0);
  ASSERT_EQ(chown(folder.System("file").c_str(), 65534, 0), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("file")), kDenied);
  ASSERT_EQ(chown(folder.System("file").c_str(), 0, 0), 0);
  ASSERT_EQ(chmod(folder.System().c_str(), 0777), 0);
  EXPECT_EQ(CheckTrustedPath(folder.System("file")), kDenied);
}

}  // namespace
}  // namespace orvo
