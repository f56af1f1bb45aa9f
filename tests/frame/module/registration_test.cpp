#include "frame/module/registration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "frame/module/class_table.h"
#include "platform/class_factory.h"
#include "platform/code_page.h"
#include "platform/locale.h"
#include "platform/path.h"
#include "platform/registry.h"
#include "prefs/preferences.h"
#include "tests/support/temporary_folder.h"
#include "util/ascii.h"

namespace orvo {
namespace {

constexpr char kLibrary[] = ORVO_BINARY_DIR "/lib/OrvoReports.so";

// Every test has a registry of its own.
class Registration : public testing::Test {
 protected:
  Registration() {
    const char* before = std::getenv("ORVO_REGISTRY");
    if (before) previous_ = before;
    setenv("ORVO_REGISTRY", folder_.Path("registry.xml").c_str(), 1);
  }
  ~Registration() override { previous_ ? setenv("ORVO_REGISTRY", previous_->c_str(), 1) : unsetenv("ORVO_REGISTRY"); }

  static Registry Read() {
    Registry registry;
    EXPECT_EQ(Registry::Read(&registry), S_OK);
    return registry;
  }

  static std::string Value(const std::u16string& key, std::u16string_view name = {}) {
    std::optional<std::u16string> value = Read().Value(key, name);
    return value ? ToUtf8(*value) : "(absent)";
  }

