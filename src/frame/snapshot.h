#pragma once

#include <cstdint>

#include "engine/context.h"

namespace orvo {

/// Has the live context write its statistics, and loads them into a snapshot object of the engine's. `time_mark` is
/// handed to the engine and gets the moment of the snapshot. Raises the status of the step that failed.
ComPtr<IStatsContext> TakeSnapshot(IStatsContext* live, std::uint64_t* time_mark);

}  // namespace orvo
