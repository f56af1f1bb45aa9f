#pragma once

#include <string>

#include "tools/chart_sheet/pictures.h"

namespace orvo::tools {

/// Reads a capture into an engine and draws every chart that a report can show of it. Raises ToolError.
void DrawCapture(const std::string& capture, Pictures* pictures);

}  // namespace orvo::tools
