#pragma once

#include "platform/error.h"
#include "platform/lock.h"
#include "platform/object.h"
#include "util/module_count.h"

namespace orvo {

/// The base of every object that the module creates: keeps the module loaded while it lives, and has an object lock.
template <class... Interfaces>
class ComponentObject : public Object<Interfaces...> {
 public:
  /// Completes the object after its constructor; when it fails the object must not be used.
  Status Initialise() { return lock_.Initialise(); }

 protected:
  /// Held by whatever loads or saves the object's settings.
  CriticalSection& lock() { return lock_; }

 private:
  ModuleReference reference_;
  CriticalSection lock_;
};

/// Makes a T and answers one of its interfaces; the status of whatever failed, with a null result then.
template <class T>
Status CreateComponentObject(const Guid& iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return Guard([&] {
    ComPtr<T> object = MakeObject<T>();
    Check(object->Initialise());
    return object->QueryInterface(iid, out);
  });
}

}  // namespace orvo
