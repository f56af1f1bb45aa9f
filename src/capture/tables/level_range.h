#pragma once

#include "capture/decode/radio_facts.h"
#include "engine/wireless.h"

namespace orvo {

/// Takes one more level, if it is known, into the lowest, highest and latest. `measured` tells whether there has been
/// one before, since 0 percent is a level, too.
void AddLevel(const RadioLevel& level, bool* measured, WirelessStrength* strength);

}  // namespace orvo
