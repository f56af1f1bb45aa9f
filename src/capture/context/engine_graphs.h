#pragma once

#include <memory>

#include "capture/context/engine_core.h"
#include "engine/graphs.h"

namespace orvo {

/// The graphs of a capture. Asking for their number takes up the epoch that a context began last, so that a report's
/// graphs and tables are of one moment; graphs are of the epoch taken up last, and stay so while they are held.
ComPtr<IGraphCollection> MakeEngineGraphs(std::shared_ptr<EngineCore> core);

}  // namespace orvo
