#pragma once

#include "platform/stream.h"
#include "platform/unknown.h"

namespace orvo {

class IPersist : public IUnknown {
 public:
  static constexpr Guid kIid = "0000010C-0000-0000-C000-000000000046"_guid;

  /// The class identifier of the object; E_POINTER for a null out pointer.
  virtual Status GetClassID(Guid* class_id) = 0;

 protected:
  ~IPersist() = default;
};

class IPersistStream : public IPersist {
 public:
  static constexpr Guid kIid = "00000109-0000-0000-C000-000000000046"_guid;

  /// S_OK when the object has changed since it was last saved, else S_FALSE.
  virtual Status IsDirty() = 0;
  virtual Status Load(IStream* stream) = 0;
  virtual Status Save(IStream* stream, bool clear_dirty) = 0;
  virtual Status GetSizeMax(std::uint64_t* size) = 0;

 protected:
  ~IPersistStream() = default;
};

/// An object that lives at a site of its host's.
class IObjectWithSite : public IUnknown {
 public:
  static constexpr Guid kIid = "FC4801A3-2BA9-11CF-A229-00AA003D7352"_guid;

  virtual Status SetSite(IUnknown* site) = 0;
  /// One of the site's interfaces; a failure and a null pointer when there is no site or it lacks the interface.
  virtual Status GetSite(const Guid& iid, void** site) = 0;

 protected:
  ~IObjectWithSite() = default;
};

}  // namespace orvo
