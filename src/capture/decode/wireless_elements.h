#pragma once

#include "capture/decode/packet_facts.h"

namespace orvo {

/// Reads the elements of a management frame's body (IEEE 802.11-2020 clause 9.4.2) up to the first that does not fit;
/// false when there is such a one. Call it after the capabilities are known: without other security elements, privacy
/// means WEP.
bool ReadElements(Bytes elements, NetworkFacts* network);

}  // namespace orvo
