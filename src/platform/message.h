#pragma once

#include <string>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// The system's message for a status, one line without a line end; empty when it has none.
ORVO_PLATFORM_API std::u16string SystemMessage(Status status);

}  // namespace orvo
