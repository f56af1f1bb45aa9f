#pragma once

#include "text/text_report.h"

namespace orvo {

/// "Node-Protocol Detail Statistics": every conversation with its share of what its ends and its protocol carried.
/// Writes nothing without conversations, nodes or protocols; raises what ends the file early.
void WriteDetailFile(TextReport& report);

}  // namespace orvo
