#pragma once

#include "text/text_report.h"

namespace orvo {

/// The file of radio channels: one row for every channel.
void WriteWirelessChannelFile(TextReport& report);

}  // namespace orvo
