#pragma once

#include "text/text_report.h"

namespace orvo {

/// "Protocol Statistics-Instance": the traffic of every protocol with its path in the protocol tree. Writes nothing
/// without protocol statistics; raises what ends the file early.
void WriteProtocolFile(TextReport& report);

}  // namespace orvo
