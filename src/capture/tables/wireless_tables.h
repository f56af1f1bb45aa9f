#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "capture/tables/wireless_channels.h"
#include "capture/tables/wireless_nodes.h"

namespace orvo {

/// How much the wireless tables take in: about 300 bytes a node or network name, 250 a channel, 40 a rate.
struct WirelessLimits {
  std::size_t nodes = 100'000;
  std::size_t channels = 1'000;
  std::size_t rates = 64;  ///< of one node or channel
};

/// The wireless statistics of one moment.
struct FrozenWireless {
  FrozenWirelessNodes nodes;
  FrozenWirelessChannels channels;
  std::uint32_t subtype = 0;  ///< a wireless MediumSubtype
};

/// Everything that is counted of frames of IEEE 802.11 alone. One thread writes.
class WirelessTables {
 public:
  WirelessTables(const WirelessLimits& limits, std::shared_ptr<const TrustList> trust);

  /// Counts a frame of a wireless link; false when a table had no room for what it tells.
  bool Count(const WirelessNote& note, AddressTable* addresses);
  /// Starts over, but remembers what kind of medium it was.
  void Reset();

  /// Null while there has been no frame of a wireless link.
  std::shared_ptr<const FrozenWireless> Freeze();

 private:
  std::uint32_t Subtype() const;

  WirelessLimits limits_;
  std::shared_ptr<const TrustList> trust_;
  WirelessNodeTable nodes_;
  WirelessChannelTable channels_;
  std::uint16_t seen_ = 0;
};

}  // namespace orvo
