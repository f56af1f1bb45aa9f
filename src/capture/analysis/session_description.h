#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "capture/analysis/ip_endpoint.h"
#include "capture/analysis/media_stream.h"

namespace orvo {

/// Where a party of a call wants to get media, and in which formats.
struct OfferedMedia {
  IpEndpoint endpoint;
  std::shared_ptr<const MediaDescription> description;
};

/// The RTP media of a session description (SDP, RFC 8866), at most kMaxMedia of them with kMaxFormats each; those
/// that are refused or on hold (port 0, no address) are left out. The text comes from the wire: what does not fit the
/// grammar costs that line or everything, and never more than a bounded time.
std::vector<OfferedMedia> ReadSessionDescription(std::string_view text);

inline constexpr int kMaxMedia = 16;
inline constexpr int kMaxFormats = 32;

}  // namespace orvo
