#pragma once

#include "capture/context/category_views.h"

namespace orvo {

// Objects over the wireless statistics of one moment, null for a wired medium. Each comes with a reference.

/// Answers IWirelessNodeStats.
ComPtr<IUnknown> MakeWirelessNodeStats(const EpochPtr& epoch);
/// Answers IWirelessChannelStats; channels are in the order of their frequencies.
ComPtr<IUnknown> MakeWirelessChannelStats(const EpochPtr& epoch);

}  // namespace orvo
