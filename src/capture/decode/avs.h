#pragma once

#include "capture/decode/protocol_registry.h"

namespace orvo {

/// Whether bytes begin like an AVS capture header, which also comes on links that promise a Prism header.
bool IsAvs(Bytes bytes);
Payload DecodeAvs(Bytes bytes, PacketFacts& facts);

}  // namespace orvo
