#pragma once

#include <memory>

#include "capture/context/epoch.h"

namespace orvo {

using EpochPtr = std::shared_ptr<const Epoch>;

/// The object of a category over the statistics of one moment, with a reference in *out; E_NOINTERFACE for a category
/// that the epoch does not hold or an interface that its object does not answer. `out` is not null.
Status MakeCategory(const EpochPtr& epoch, const Guid& category, const Guid& iid, void** out);

/// Both are null for an epoch without tables.
ComPtr<IAddressTable> MakeAddressTable(const EpochPtr& epoch);
ComPtr<IConversationIndex> MakeConversationIndex(const EpochPtr& epoch);

}  // namespace orvo
