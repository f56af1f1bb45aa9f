#pragma once

#include "capture/context/category_views.h"

namespace orvo {

/// The object of the expert and voice category. It offers the analysis tables of a moment (ITableProvider).
ComPtr<IUnknown> MakeExpertStats(const EpochPtr& epoch);

}  // namespace orvo
