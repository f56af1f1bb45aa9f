#pragma once

#include <string>
#include <vector>

#include "capture/context/capture_engine.h"

namespace orvo::app {

/// The names of the engine's limits, joined by commas.
std::string LimitNames();

/// Applies --limit NAME=N, of which the last for a name counts; ends the command (wrong usage) for a name that there is
/// not and for what is no whole number up to a thousand million.
void ApplyLimits(const std::vector<std::string>& assignments, EngineOptions* options);

}  // namespace orvo::app
