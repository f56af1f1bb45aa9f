#include "capture/tables/wireless_tables.h"

#include <utility>

#include "engine/context.h"

namespace orvo {
namespace {

/// What tells the kind of medium.
enum Seen : std::uint16_t {
  kSeenAny = 1,
  kSeen24GHz = 2,
  kSeen5GHz = 4,    ///< or another band in which there is OFDM only
  kSeenOfdm = 8,    ///< a frame, or anything newer
  kSaidPlain = 16,  ///< rates in beacons and requests
  kSaidOfdm = 32,
};

constexpr std::uint16_t kFirstOfdmBand = 3000;  // MHz

std::uint16_t SeenIn(const WirelessFacts& facts) {
  std::uint16_t seen = kSeenAny;
  const RadioFacts& radio = facts.radio;
  if (radio.frequency != 0) seen |= radio.frequency < kFirstOfdmBand ? kSeen24GHz : kSeen5GHz;
  if (radio.rate != 0 && radio.modes != kRadioCck) seen |= kSeenOfdm;
  if (facts.is_readable && facts.type == FrameType::kManagement) {
    if (facts.announced.plain_rates) seen |= kSaidPlain;
    if (facts.announced.ofdm_rates) seen |= kSaidOfdm;
  }
  return seen;
}

}  // namespace

WirelessTables::WirelessTables(const WirelessLimits& limits, std::shared_ptr<const TrustList> trust)
    : limits_(limits),
      trust_(std::move(trust)),
      nodes_(limits.nodes, limits.rates, trust_),
      channels_(limits.channels, limits.rates) {}

bool WirelessTables::Count(const WirelessNote& note, AddressTable* addresses) {
  seen_ |= SeenIn(note.facts);
  bool listed = channels_.Count(note);
  if (note.facts.is_readable) listed &= nodes_.Count(note, addresses);
  return listed;
}

void WirelessTables::Reset() {
  const std::uint16_t seen = seen_;
  *this = WirelessTables(limits_, trust_);
  seen_ = seen;
}

/// 802.11a where only its band was seen, 802.11b where nothing was that it lacks, else the subtype whose rates are
/// those of both.
std::uint32_t WirelessTables::Subtype() const {
  if ((seen_ & kSeen24GHz) != 0) {
    return (seen_ & (kSeen5GHz | kSeenOfdm)) == 0 ? kSubtype80211b : kSubtype80211bg;
  }
  if ((seen_ & kSeen5GHz) != 0) return kSubtype80211a;
  // Without a radio's header, the rates that networks and stations announce have to do.
  if ((seen_ & kSeenOfdm) != 0) return kSubtype80211bg;
  switch (seen_ & (kSaidPlain | kSaidOfdm)) {
    case kSaidPlain: return kSubtype80211b;
    case kSaidOfdm: return kSubtype80211a;
    default: return kSubtype80211bg;
  }
}

std::shared_ptr<const FrozenWireless> WirelessTables::Freeze() {
  if (seen_ == 0) return nullptr;
  return std::make_shared<FrozenWireless>(FrozenWireless{nodes_.Freeze(), channels_.Freeze(), Subtype()});
}

}  // namespace orvo
