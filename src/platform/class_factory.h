#pragma once

#include <string>
#include <string_view>

#include "platform/export.h"
#include "platform/unknown.h"

namespace orvo {

/// Creates the objects of one class.
class IClassFactory : public IUnknown {
 public:
  static constexpr Guid kIid = "00000001-0000-0000-C000-000000000046"_guid;

  /// Creates an object and answers one of its interfaces. Aggregation (a non-null `outer`) is
  /// CLASS_E_NOAGGREGATION with a null result; a null out pointer is E_POINTER.
  virtual Status CreateInstance(IUnknown* outer, const Guid& iid, void** out) = 0;
  /// Keeps the class's library loaded until it is called as often with false as with true.
  virtual Status LockServer(bool lock) = 0;

 protected:
  ~IClassFactory() = default;
};

/// The types of the entry points that a registered library exports under the names of the platform's convention:
/// "DllGetClassObject" and "DllCanUnloadNow" for creation, "DllRegisterServer" and "DllUnregisterServer" for set-up.
using DllGetClassObjectFunction = Status(const Guid& class_id, const Guid& iid, void** out);
using DllCanUnloadNowFunction = Status();
using DllRegisterServerFunction = Status();

/// The factory of a class: first among the process's own class objects, then from the library that the registry
/// names under CLSID\{class}\InprocServer32, then from a library added with AddLibrary.
/// REGDB_E_CLASSNOTREG when none has the class; a library that cannot be loaded gives the cause's status.
/// When the process has privileges that its user has not, a registry file or library that anybody but root could
/// write is refused with access denied; of libraries those are taken, too, that CheckTrustedLibrary lets pass.
ORVO_PLATFORM_API Status GetClassObject(const Guid& class_id, const Guid& iid, void** out);

/// GetClassObject, then CreateInstance without an outer object.
ORVO_PLATFORM_API Status CreateInstance(const Guid& class_id, const Guid& iid, void** out);

template <class T>
Status CreateInstance(const Guid& class_id, ComPtr<T>* out) {
  return CreateInstance(class_id, T::kIid, out->OutVoid());
}

/// Offers a class of the running program; holds a reference to the factory until it is revoked.
/// A class offered twice is answered by the newest entry. S_OK and a non-zero cookie.
ORVO_PLATFORM_API Status RegisterClassObject(const Guid& class_id, IClassFactory* factory, std::uint32_t* cookie);
ORVO_PLATFORM_API Status RevokeClassObject(std::uint32_t cookie);

/// The class identifier under which the registry lists a program identifier ("OrvoReports.StatsOutput");
/// CO_E_CLASSSTRING when it lists none.
ORVO_PLATFORM_API Status ClassFromProgId(std::u16string_view prog_id, Guid* class_id);

/// Names a library (a path with backslashes) to ask for classes that the registry does not list.
ORVO_PLATFORM_API Status AddLibrary(std::u16string_view path);

/// Unloads every loaded library that answers S_OK to DllCanUnloadNow.
ORVO_PLATFORM_API void FreeUnusedLibraries();

/// Calls one of the set-up entry points of a library without creating anything from it.
/// The function's own status, or why it could not be called (library missing, refused, or without that entry).
ORVO_PLATFORM_API Status CallLibraryEntry(std::u16string_view path, const char* entry);

/// The full path of the library (or program) whose code or data lies at the address, as a path with backslashes; E_FAIL
/// when nothing is loaded there.
ORVO_PLATFORM_API Status LibraryPathOf(const void* address, std::u16string* path);

/// The multi-threaded apartment of the process: a thread joins before it uses objects and leaves as often.
ORVO_PLATFORM_API Status JoinMultithreadedApartment();
ORVO_PLATFORM_API void LeaveApartment();

}  // namespace orvo