  test::TemporaryFolder folder_;
  std::optional<std::string> previous_;
};

TEST_F(Registration, WritesEveryEntry) {
  ASSERT_EQ(RegisterModule(u"\\opt\\orvo\\OrvoReports.so"), S_OK);

  std::string application = Value(u"AppID\\OrvoReports.DLL", u"AppID");
  Guid application_id;
  ASSERT_EQ(ParseGuid(FromUtf8(application), &application_id), S_OK) << application;
  EXPECT_EQ(Value(u"AppID\\" + FromUtf8(application)), "OrvoReports");

  for (const ModuleClass& module_class : ModuleClasses()) {
    std::string class_id = ToUtf8(FormatGuid(module_class.class_id));
    std::u16string prog_id = WidenAscii(module_class.prog_id);
    std::u16string common = WidenAscii(module_class.version_independent_prog_id);
    EXPECT_EQ(Value(prog_id), module_class.description);
    EXPECT_EQ(Value(prog_id + u"\\CLSID"), class_id);
    EXPECT_FALSE(Read().HasKey(prog_id + u"\\CurVer"));
    EXPECT_EQ(Value(common), module_class.description);
    EXPECT_EQ(Value(common + u"\\CLSID"), class_id);
    EXPECT_EQ(Value(common + u"\\CurVer"), module_class.prog_id);

    std::u16string key = u"CLSID\\" + FromUtf8(class_id);
    EXPECT_EQ(Value(key), module_class.description);
    EXPECT_EQ(Value(key, u"AppID"), application);
    EXPECT_EQ(Value(key + u"\\ProgID"), module_class.prog_id);
    EXPECT_EQ(Value(key + u"\\VersionIndependentProgID"), module_class.version_independent_prog_id);
    EXPECT_EQ(Value(key + u"\\InprocServer32"), "\\opt\\orvo\\OrvoReports.so");
    EXPECT_EQ(Value(key + u"\\InprocServer32", u"ThreadingModel"), "Both");
    EXPECT_EQ(Value(key + u"\\TypeLib"), application);
    EXPECT_EQ(Read().Subkeys(key).size(), 4U);
  }
  EXPECT_EQ(Read().Subkeys(u"CLSID").size(), ModuleClasses().size());
  EXPECT_EQ(Read().Subkeys(u"AppID").size(), 2U);
}

TEST_F(Registration, RemovesItsOwnEntriesOnly) {
  ASSERT_EQ(RegisterModule(u"\\one.so"), S_OK);
  ASSERT_EQ(RegisterModule(u"\\two.so"), S_OK);
  std::u16string class_key = u"CLSID\\" + FormatGuid(kStatsOutputPrefsClass);
  EXPECT_EQ(Value(class_key + u"\\InprocServer32"), "\\two.so");
  Registry::Update([&](Registry& registry) {
    registry.SetValue(u"CLSID\\{another}", {}, u"Another's class");
    registry.SetValue(u"OrvoReports\\Shell", {}, u"Another's key below one of ours");
    registry.SetValue(class_key + u"\\Extra", {}, u"Below a class");
    return S_OK;
  });

  ASSERT_EQ(UnregisterModule(), S_OK);
  Registry registry = Read();
  EXPECT_EQ(registry.Subkeys(u"CLSID"), std::vector<std::u16string>{u"{another}"});
  EXPECT_TRUE(registry.HasKey(u"AppID"));
  EXPECT_TRUE(registry.Subkeys(u"AppID").empty());
  EXPECT_TRUE(registry.HasKey(u"OrvoReports\\Shell"));
  EXPECT_FALSE(registry.HasKey(u"OrvoReports\\CLSID"));
  for (const ModuleClass& module_class : ModuleClasses()) {
    EXPECT_FALSE(registry.HasKey(WidenAscii(module_class.prog_id))) << module_class.prog_id;
    Guid class_id;
    EXPECT_EQ(ClassFromProgId(WidenAscii(module_class.version_independent_prog_id), &class_id), CO_E_CLASSSTRING);
  }
  EXPECT_EQ(UnregisterModule(), S_OK) << "what is not there need not be removed";
}

TEST_F(Registration, StopsAtTheFirstFailure) {
  folder_.Write("registry.xml", "<this is no registry");
  EXPECT_TRUE(Failed(RegisterModule(u"\\a.so")));
  EXPECT_TRUE(Failed(UnregisterModule()));
  EXPECT_EQ(folder_.Read("registry.xml"), "<this is no registry");
}

TEST_F(Registration, LeavesTheThreadsLocale) {
  for (std::uint32_t locale : {kUserDefaultLocale, kSystemDefaultLocale}) {
    SetThreadLocale(locale);
    EXPECT_EQ(RegisterModule(u"\\a.so"), S_OK);
    EXPECT_EQ(GetThreadLocale(), locale);
    EXPECT_EQ(UnregisterModule(), S_OK);
    EXPECT_EQ(GetThreadLocale(), locale);
  }
  SetThreadLocale(kUserDefaultLocale);
}

// The built library, as any host uses it.
TEST_F(Registration, MakesTheLibrarysClassesKnown) {
  std::u16string library = PathFromSystem(kLibrary);
  ASSERT_EQ(CallLibraryEntry(library, "DllRegisterServer"), S_OK);
  std::string class_key_path = Value(u"CLSID\\" + FormatGuid(kStatsOutputPrefsClass) + u"\\InprocServer32");
  EXPECT_EQ(class_key_path, ToUtf8(PathFromSystem(std::filesystem::canonical(kLibrary).string())));
  for (const ModuleClass& module_class : ModuleClasses()) {
    for (std::string_view prog_id : {module_class.prog_id, module_class.version_independent_prog_id}) {
      Guid class_id;
      EXPECT_EQ(ClassFromProgId(WidenAscii(prog_id), &class_id), S_OK) << prog_id;
      EXPECT_EQ(class_id, module_class.class_id) << prog_id;
    }
  }

  ComPtr<IStatsOutputPrefs> preferences;
  ASSERT_EQ(CreateInstance(kStatsOutputPrefsClass, &preferences), S_OK);
  FreeUnusedLibraries();
  std::int32_t value = 0;
  EXPECT_EQ(preferences->GetPreference(0, &value), S_OK) << "a living object keeps its library";
  EXPECT_EQ(value, 1);
  preferences.Reset();
  FreeUnusedLibraries();

  ASSERT_EQ(CallLibraryEntry(library, "DllUnregisterServer"), S_OK);
  EXPECT_EQ(CreateInstance(kStatsOutputPrefsClass, &preferences), REGDB_E_CLASSNOTREG);
}

}  // namespace
}  // namespace orvo
