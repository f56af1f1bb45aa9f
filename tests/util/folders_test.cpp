#include "util/folders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/path.h"
#include "tests/support/temporary_folder.h"

namespace orvo {
namespace {

TEST(Folders, TellsFilesFromFolders) {
  test::TemporaryFolder folder;
  folder.Write("file", "x");
  std::u16string root = folder.ReportFolder();
  const std::tuple<std::u16string, bool, bool> cases[] = {
      {root, true, true},
      {root.substr(0, root.size() - 1), true, true},
      {root + u"file", true, false},
      {root + u"none", false, false},
      {root + u"file\\below", false, false},
      {u"Q:\\unmapped", false, false},
      {std::u16string(u"a\0b", 3), false, false},
      {u"", false, false},
      {std::u16string(100'000, u'x'), false, false},
  };
  for (const auto& [path, exists, is_folder] : cases) {
    EXPECT_EQ(PathExists(path), exists);
    EXPECT_EQ(FolderExists(path), is_folder);
  }
  EXPECT_FALSE(PathExists({}));
  EXPECT_FALSE(FolderExists({}));
}

TEST(Folders, MakesWhatIsMissing) {
  test::TemporaryFolder folder;
  folder.Write("file", "x");
  std::u16string root = folder.ReportFolder();
  const struct {
    std::u16string path;
    bool made;
    bool there;  // afterwards
  } cases[] = {
      {root + u"a", true, true},
      {root + u"a", false, true},
      {root + u"a\\b\\c\\d", true, true},
      {root + u"a\\b\\c\\d\\", false, true},
      {root + u"e\\f\\", true, true},
      {root + u"g\\\\h", true, true},
      {root + u"\u00E9\u4E2D", true, true},
      {root + u"file\\below", false, false},
      {root + u"file", false, false},
      {root + std::u16string(300, u'n'), false, false},
      {std::u16string(1'000'000, u'\\'), false, false},
      {std::u16string(u"a\0b", 3), false, false},
      {u"Q:\\unmapped", false, false},
      {u"Q:", false, false},
      {u"", false, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MakeFolders(c.path), c.made) << PathExists(c.path);
    if (c.path.size() < 1000) {
      EXPECT_EQ(FolderExists(c.path), c.there);
    }
  }
  EXPECT_TRUE(std::filesystem::is_directory(folder.Path("a/b/c/d")));
  EXPECT_TRUE(std::filesystem::is_directory(folder.Path("g/h")));
  EXPECT_FALSE(MakeFolders({}));
}

TEST(Folders, MakesFoldersOnMappedDrives) {
  test::TemporaryFolder folder;
  AddDrive(u'R', folder.Path());
  EXPECT_TRUE(MakeFolders(u"R:\\reports\\monday"));
  EXPECT_FALSE(MakeFolders(u"R:\\reports\\monday\\"));
  EXPECT_TRUE(folder.Has("reports/monday"));
  AddDrive(u'R', {});
}

}  // namespace
}  // namespace orvo
