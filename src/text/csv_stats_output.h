#pragma once

#include "platform/unknown.h"

namespace orvo {

/// The creator of the text output method.
Status CreateCsvStatsOutput(const Guid& iid, void** out);

}  // namespace orvo
