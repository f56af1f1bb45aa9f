#include "frame/module/class_factory.h"

#include <atomic>

#include "platform/class_factory.h"
#include "platform/error.h"
#include "platform/object.h"
#include "util/module_count.h"

namespace orvo {
namespace {

// Of all factories together, so that nobody can release more than was locked.
std::atomic<std::uint32_t> factory_locks{0};

class ModuleClassFactory final : public Object<IClassFactory> {
 public:
  explicit ModuleClassFactory(const ModuleClass& module_class) : class_(module_class) {}

  Status CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return Guard([&] { return class_.create(iid, out); });
  }

  /// E_UNEXPECTED, and nothing changes, when there is no lock to release.
  Status LockServer(bool lock) override {
    if (lock) {
      ModuleReference::Add();
      factory_locks.fetch_add(1);
      return S_OK;
    }
    std::uint32_t held = factory_locks.load();
    do {
      if (held == 0) return E_UNEXPECTED;
    } while (!factory_locks.compare_exchange_weak(held, held - 1));
    ModuleReference::Remove();
    return S_OK;
  }

 private:
  const ModuleClass& class_;
};

}  // namespace

Status CreateModuleClassFactory(const ModuleClass& module_class, const Guid& iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return Guard([&] { return MakeObject<ModuleClassFactory>(module_class)->QueryInterface(iid, out); });
}

}  // namespace orvo
