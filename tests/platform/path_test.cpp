#include "platform/path.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

std::string ToSystem(std::u16string_view path) {
  std::string system = "unchanged";
  Status status = PathToSystem(path, &system);
  if (Failed(status)) return "failed " + std::to_string(status & 0xFFFF);
  return system;
}

TEST(PathTest, MapsSeparatorsAndRefusesWhatNoNameCanHold) {
  struct Case {
    std::u16string path;
    std::string system;
  };
  const Case kCases[] = {
      {u"\\", "/"},
      {u"\\var\\\\log\\", "/var/log/"},
      {u"reports\\today", "reports/today"},
      {u"\\\\server\\share", "/server/share"},
      {u"\\caf\u00E9\\\U0001F600", "/caf\xC3\xA9/\xF0\x9F\x98\x80"},
      {u"", "failed 123"},
      {u"a/b", "failed 123"},
      {std::u16string(u"a\0b", 3), "failed 123"},
      {u"a\xD800", "failed 123"},
      {std::u16string(u"a\xDC2F"), "failed 123"},
      {std::u16string(u"a\xDC00"), "failed 123"},
      {u"q:\\file", "failed 3"},
  };
  for (const Case& c : kCases) EXPECT_EQ(ToSystem(c.path), c.system);
}

TEST(PathTest, EverySystemPathSurvivesTheRoundTrip) {
  const std::string kPaths[] = {
      "/plain/path",       "/with\\backslash", "/latin1-\xE9-name",     "/cut\xF0\x9F\x98", "/surrogate\xED\xA0\x80",
      "/overlong\xC0\xAF", "relative",         "/\xF0\x9F\x98\x80\xDC",
  };
  for (const std::string& path : kPaths) EXPECT_EQ(ToSystem(PathFromSystem(path)), path);
  // A name that looks like a drive stays a name.
  EXPECT_EQ(ToSystem(PathFromSystem("c:data")), "./c:data");
}

TEST(PathTest, DrivesResolveToTheirFolders) {
  AddDrive(u'R', "/srv/reports");
  EXPECT_EQ(ToSystem(u"r:\\a"), "/srv/reports/a");
  EXPECT_EQ(ToSystem(u"R:a"), "/srv/reports/a");
  EXPECT_EQ(ToSystem(u"R:"), "/srv/reports");
  AddDrive(u'r', "/");
  EXPECT_EQ(ToSystem(u"R:\\a"), "/a");
  AddDrive(u'r', "");
  EXPECT_EQ(ToSystem(u"R:\\a"), "failed 3");
  AddDrive(u'1', "/srv");
  EXPECT_EQ(ToSystem(u"1:\\a"), "1:/a");
}

TEST(PathTest, SplitsIntoFourParts) {
  struct Case {
    std::u16string path, drive, folder, name, extension;
  };
  const Case kCases[] = {
      {u"C:\\reports\\set 1\\Report.v2.pdf", u"C:", u"\\reports\\set 1\\", u"Report.v2", u".pdf"},
      {u"\\a.b\\name", u"", u"\\a.b\\", u"name", u""},
      {u"name.", u"", u"", u"name", u"."},
      {u".profile", u"", u"", u"", u".profile"},
      {u"C:", u"C:", u"", u"", u""},
      {u"folder\\", u"", u"folder\\", u"", u""},
      {u"", u"", u"", u"", u""},
  };
  for (const Case& c : kCases) {
    PathParts parts = SplitPath(c.path);
    EXPECT_EQ(parts.drive, c.drive);
    EXPECT_EQ(parts.folder, c.folder);
    EXPECT_EQ(parts.name, c.name);
    EXPECT_EQ(parts.extension, c.extension);
  }
  EXPECT_EQ(SplitPath(std::u16string(400, u'n') + u"." + std::u16string(400, u'e')).name.size(), 255U);
  EXPECT_EQ(SplitPath(std::u16string(400, u'n') + u"." + std::u16string(400, u'e')).extension.size(), 255U);
}

}  // namespace
}  // namespace orvo
