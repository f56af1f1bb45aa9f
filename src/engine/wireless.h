#pragma once

#include <array>
#include <cstdint>

#include "engine/nodes.h"
#include "platform/unknown.h"

namespace orvo {

enum WirelessNodeType : std::uint32_t {
  kWirelessAdmin = 1,
  kWirelessAccessPoint = 2,
  kWirelessNetworkName = 3,
  kWirelessStation = 4,
  kWirelessAdHoc = 5,
};

/// Stands for "not measured" in every dBm field.
inline constexpr std::int8_t kNoDbm = -127;

/// Lowest, highest and latest strength. Percentages run from 0 to 100.
struct WirelessStrength {
  std::uint8_t min_percent = 0;
  std::uint8_t max_percent = 0;
  std::uint8_t current_percent = 0;
  std::int8_t min_dbm = kNoDbm;
  std::int8_t max_dbm = kNoDbm;
  std::int8_t current_dbm = kNoDbm;
};

/// One access point, station, ad hoc node, network name or administrative entry of an 802.11 medium (IEEE 802.11-2020).
struct WirelessNodeEntry {
  std::uint64_t first_time_sent = 0;  ///< 0: has sent nothing
  std::uint64_t last_time_sent = 0;
  std::uint64_t first_time_received = 0;
  std::uint64_t last_time_received = 0;
  std::uint64_t packets_sent = 0;
  std::uint64_t packets_received = 0;
  std::uint64_t bytes_sent = 0;
  std::uint64_t bytes_received = 0;
  std::uint64_t broadcast_packets = 0;
  std::uint64_t broadcast_bytes = 0;
  std::uint64_t multicast_packets = 0;
  std::uint64_t multicast_bytes = 0;
  std::uint64_t retry_packets = 0;
  std::uint64_t beacon_packets = 0;
  std::uint64_t wep_packets = 0;  ///< protected frames
  std::uint64_t icv_errors = 0;
  std::uint32_t address = 0;  ///< address index, kNoAddress for none
  std::uint32_t type = 0;     ///< WirelessNodeType
  /// Indices of the entries that this one belongs to: its access point and its network name.
  std::array<std::uint32_t, 2> association_keys{};
  std::uint16_t min_size_sent = kNoMinimumSize;
  std::uint16_t max_size_sent = 0;
  std::uint16_t min_size_received = kNoMinimumSize;
  std::uint16_t max_size_received = 0;
  std::uint16_t beacon_channel = 0;   ///< first channel number: as announced
  std::uint16_t current_channel = 0;  ///< second channel number: as last seen
  std::uint8_t wep_key = 0;
  std::uint8_t encryption = 0;          ///< 1 WEP, 2 CKIP, 3 TKIP, else none of them
  std::uint8_t authentication = 0;      ///< 1 EAP, 2 LEAP, 3 PEAP, 4 EAP-TLS, else none of them
  std::uint8_t privacy = 0;             ///< flag
  std::uint8_t broadcast_name = 0;      ///< flag: the network name is announced
  std::uint8_t trust = 0;               ///< 1 known, 2 trusted, else neither
  std::uint8_t name_length = 0;         ///< bytes of `name` in use
  std::array<std::uint8_t, 32> name{};  ///< network name, any bytes
  WirelessStrength signal;
  WirelessStrength noise;
};

struct WirelessAssociation {
  std::uint32_t station = 0;   ///< index of the station's entry
  std::uint32_t strength = 0;  ///< 2 strong, else weak
};

/// Traffic at one data rate.
struct WirelessRate {
  std::uint32_t rate = 0;  ///< in units of 500 kbit/s
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
};

struct WirelessCounts {
  std::uint32_t networks = 0;  ///< infrastructure networks (BSS)
  std::uint32_t access_points = 0;
  std::uint32_t ad_hoc_networks = 0;
  std::uint32_t clients = 0;
};

/// Offered for wireless media only: on any other medium the category is a failure, not an empty table.
class IWirelessNodeStats : public IUnknown {
 public:
  static constexpr Guid kIid = "8C13FF92-5E93-406A-8BC8-C42D9ADFF0E2"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  virtual Status GetEntry(std::uint32_t index, const WirelessNodeEntry** entry) = 0;
  /// Two entries that stand for "no network" and "no name" and are never listed.
  virtual Status GetExcluded(std::uint32_t* first, std::uint32_t* second) = 0;
  virtual Status GetCounts(WirelessCounts* counts) = 0;
  virtual Status GetAssociationCount(std::uint32_t* count) = 0;
  virtual Status GetAssociation(std::uint32_t index, const WirelessAssociation** association) = 0;
  /// The node's traffic by rate: an array owned by this object.
  virtual Status GetRates(std::uint32_t index, const WirelessRate** rates, std::uint32_t* count) = 0;

 protected:
  ~IWirelessNodeStats() = default;
};

struct FrameCount {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
};

/// One radio channel.
struct WirelessChannelEntry {
  std::int32_t channel = 0;
  std::uint32_t frequency = 0;  ///< MHz
  std::uint32_t band = 0;       ///< band code
  FrameCount total;
  FrameCount data;
  FrameCount management;
  FrameCount control;
  FrameCount local;
  FrameCount from_ds;
  FrameCount to_ds;
  FrameCount ds_to_ds;
  FrameCount retry;
  FrameCount protected_frames;
  FrameCount order;
  std::uint64_t crc_packets = 0;
  std::uint64_t icv_errors = 0;
  WirelessStrength signal;
  WirelessStrength noise;
  std::uint64_t signal_sum = 0;  ///< of the percentages of all packets
  std::uint64_t noise_sum = 0;
  double signal_milliwatt_sum = 0;  ///< of the powers of all packets
  double noise_milliwatt_sum = 0;
};

class IWirelessChannelStats : public IUnknown {
 public:
  static constexpr Guid kIid = "117E43EC-60B6-4E83-B352-45EF503701C7"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  virtual Status GetEntry(std::uint32_t index, const WirelessChannelEntry** entry) = 0;
  /// The channel's traffic by rate: an array owned by this object, empty for a channel without any.
  virtual Status GetRates(std::int32_t channel, std::uint32_t frequency, std::uint32_t band, const WirelessRate** rates,
                          std::uint32_t* count) = 0;

 protected:
  ~IWirelessChannelStats() = default;
};

}  // namespace orvo
