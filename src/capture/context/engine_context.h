#pragma once

#include <memory>

#include "capture/context/engine_core.h"
#include "engine/context.h"

namespace orvo {

/// A context over a running or loaded capture. It begins an epoch whenever it is asked whether it is available, and
/// everything that it hands out, snapshots included, is of that epoch until it is asked again.
ComPtr<IStatsContext> MakeEngineContext(std::shared_ptr<EngineCore> core);

}  // namespace orvo
