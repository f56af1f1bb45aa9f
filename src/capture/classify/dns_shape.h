#pragma once

#include "capture/source/packet.h"

namespace orvo {

/// Whether these bytes are a message of the domain name system (RFC 1035 section 4), judged by its header and its
/// question, whatever the ports. Asks enough that other protocols' bytes do not pass.
bool LooksLikeDns(Bytes payload);

}  // namespace orvo
