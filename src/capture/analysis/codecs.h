#pragma once

#include <cstdint>
#include <string_view>

namespace orvo {

enum class MediaKind : std::uint8_t { kUnknown, kAudio, kVideo };

/// What is known of a way to encode voice or video.
struct Codec {
  std::string_view encoding;  ///< the name that SDP gives it (IANA: RTP payload format media types)
  std::string_view name;      ///< as people know it, in UTF-8
  MediaKind kind = MediaKind::kAudio;
  /// ITU-T G.113 Appendix I: the equipment impairment Ie and the robustness against packet loss Bpl that the E-model
  /// takes. Ie is negative where no value is published for narrow-band telephony; such a codec has no ratings.
  double impairment = -1;
  double loss_robustness = 4.3;

  bool rated() const { return impairment >= 0; }
};

/// A codec by its encoding name in any case; null for one that is not known.
const Codec* FindCodec(std::string_view encoding);

/// What RFC 3551 section 6 ties to a payload type for good.
struct StaticPayload {
  std::string_view encoding;
  std::uint32_t clock_rate = 0;
};

/// Null for a type that only signalling gives a meaning to, and for those that are not assigned.
const StaticPayload* FindStaticPayload(std::uint8_t payload_type);

/// Comfort noise (RFC 3389) and telephone events (RFC 4733): they stand in for voice between its packets.
bool IsComfortNoise(std::string_view encoding);
bool IsTelephoneEvent(std::string_view encoding);

}  // namespace orvo
