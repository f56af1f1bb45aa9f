#pragma once

#include "capture/context/category_views.h"

namespace orvo {

// Objects over the traffic of one moment; the epoch has tables. Each comes with a reference.

/// Answers ITrafficHistory.
ComPtr<IUnknown> MakeTrafficHistory(const EpochPtr& epoch);
/// Answers ISizeStats.
ComPtr<IUnknown> MakeSizeStats(const EpochPtr& epoch);

}  // namespace orvo
