#include "platform/class_factory.h"

#include <dlfcn.h>

#include <mutex>
#include <thread>
#include <vector>

#include "platform/object.h"
#include "platform/privilege.h"
#include "platform/registry.h"
#include "tests/platform/module/test_module.h"
#include "tests/platform/temp_folder.h"

namespace orvo {
namespace {

using test::ICounter;
using test::kCounterClass;
using test::TempFolder;

constexpr Status kDenied = StatusFromError(kErrorAccessDenied);
const std::string kModule = ORVO_BINARY_DIR "/tests/platform_test_module.so";

/// An interface that only answers which factory made it.
class IMaker : public IUnknown {
 public:
  static constexpr Guid kIid = "2F6B1D6C-6C0B-4D0A-8D0B-5A0F4E0C9A03"_guid;
  virtual int Maker() = 0;

 protected:
  ~IMaker() = default;
};

class MadeObject final : public Object<IMaker> {
 public:
  explicit MadeObject(int maker) : maker_(maker) {}
  int Maker() override { return maker_; }

 private:
  int maker_;
};

class MakerFactory final : public Object<IClassFactory> {
 public:
  explicit MakerFactory(int maker) : maker_(maker) {}
  Status CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    if (outer) return CLASS_E_NOAGGREGATION;
    return MakeObject<MadeObject>(maker_)->QueryInterface(iid, out);
  }
  Status LockServer(bool) override { return S_OK; }

 private:
  int maker_;
};

/// Every test has its own library file, so that what is added for one is not found by another.
class ClassFactoryTest : public testing::Test {
 protected:
  void SetUp() override {
    setenv("ORVO_REGISTRY", folder_.System("registry.xml").c_str(), 1);
    std::filesystem::copy_file(kModule, library_);
  }
  void TearDown() override {
    FreeUnusedLibraries();
    EXPECT_FALSE(IsLoaded());
    unsetenv("ORVO_REGISTRY");
  }

  void RegisterLibrary(std::u16string_view path) {
    ASSERT_EQ(Registry::Update([&](Registry& registry) {
                registry.SetValue(u"CLSID\\" + FormatGuid(kCounterClass) + u"\\InprocServer32", u"", path);
                registry.SetValue(u"Test.Counter.1\\CLSID", u"", FormatGuid(kCounterClass));
                registry.SetValue(u"Test.Counter\\CurVer", u"", u"Test.Counter.1");
                registry.SetValue(u"Test.Broken\\CLSID", u"", u"no identifier");
                return S_OK;
              }),
              S_OK);
  }
  bool IsLoaded() const {
    void* handle = dlopen(library_.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle) dlclose(handle);
    return handle != nullptr;
  }

  TempFolder folder_;
  std::string library_ = folder_.System("module.so");
  std::u16string path_ = PathFromSystem(library_);
};

TEST_F(ClassFactoryTest, RegisteredLibrariesAreLoadedAndUnloaded) {
  RegisterLibrary(path_);
  EXPECT_FALSE(IsLoaded());
  ComPtr<ICounter> counter;
  ASSERT_EQ(CreateInstance(kCounterClass, &counter), S_OK);
  int total = 0;
  EXPECT_EQ(counter->Add(3, &total), S_OK);
  EXPECT_EQ(counter->Add(4, &total), S_OK);
  EXPECT_EQ(total, 7);
  FreeUnusedLibraries();
  EXPECT_TRUE(IsLoaded());
  counter.Reset();
  EXPECT_TRUE(IsLoaded());
  FreeUnusedLibraries();
  EXPECT_FALSE(IsLoaded());

  {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(GetClassObject(kCounterClass, IClassFactory::kIid, factory.OutVoid()), S_OK);
    EXPECT_EQ(factory->LockServer(true), S_OK);
    FreeUnusedLibraries();
    EXPECT_TRUE(IsLoaded());
    ComPtr<IMaker> maker;
    EXPECT_EQ(factory->CreateInstance(nullptr, IMaker::kIid, maker.OutVoid()), E_NOINTERFACE);
    EXPECT_EQ(factory->CreateInstance(factory.get(), ICounter::kIid, maker.OutVoid()), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->LockServer(false), S_OK);
  }
  void* nothing = this;
  EXPECT_EQ(CreateInstance(kCounterClass, IMaker::kIid, &nothing), E_NOINTERFACE);
  EXPECT_EQ(nothing, nullptr);
  EXPECT_EQ(CreateInstance(kCounterClass, IMaker::kIid, nullptr), E_POINTER);
}

TEST_F(ClassFactoryTest, OwnClassesComeBeforeTheRegistryAndTheNewestFirst) {
  RegisterLibrary(path_);
  std::uint32_t first = 0, second = 0;
  ASSERT_EQ(RegisterClassObject(kCounterClass, MakeObject<MakerFactory>(1).get(), &first), S_OK);
  ASSERT_EQ(RegisterClassObject(kCounterClass, MakeObject<MakerFactory>(2).get(), &second), S_OK);
  EXPECT_NE(first, 0U);
  auto maker = [] {
    ComPtr<IMaker> made;
    return CreateInstance(kCounterClass, &made) == S_OK ? made->Maker() : -1;
  };
  EXPECT_EQ(maker(), 2);
  EXPECT_EQ(RevokeClassObject(second), S_OK);
  EXPECT_EQ(RevokeClassObject(second), E_INVALIDARG);
  EXPECT_EQ(maker(), 1);
  EXPECT_EQ(RevokeClassObject(first), S_OK);
  EXPECT_FALSE(IsLoaded());
  EXPECT_EQ(maker(), -1);
  EXPECT_TRUE(IsLoaded());
  EXPECT_EQ(RegisterClassObject(kCounterClass, nullptr, &first), E_POINTER);
}

TEST_F(ClassFactoryTest, AddedLibrariesServeWhatTheRegistryLacks) {
  ComPtr<ICounter> counter;
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), REGDB_E_CLASSNOTREG);
  folder_.Put("registry.xml", "broken");
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), E_FAIL);
  // In a process of its own, since a library once added stays.
  EXPECT_EQ(test::InChildProcess([&] {
              if (AddLibrary(folder_.Path("none.so")) != StatusFromError(kErrorFileNotFound)) return 1;
              if (AddLibrary(path_) != S_OK || AddLibrary(path_) != S_OK) return 2;
              if (CreateInstance(kCounterClass, &counter) != S_OK) return 3;
              ComPtr<IMaker> maker;
              return CreateInstance(IMaker::kIid, &maker) == E_FAIL ? 0 : 4;
            }),
            0);
}

