#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "engine/address.h"
#include "engine/wireless.h"
#include "platform/error.h"
#include "statistics/value.h"

namespace orvo {

/// The wireless nodes that reports list, in the order of their index: those with an address, without the two entries
/// that stand for no network and no name. Every operation raises the failure of a query.
class WirelessNodes {
 public:
  /// Reads the count and the excluded entries. The statistics must outlive the object.
  explicit WirelessNodes(IWirelessNodeStats& statistics);

  /// Calls visit(index, entry) for every node that is listed.
  template <class Visit>
  void ForEach(Visit&& visit) const {
    for (std::uint32_t index = 0; index < count_; ++index) {
      const WirelessNodeEntry* node = nullptr;
      Check(statistics_.GetEntry(index, &node));
      if (node->address != kNoAddress && index != no_network_ && index != no_name_) visit(index, *node);
    }
  }

  /// "Strong" or "Weak" for a station with an association, of which the first in the engine's order counts; nothing for
  /// any other node.
  Value AssociationStrength(std::uint32_t index, const WirelessNodeEntry& node);

 private:
  void ReadAssociations();

  IWirelessNodeStats& statistics_;
  std::uint32_t count_ = 0;
  std::uint32_t no_network_ = 0;
  std::uint32_t no_name_ = 0;
  /// Strength by station; read when the first station asks.
  std::optional<std::unordered_map<std::uint32_t, std::uint32_t>> associations_;
};

}  // namespace orvo
