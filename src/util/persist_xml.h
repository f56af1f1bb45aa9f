#pragma once

#include "platform/persist.h"

namespace orvo {

/// Keeps an object's settings as an element below a node of its host's document.
class IPersistXml : public IPersist {
 public:
  static constexpr Guid kIid = "6DE20D14-0C8D-4FF8-A880-5A3A0D7ABAFF"_guid;

  /// `document` is asked for IXmlDocument and `node` for IXmlNode. S_FALSE when the object's element is absent.
  virtual Status Load(IUnknown* document, IUnknown* node) = 0;
  virtual Status Save(IUnknown* document, IUnknown* node) = 0;

 protected:
  ~IPersistXml() = default;
};

}  // namespace orvo
