#include "frame/module/module.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "frame/module/class_table.h"
#include "frame/module/entry_points.h"
#include "frame/stats_output_method.h"
#include "platform/lock.h"
#include "platform/object.h"
#include "prefs/stats_output_prefs.h"
#include "util/module_count.h"

namespace orvo {
namespace {

ComPtr<IClassFactory> PreferencesFactory() {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(DllGetClassObject(kStatsOutputPrefsClass, IClassFactory::kIid, factory.OutVoid()), S_OK);
  return factory;
}

TEST(ClassTable, NamesEveryClassOnce) {
  std::set<Guid> class_ids;
  std::set<std::string_view> prog_ids;
  for (const ModuleClass& module_class : ModuleClasses()) {
    EXPECT_TRUE(class_ids.insert(module_class.class_id).second);
    EXPECT_TRUE(prog_ids.insert(module_class.prog_id).second);
    EXPECT_TRUE(prog_ids.insert(module_class.version_independent_prog_id).second);
    EXPECT_EQ(module_class.prog_id, std::string(module_class.version_independent_prog_id) + ".1");
    EXPECT_EQ(FindModuleClass(module_class.class_id), &module_class);
  }
  EXPECT_TRUE(class_ids.contains(kCsvStatsOutputClass));
  EXPECT_EQ(FindModuleClass(kStatsOutputPrefsClass)->version_independent_prog_id, "OrvoReports.StatsOutputPrefs");
  EXPECT_EQ(FindModuleClass(kCsvStatsOutputClass)->version_independent_prog_id, "OrvoReports");
}

TEST(Module, HandsOutFactoriesOfItsClassesOnly) {
  void* out = &out;
  EXPECT_EQ(DllGetClassObject("01234567-89AB-CDEF-0123-456789ABCDEF"_guid, IClassFactory::kIid, &out),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(out, nullptr);
  out = &out;
  EXPECT_EQ(DllGetClassObject(kStatsOutputPrefsClass, IStatsOutputPrefs::kIid, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(DllGetClassObject(kStatsOutputPrefsClass, IClassFactory::kIid, nullptr), E_POINTER);
  for (const ModuleClass& module_class : ModuleClasses()) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(module_class.class_id, IClassFactory::kIid, factory.OutVoid()), S_OK);
    EXPECT_TRUE(factory);
  }
}

TEST(Module, FactoriesMakeObjectsThatStandAlone) {
  ComPtr<IClassFactory> factory = PreferencesFactory();
  void* out = &out;
  EXPECT_EQ(factory->CreateInstance(factory.get(), IUnknown::kIid, &out), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(out, nullptr);
  out = &out;
  EXPECT_EQ(factory->CreateInstance(nullptr, IClassFactory::kIid, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(factory->CreateInstance(nullptr, IUnknown::kIid, nullptr), E_POINTER);
  FailNextCriticalSection(E_OUTOFMEMORY);
  out = &out;
  EXPECT_EQ(factory->CreateInstance(nullptr, IUnknown::kIid, &out), E_OUTOFMEMORY);
  EXPECT_EQ(out, nullptr);

  ComPtr<IStatsOutputPrefs> first, second;
  EXPECT_EQ(factory->CreateInstance(nullptr, IStatsOutputPrefs::kIid, first.OutVoid()), S_OK);
  EXPECT_EQ(factory->CreateInstance(nullptr, IStatsOutputPrefs::kIid, second.OutVoid()), S_OK);
  EXPECT_NE(first.get(), second.get());
}

TEST(Module, StaysWhileAnythingOfItIsInUse) {
  ComPtr<IClassFactory> factory = PreferencesFactory();
  EXPECT_EQ(DllCanUnloadNow(), S_OK) << "a factory alone holds nothing";
  ComPtr<IStatsOutputPrefs> preferences;
  EXPECT_EQ(factory->CreateInstance(nullptr, IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);

  EXPECT_EQ(factory->LockServer(true), S_OK);
  EXPECT_EQ(factory->LockServer(true), S_OK);
  preferences.Reset();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(false), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(PreferencesFactory()->LockServer(false), S_OK) << "locks are the module's, whichever factory took them";
  EXPECT_EQ(DllCanUnloadNow(), S_OK);

  EXPECT_EQ(factory->CreateInstance(nullptr, IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
  EXPECT_EQ(factory->LockServer(false), E_UNEXPECTED);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "nobody can release what an object holds";
}

TEST(Module, CountsOnManyThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      ComPtr<IClassFactory> factory = PreferencesFactory();
      for (int turn = 0; turn < 200; ++turn) {
        ComPtr<IStatsOutputPrefs> preferences;
        EXPECT_EQ(factory->LockServer(true), S_OK);
        EXPECT_EQ(factory->CreateInstance(nullptr, IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
        EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
        EXPECT_EQ(factory->LockServer(false), S_OK);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST(Module, DoesNothingWithoutItsLock) {
  FailNextCriticalSection(E_FAIL);
  COrvoReportsModule module;
  void* out = &out;
  EXPECT_EQ(module.GetClassObject(kStatsOutputPrefsClass, IClassFactory::kIid, &out), E_FAIL);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(module.Register(), E_FAIL);
  EXPECT_EQ(module.Unregister(), E_FAIL);
}

// What `command` prints, line by line; fails the test when it does not succeed.
std::vector<std::string> Output(const std::string& command) {
  std::vector<std::string> lines;
  FILE* pipe = popen(command.c_str(), "r");
  EXPECT_TRUE(pipe) << command;
  if (!pipe) return lines;
  std::array<char, 4096> line{};
  while (std::fgets(line.data(), line.size(), pipe)) {
    lines.emplace_back(line.data());
    if (lines.back().ends_with('\n')) lines.back().pop_back();
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return lines;
}

TEST(Module, ExportsItsEntryPointsAndNothingElse) {
  std::set<std::string> names;
  for (const std::string& line : Output("nm -D --defined-only '" ORVO_BINARY_DIR "/lib/OrvoReports.so'")) {
    names.insert(line.substr(line.find_last_of(' ') + 1));
  }
  EXPECT_EQ(names, (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                          "DllUnregisterServer"}));
}

}  // namespace
}  // namespace orvo
