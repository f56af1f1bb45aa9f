#pragma once

#include "text/text_report.h"

namespace orvo {

/// "Summary Statistics": one row per statistic of the current summary snapshot. Writes nothing without a summary
/// object; raises what ends the file early.
void WriteSummaryFile(TextReport& report);

}  // namespace orvo
