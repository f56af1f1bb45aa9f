#pragma once

#include "text/text_report.h"

namespace orvo {

/// The file of wireless nodes: one row for every access point, station and ad hoc node that has an address.
void WriteWirelessNodeFile(TextReport& report);

}  // namespace orvo
