#include "frame/module/entry_points.h"

#include "frame/module/module.h"
#include "platform/error.h"

using orvo::Guard;
using orvo::Module;

extern "C" orvo::Status DllGetClassObject(const orvo::Guid& class_id, const orvo::Guid& iid, void** out) {
  return Guard([&] { return Module().GetClassObject(class_id, iid, out); });
}

extern "C" orvo::Status DllCanUnloadNow() {
  return Guard([] { return Module().CanUnloadNow(); });
}

extern "C" orvo::Status DllRegisterServer() {
  return Guard([] { return Module().Register(); });
}

extern "C" orvo::Status DllUnregisterServer() {
  return Guard([] { return Module().Unregister(); });
}
