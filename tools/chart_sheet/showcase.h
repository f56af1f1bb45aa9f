#pragma once

#include "tools/chart_sheet/pictures.h"

namespace orvo::tools {

/// Draws charts of made-up data that is hard to show well: nothing at all, a great many series, tiny, huge and negative
/// values, long names and names in other scripts, slices too thin for their labels. Raises ToolError.
void DrawShowcase(Pictures* pictures);

}  // namespace orvo::tools
