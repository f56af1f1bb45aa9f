#pragma once

#include "capture/analysis/voice_analysis.h"
#include "engine/tables.h"

namespace orvo {

/// The table of voice and video media, a row for each stream. Column numbers are fixed: reports name some of them.
ComPtr<ITable> MakeMediaTable(const FrozenVoice& voice);

}  // namespace orvo
