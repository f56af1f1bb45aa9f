#pragma once

#include <memory>

#include "capture/context/name_directory.h"
#include "platform/unknown.h"

namespace orvo {

/// An object that answers IAddressNameService. Without a directory every text is the address itself.
ComPtr<IUnknown> MakeAddressNameService(std::shared_ptr<const NameDirectory> names);

/// An object that answers IProtocolNameService.
ComPtr<IUnknown> MakeProtocolNameService();

}  // namespace orvo
