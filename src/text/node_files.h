#pragma once

#include "text/text_report.h"

namespace orvo {

/// The node section: the hierarchy file and one node file per address family, each under its own switch. A file that
/// fails ends there; the others are still written. Raises a failing switch read.
void WriteNodeFiles(TextReport& report);

}  // namespace orvo
