#include "platform/registry.h"

#include <sys/stat.h>

#include "platform/privilege.h"
#include "tests/platform/temp_folder.h"

namespace orvo {
namespace {

using test::TempFolder;

class RegistryTest : public testing::Test {
 protected:
  void SetUp() override { setenv("ORVO_REGISTRY", folder_.System("registry.xml").c_str(), 1); }
  void TearDown() override { unsetenv("ORVO_REGISTRY"); }

  static Registry ReadAll() {
    Registry registry;
    EXPECT_EQ(Registry::Read(&registry), S_OK);
    return registry;
  }

  TempFolder folder_;
};

TEST_F(RegistryTest, KeepsKeysAndValues) {
  Registry empty = ReadAll();
  EXPECT_FALSE(empty.HasKey(u"CLSID"));
  EXPECT_EQ(empty.Value(u"CLSID"), std::nullopt);
  EXPECT_TRUE(empty.HasKey(u""));

  ASSERT_EQ(Registry::Update([](Registry& registry) {
              registry.SetValue(u"CLSID\\{1}\\InprocServer32", u"", u"\\usr\\lib\\Caf\u00E9 & Co.so");
              registry.SetValue(u"\\clsid\\{1}\\\\INPROCSERVER32\\", u"ThreadingModel", u"Free");
              registry.SetValue(u"CLSID\\{1}\\InprocServer32", u"threadingmodel", u" Both\n");
              registry.SetKey(u"AppID\\Empty");
              registry.SetValue(u"AppID\\Gone\\Deep", u"x", u"y");
              registry.RemoveKey(u"appid\\GONE");
              registry.RemoveKey(u"appid\\none\\none");
              return S_FALSE;
            }),
            S_FALSE);

  Registry registry = ReadAll();
  EXPECT_EQ(registry.Value(u"clsid\\{1}\\inprocserver32"), u"\\usr\\lib\\Caf\u00E9 & Co.so");
  EXPECT_EQ(registry.Value(u"CLSID\\{1}\\InprocServer32", u"ThreadingModel"), u" Both\n");
  EXPECT_EQ(registry.Value(u"CLSID\\{1}"), std::nullopt);
  EXPECT_EQ(registry.Subkeys(u"AppID"), std::vector<std::u16string>{u"Empty"});
  EXPECT_EQ(registry.Value(u"AppID\\Empty"), std::nullopt);

  registry.RemoveValue(u"CLSID\\{1}\\InprocServer32", u"");
  registry.RemoveValue(u"CLSID\\{1}\\InprocServer32", u"THREADINGMODEL");
  EXPECT_EQ(registry.Value(u"CLSID\\{1}\\InprocServer32"), std::nullopt);
  EXPECT_EQ(registry.Value(u"CLSID\\{1}\\InprocServer32", u"ThreadingModel"), std::nullopt);
  EXPECT_THROW(registry.SetKey(std::u16string(400, u'\\') +
                               [] {
                                 std::u16string deep;
                                 for (int i = 0; i < 200; ++i) deep += u"k\\";
                                 return deep;
                               }()),
               std::exception);
}

TEST_F(RegistryTest, AFailingChangeChangesNothing) {
  auto set = [](Registry& registry, std::u16string_view value) { registry.SetValue(u"a", u"", value); };
  ASSERT_EQ(Registry::Update([&](Registry& registry) {
              set(registry, u"first");
              return S_OK;
            }),
            S_OK);
  EXPECT_EQ(Registry::Update([&](Registry& registry) {
              set(registry, u"second");
              return E_NOTIMPL;
            }),
            E_NOTIMPL);
  EXPECT_EQ(Registry::Update([&](Registry& registry) -> Status {
              set(registry, u"third");
              throw std::bad_alloc();
            }),
            E_OUTOFMEMORY);
  EXPECT_EQ(ReadAll().Value(u"a"), u"first");
}

TEST_F(RegistryTest, RefusesFilesThatAreNoRegistry) {
  const std::string kBad[] = {
      "",
      "no XML",
      "<settings/>",
      "<registry/>",
      "<registry version='2'/>",
      "<registry version='1'><key/></registry>",
      "<registry version='1'><key name='a'><value data='x'/></key></registry>",
  };
  for (const std::string& content : kBad) {
    folder_.Put("registry.xml", content);
    Registry registry;
    registry.SetKey(u"old");
    EXPECT_EQ(Registry::Read(&registry), E_FAIL) << content;
    EXPECT_FALSE(registry.HasKey(u"old"));
    EXPECT_EQ(Registry::Update([](Registry&) { return S_OK; }), E_FAIL);
    EXPECT_EQ(folder_.Get("registry.xml"), content);
  }
}

TEST_F(RegistryTest, TwoProcessesLoseNoChange) {
  constexpr std::size_t kChanges = 20;
  auto count_up = [] {
    for (std::size_t i = 0; i < kChanges; ++i) {
      Status status = Registry::Update([](Registry& registry) {
        std::u16string count = registry.Value(u"count").value_or(u"");
        registry.SetValue(u"count", u"", count + u"x");
        return S_OK;
      });
      if (status != S_OK) return 1;
    }
    return 0;
  };
  pid_t child = fork();
  if (child == 0) _exit(count_up());
  EXPECT_EQ(count_up(), 0);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadAll().Value(u"count"), std::u16string(2 * kChanges, u'x'));
  EXPECT_EQ(folder_.Count(), 2U) << "the file and its lock";
}

TEST_F(RegistryTest, MakesFoldersForTheUserAloneAndKeepsLinks) {
  setenv("ORVO_REGISTRY", folder_.System("a/b/registry.xml").c_str(), 1);
  auto change = [](Registry& registry) {
    registry.SetKey(u"made");
    return S_OK;
  };
  ASSERT_EQ(Registry::Update(change), S_OK);
  struct stat details {};
  for (const char* name : {"a", "a/b"}) {
    ASSERT_EQ(stat(folder_.System(name).c_str(), &details), 0);
    EXPECT_EQ(details.st_mode & 0777, 0700U);
  }
  ASSERT_EQ(symlink(folder_.System("a/b/registry.xml").c_str(), folder_.System("link.xml").c_str()), 0);
  setenv("ORVO_REGISTRY", folder_.System("link.xml").c_str(), 1);
  ASSERT_EQ(Registry::Update(change), S_OK);
  ASSERT_EQ(lstat(folder_.System("link.xml").c_str(), &details), 0);
  EXPECT_TRUE(S_ISLNK(details.st_mode));
}

TEST_F(RegistryTest, TheFileIsFoundThroughTheEnvironment) {
  EXPECT_EQ(Registry::FilePath(), folder_.System("registry.xml"));
  PretendBorrowedPrivileges(true);
  EXPECT_EQ(Registry::FilePath().find(folder_.System()), std::string::npos);
  PretendBorrowedPrivileges(false);

  unsetenv("ORVO_REGISTRY");
  std::string old_data = getenv("XDG_DATA_HOME") ? getenv("XDG_DATA_HOME") : "";
  setenv("XDG_DATA_HOME", "/data", 1);
  EXPECT_EQ(Registry::FilePath(), "/data/orvo/registry.xml");
  setenv("XDG_DATA_HOME", "relative", 1);
  std::string home = getenv("HOME") ? getenv("HOME") : "";
  setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(Registry::FilePath(), "/home/someone/.local/share/orvo/registry.xml");
  setenv("HOME", home.c_str(), 1);
  setenv("XDG_DATA_HOME", old_data.c_str(), 1);
}

}  // namespace
}  // namespace orvo
