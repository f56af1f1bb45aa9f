#pragma once

#include <memory>

#include "capture/names/name_directory.h"
#include "capture/names/vendor_table.h"
#include "platform/unknown.h"

namespace orvo {

/// Where names of addresses come from, the directory first; either may be null.
struct AddressNames {
  std::shared_ptr<const NameDirectory> directory;
  std::shared_ptr<const VendorTable> vendors;
};

/// An object that answers IAddressNameService. An address without a name is worded as it is.
ComPtr<IUnknown> MakeAddressNameService(AddressNames names);

/// An object that answers IProtocolNameService.
ComPtr<IUnknown> MakeProtocolNameService();

}  // namespace orvo
