#pragma once

#include "capture/context/category_views.h"
#include "engine/graphs.h"

namespace orvo {

/// How many graphs there are, whatever was captured.
std::uint32_t GraphCount();

/// The graph at an index below GraphCount(), over the samples of an epoch with tables.
ComPtr<IGraph> MakeGraph(const EpochPtr& epoch, std::uint32_t index);

}  // namespace orvo
