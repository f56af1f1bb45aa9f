#include "frame/module/module.h"

#include <mutex>
#include <string>

#include "frame/module/class_factory.h"
#include "frame/module/registration.h"
#include "platform/class_factory.h"
#include "util/module_count.h"

namespace orvo {
namespace {

COrvoReportsModule the_module;

}  // namespace

COrvoReportsModule& Module() {
  return the_module;
}

Status COrvoReportsModule::GetClassObject(const Guid& class_id, const Guid& iid, void** out) const {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (Failed(status_)) return status_;
  const ModuleClass* found = FindModuleClass(class_id);
  return found ? CreateModuleClassFactory(*found, iid, out) : CLASS_E_CLASSNOTAVAILABLE;
}

Status COrvoReportsModule::CanUnloadNow() const {
  return ModuleReference::Count() == 0 ? S_OK : S_FALSE;
}

Status COrvoReportsModule::Register() {
  if (Failed(status_)) return status_;
  std::lock_guard hold(lock_);
  std::u16string path;
  Status status = LibraryPathOf(&the_module, &path);
  return Failed(status) ? status : RegisterModule(path);
}

Status COrvoReportsModule::Unregister() {
  if (Failed(status_)) return status_;
  std::lock_guard hold(lock_);
  return UnregisterModule();
}

}  // namespace orvo
