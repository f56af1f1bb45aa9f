#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "capture/tables/address_table.h"
#include "capture/tables/rate_lists.h"
#include "capture/tables/wireless_note.h"
#include "engine/wireless.h"

namespace orvo {

/// Codes of WirelessNodeEntry::trust by physical address.
using TrustList = std::unordered_map<AddressRecord, std::uint8_t, KeyedHash>;

struct WirelessNodeRow {
  WirelessNodeEntry entry;
  std::uint32_t first_rate = kNoRow;
  std::uint32_t association = kNoRow;  ///< a station's, once it has one
  std::uint32_t access_points = 0;     ///< of a network name: how many have it
  bool has_signal = false;
  bool has_noise = false;
  bool is_announced = false;  ///< the encryption is what the node itself has announced
};

/// The nodes of one moment, in order of first appearance behind the two that stand for "no network" and "no name".
struct FrozenWirelessNodes {
  FrozenTable<WirelessNodeRow> rows;
  FrozenTable<WirelessAssociation> associations;
  FrozenTable<RateRow> rates;
  WirelessCounts counts;
};

/// Who is on the air: whoever transmits a frame, or is addressed as its receiver, on the radio itself. Nodes beyond an
/// access point are not, and frames that were damaged on their way name nobody.
///
/// A node is a station until it is seen as more: an access point by its beacons, answers, or frames that leave or enter
/// a distribution system; an ad hoc node by beacons or data without access point. It does not become less again. Group
/// addresses are administrative entries. Network names are entries without an address.
///
/// A station belongs to the access point with which it is associated: strongly, once an association was granted or data
/// was exchanged; weakly while it is merely addressed, asks or is asked. A weak tie gives way to every other, a strong
/// one to another strong one only. Taking leave makes a tie weak.
class WirelessNodeTable {
 public:
  static constexpr std::uint32_t kNoNetwork = 0;
  static constexpr std::uint32_t kNoName = 1;

  /// `limit` is the number of entries, `rates` that of rates of one node; `trust` may be null.
  WirelessNodeTable(std::size_t limit, std::size_t rates, std::shared_ptr<const TrustList> trust);

  /// Counts a readable frame; false when there was no room for one of its nodes or for its rate. The nodes' addresses
  /// go into the table of addresses.
  bool Count(const WirelessNote& note, AddressTable* addresses);

  FrozenWirelessNodes Freeze() { return {rows_.Freeze(), associations_.Freeze(), rates_.Freeze(), Counts()}; }

 private:
  /// The rows of a frame's two ends, kNoRow for one that is not named or not listed.
  struct Ends {
    std::uint32_t transmitter = kNoRow;
    std::uint32_t receiver = kNoRow;  ///< also for a group
    std::uint32_t station = kNoRow;   ///< the receiver if it is one node
  };

  void AddFixedRows();
  std::uint32_t RowOf(const AddressRecord& address, AddressTable* addresses);
  std::uint32_t RowOfName(const NetworkFacts& network);
  WirelessNodeEntry& Entry(std::uint32_t row) { return rows_.Edit(row).entry; }
  bool IsAccessPoint(std::uint32_t row) const { return row != kNoRow && rows_[row].entry.type == kWirelessAccessPoint; }

  void Learn(const WirelessNote& note, const Ends& ends);
  void LearnFromManagement(const WirelessFacts& facts, const Ends& ends);
  void LearnFromData(const WirelessFacts& facts, const Ends& ends);
  void LearnFromNeighbours(const WirelessFacts& facts, const Ends& ends);
  void LearnEap(std::uint8_t method, const Ends& ends);
  void Announce(const WirelessFacts& facts, std::uint32_t row);
  void Request(const WirelessFacts& facts, const Ends& ends);

  void Become(std::uint32_t row, WirelessNodeType type);
  void JoinAdHoc(std::uint32_t row, const AddressRecord& network);
  void Name(std::uint32_t row, std::uint32_t name);
  void Associate(std::uint32_t station, std::uint32_t access_point, bool strong);
  void TakeLeave(const Ends& ends);
  void SetStrength(std::uint32_t station, bool strong);
  bool IsStrong(std::uint32_t station) const;

  void CountSent(const WirelessNote& note, std::uint32_t row);
  void CountReceived(const WirelessNote& note, std::uint32_t row);
  /// Channel and rate; false when there was no room for the rate.
  bool CountRadio(const WirelessNote& note, std::uint32_t number, bool sent);
  WirelessCounts Counts() const;

  PagedVector<WirelessNodeRow> rows_;
  std::vector<std::uint32_t> rows_by_address_;
  KeyedHash name_hash_;
  RowIndex names_;
  PagedVector<WirelessAssociation> associations_;
  RateLists rates_;
  std::unordered_map<AddressRecord, std::uint32_t, KeyedHash> ad_hoc_networks_;  // to the row of the name
  std::shared_ptr<const TrustList> trust_;
  WirelessCounts counts_;
  std::uint32_t nameless_access_points_ = 0;
  std::size_t limit_;
};

}  // namespace orvo
