#pragma once

#include "text/text_report.h"

namespace orvo {

/// "Node Statistics-Hierarchy": which logical address was seen behind which physical one, with its traffic. Writes
/// nothing without the hierarchy or the address table; raises what ends the file early.
void WriteHierarchyFile(TextReport& report);

}  // namespace orvo