TEST_F(ClassFactoryTest, ALibraryThatCannotBeLoadedGivesTheCause) {
  ComPtr<ICounter> counter;
  RegisterLibrary(folder_.Path("none.so"));
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), StatusFromError(kErrorFileNotFound));
  RegisterLibrary(folder_.Path("none/none.so"));
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), StatusFromError(kErrorPathNotFound));
  folder_.Put("text.so", "no library");
  RegisterLibrary(folder_.Path("text.so"));
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), StatusFromErrno(ELIBBAD));
  RegisterLibrary(folder_.Path());
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), StatusFromError(kErrorIsAFolder));
  // A bare name is looked for in the current folder, never where the loader would.
  RegisterLibrary(u"libc.so.6");
  EXPECT_EQ(CreateInstance(kCounterClass, &counter), StatusFromError(kErrorFileNotFound));
}

TEST_F(ClassFactoryTest, BorrowedPrivilegesRefuseWhatOthersCouldChange) {
  EXPECT_EQ(test::InChildProcess([&] {
              if (AddLibrary(path_) != S_OK) return 1;
              PretendBorrowedPrivileges(true);
              ComPtr<ICounter> counter;
              if (CreateInstance(kCounterClass, &counter) != kDenied) return 2;
              if (CallLibraryEntry(path_, "DllRegisterServer") != kDenied) return 3;
              if (AddLibrary(path_) != kDenied) return 4;
              return IsLoaded() ? 5 : 0;
            }),
            0);
}

TEST_F(ClassFactoryTest, ProgramIdentifiersResolveThroughTheRegistry) {
  RegisterLibrary(path_);
  Guid class_id;
  EXPECT_EQ(ClassFromProgId(u"test.counter.1", &class_id), S_OK);
  EXPECT_EQ(class_id, kCounterClass);
  class_id = {};
  EXPECT_EQ(ClassFromProgId(u"Test.Counter", &class_id), S_OK);
  EXPECT_EQ(class_id, kCounterClass);
  for (const char16_t* name : {u"", u"Test", u"Test.Broken", u"Test.Counter\\CurVer", u"\\"}) {
    EXPECT_EQ(ClassFromProgId(name, &class_id), CO_E_CLASSSTRING);
  }
  EXPECT_EQ(ClassFromProgId(u"Test.Counter", nullptr), E_POINTER);
}

TEST_F(ClassFactoryTest, SetUpEntriesAreCalledWithoutCreatingAnything) {
  EXPECT_EQ(CallLibraryEntry(path_, "DllRegisterServer"), S_FALSE);
  EXPECT_EQ(CallLibraryEntry(path_, "DllUnregisterServer"), StatusFromErrno(ENOSYS));
  EXPECT_EQ(CallLibraryEntry(folder_.Path("none.so"), "DllRegisterServer"), StatusFromError(kErrorFileNotFound));
  EXPECT_FALSE(IsLoaded());
}

TEST_F(ClassFactoryTest, CreationAndUnloadingMayMeet) {
  RegisterLibrary(path_);
  std::atomic<int> failures = 0;
  std::atomic<int> running = 3;
  // The last instructions of an object's Release run when its library counts it no more; they must not be unloaded.
  std::mutex releasing;
  std::vector<std::thread> threads(3);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int round = 0; round < 100; ++round) {
        ComPtr<ICounter> counter;
        int total = 0;
        bool works = CreateInstance(kCounterClass, &counter) == S_OK && counter->Add(5, &total) == S_OK && total == 5;
        failures += !works;
        std::lock_guard lock(releasing);
        counter.Reset();
      }
      --running;
    });
  }
  while (running > 0) {
    std::lock_guard lock(releasing);
    FreeUnusedLibraries();
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
}

TEST_F(ClassFactoryTest, ThreadsJoinAndLeaveTheApartment) {
  std::thread([] {
    EXPECT_EQ(JoinMultithreadedApartment(), S_OK);
    EXPECT_EQ(JoinMultithreadedApartment(), S_FALSE);
    LeaveApartment();
    LeaveApartment();
    LeaveApartment();
    EXPECT_EQ(JoinMultithreadedApartment(), S_OK);
    LeaveApartment();
  }).join();
}

}  // namespace
}  // namespace orvo
