#include "platform/privilege.h"

#include <sys/stat.h>

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
