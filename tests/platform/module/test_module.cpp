// A library with one class, as small as one can be: every object and every lock of the factory keeps it loaded.

#include "tests/platform/module/test_module.h"

#include "platform/class_factory.h"
#include "platform/object.h"

namespace orvo::test {
namespace {

std::atomic<int> locks{0};

class Counter final : public Object<ICounter> {
 public:
  Counter() { ++locks; }

  Status Add(int amount, int* total) override {
    *total = total_ += amount;
    return S_OK;
  }

 private:
  ~Counter() override { --locks; }

  int total_ = 0;
};

class Factory final : public Object<IClassFactory> {
 public:
  Status CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return MakeObject<Counter>()->QueryInterface(iid, out);
  }

  Status LockServer(bool lock) override {
    locks += lock ? 1 : -1;
    return S_OK;
  }
};

}  // namespace
}  // namespace orvo::test

#define TEST_EXPORT extern "C" __attribute__((visibility("default")))

TEST_EXPORT orvo::Status DllGetClassObject(const orvo::Guid& class_id, const orvo::Guid& iid, void** out) {
  *out = nullptr;
  if (class_id != orvo::test::kCounterClass) return orvo::CLASS_E_CLASSNOTAVAILABLE;
  return orvo::MakeObject<orvo::test::Factory>()->QueryInterface(iid, out);
}

TEST_EXPORT orvo::Status DllCanUnloadNow() {
  return orvo::test::locks == 0 ? orvo::S_OK : orvo::S_FALSE;
}

TEST_EXPORT orvo::Status DllRegisterServer() {
  return orvo::S_FALSE;
}

/// Called while the library is being unloaded.
TEST_EXPORT void (*on_unload)();
void (*on_unload)() = nullptr;

__attribute__((destructor)) static void Unload() {
  if (on_unload) on_unload();
}
