#pragma once

#include "platform/lock.h"
#include "platform/unknown.h"

namespace orvo {

/// What the library is as a whole: hands out class factories, knows whether it is still needed, and registers itself.
/// There is one, made when the library is loaded. A library cannot refuse to be loaded here, so when the module's lock
/// could not be made every operation answers with the status of that.
class COrvoReportsModule {
 public:
  COrvoReportsModule() : status_(lock_.Initialise()) {}

  /// CLASS_E_CLASSNOTAVAILABLE for a class that the module does not offer; E_POINTER for a null out pointer.
  Status GetClassObject(const Guid& class_id, const Guid& iid, void** out) const;
  /// S_OK when no object and no factory lock is left, else S_FALSE.
  Status CanUnloadNow() const;
  /// One of the two at a time; see registration.h.
  Status Register();
  Status Unregister();

 private:
  CriticalSection lock_;
  Status status_;
};

COrvoReportsModule& Module();

}  // namespace orvo
