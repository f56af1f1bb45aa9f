#include "util/string_table.h"

#include <array>
#include <cstddef>

namespace orvo {
namespace {

struct Entry {
  StringId identifier;
  std::string_view text;
};

constexpr Entry kEntries[] = {
    {kStrProjectName, "OrvoReports"},
    {kStrWirelessStatistics, "Wireless Statistics"},
    {kStrFrequency, "Frequency"},
    {kStrBand, "Band"},
    {kStrDataPackets, "Data Packets"},
    {kStrChannelTotalPackets, "Total Packets"},
    {kStrCtrlPackets, "Ctrl Packets"},
    {kStrMgmtPackets, "Mgmt Packets"},
    {kStrLocalPackets, "Local Packets"},
    {kStrAssociationStrength, "Association Strength"},
    {kStrChannel, "Channel"},
    {kStrWepPackets, "WEP Packets"},
    {kStrRetryPackets, "Retry Packets"},
    {kStrWepIcvErrors, "WEP ICV Errors"},
    {kStrMinSignal, "Min. Signal"},
    {kStrMaxSignal, "Max. Signal"},
    {kStrDaysAndTime, "%sd %s"},
    {kStrHierarchy, "Hierarchy"},
    {kStrIp, "IP"},
    {kStrDecnet, "DECnet"},
    {kStrIpv6, "IPv6"},
    {kStrAppleTalk, "AppleTalk"},
    {kStrIpx, "IPX"},
    {kStrPhysical, "Physical"},
    {kStrNodeStatistics, "Node Statistics"},
    {kStrPhysicalAddressName, "Physical Address Name"},
    {kStrPhysicalAddress, "Physical Address"},
    {kStrLogicalAddressName, "Logical Address Name"},
    {kStrLogicalAddress, "Logical Address"},
    {kStrTotalBytes, "Total Bytes"},
    {kStrTotalPackets, "Total Packets"},
    {kStrAddressName, "Address Name"},
    {kStrAddress, "Address"},
    {kStrFirstTimeSent, "First Time Sent"},
    {kStrLastTimeSent, "Last Time Sent"},
    {kStrFirstTimeReceived, "First Time Received"},
    {kStrLastTimeReceived, "Last Time Received"},
    {kStrPacketsSent, "Packets Sent"},
    {kStrBytesSent, "Bytes Sent"},
    {kStrPacketsReceived, "Packets Received"},
    {kStrBytesReceived, "Bytes Received"},
    {kStrBroadcastPackets, "Broadcast Packets"},
    {kStrBroadcastBytes, "Broadcast Bytes"},
    {kStrMulticastPackets, "Multicast Packets"},
    {kStrMulticastBytes, "Multicast Bytes"},
    {kStrMinSizeSent, "Min Size Sent"},
    {kStrMaxSizeSent, "Max Size Sent"},
    {kStrMinSizeReceived, "Min Size Received"},
    {kStrMaxSizeReceived, "Max Size Received"},
    {kStrProtocolStatistics, "Protocol Statistics"},
    {kStrInstance, "Instance"},
    {kStrId, "ID"},
    {kStrName, "Name"},
    {kStrPath, "Path"},
    {kStrPackets, "Packets"},
    {kStrBytes, "Bytes"},
    {kStrSummaryStatistics, "Summary Statistics"},
    {kStrSizeStatistics, "Size Statistics"},
    {kStrSizeDistribution, "Size Distribution"},
    {kStrCurSignal, "Cur. Signal"},
    {kStrAvgSignal, "Avg. Signal"},
    {kStrType, "Type"},
    {kStrBeaconPackets, "Beacon Packets"},
    {kStrEssid, "ESSID"},
    {kStrWepKey, "WEP Key"},
    {kStrAvgSizeSent, "Avg. Size Sent"},
    {kStrAvgSizeReceived, "Avg. Size Received"},
    {kStrDuration, "Duration"},
    {kStrTrust, "Trust"},
    {kStrAuthentication, "Authentication"},
    {kStrEncryption, "Encryption"},
    {kStrUnknown, "Unknown"},
    {kStrKnown, "Known"},
    {kStrAvgSignalDbm, "Avg. Signal dBm"},
    {kStrTrusted, "Trusted"},
    {kStrCurSignalDbm, "Cur. Signal dBm"},
    {kStrMaxSignalDbm, "Max. Signal dBm"},
    {kStrMinSignalDbm, "Min. Signal dBm"},
    {kStrAvgNoise, "Avg. Noise"},
    {kStrCurNoise, "Cur. Noise"},
    {kStrMaxNoise, "Max. Noise"},
    {kStrMinNoise, "Min. Noise"},
    {kStrAvgNoiseDbm, "Avg. Noise dBm"},
    {kStrCurNoiseDbm, "Cur. Noise dBm"},
    {kStrMaxNoiseDbm, "Max. Noise dBm"},
    {kStrMinNoiseDbm, "Min. Noise dBm"},
    {kStrBroadcastEssid, "Broadcast ESSID"},
    {kStrPrivacy, "Privacy"},
    {kStrFalse, "False"},
    {kStrTrue, "True"},
    {kStrOn, "On"},
    {kStrOff, "Off"},
    {kStrRatePackets, "%s Mbits/s Packets"},
    {kStrRateBytes, "%s Mbits/s Bytes"},
    {kStrRate, "%s Mbits/s"},
    {kStrFromDsPackets, "From DS Packets"},
    {kStrToDsPackets, "To DS Packets"},
    {kStrDsToDsPackets, "DS to DS Packets"},
    {kStrRetryBytes, "Retry Bytes"},
    {kStrProtectedPackets, "Protected Packets"},
    {kStrOrderPackets, "Order Packets"},
    {kStrChannelTotalBytes, "Total Bytes"},
    {kStrDataBytes, "Data Bytes"},
    {kStrMgmtBytes, "Mgmt Bytes"},
    {kStrCtrlBytes, "Ctrl Bytes"},
    {kStrLocalBytes, "Local Bytes"},
    {kStrFromDsBytes, "From DS Bytes"},
    {kStrToDsBytes, "To DS Bytes"},
    {kStrDsToDsBytes, "DS to DS Bytes"},
    {kStrProtectedBytes, "Protected Bytes"},
    {kStrOrderBytes, "Order Bytes"},
    {kStrNodeProtocolDetailStatistics, "Node-Protocol Detail Statistics"},
    {kStrCrcPackets, "CRC Packets"},
    {kStrExpertFlowStatistics, "Expert Flow Statistics"},
    {kStrWirelessChannelStatistics, "Wireless Channel Statistics"},
    {kStrExpertEventLog, "Expert Event Log"},
    {kStrExpertApplicationStatistics, "Expert Application Statistics"},
    {kStrExpertEventCounts, "Expert Event Counts"},
    {kStrWindowMonth, "Monthly (6 Hour Average)"},
    {kStrWindowWeek, "Weekly (1 Hour Average)"},
    {kStrWindowDay, "Daily (10 Minute Average)"},
    {kStrWindow12Hours, "12 Hour Window (5 Minute Average)"},
    {kStrWindow6Hours, "6 Hour Window (2 Minute Average)"},
    {kStrWindow2Hours, "2 Hour Window (60 Second Average)"},
    {kStrWindow1Hour, "1 Hour Window (30 Second Average)"},
    {kStrWindow30Minutes, "30 Minute Window (10 Second Average)"},
    {kStrWindow10Minutes, "10 Minute Window (5 Second Average)"},
    {kStrWindow2Minutes, "2 Minute Window (1 Second Average)"},
    {kStrMbitsPerSecond, "Mbits Per Second"},
    {kStrTrafficHistory, "Traffic History - %s"},
    {kStrWindowYear, "Yearly (1 Day Average)"},
    {kStrTopTalkersByIpAddress, "Top Talkers by IP Address"},
    {kStrTopTalkersByPhysicalAddress, "Top Talkers by Physical Address"},
    {kStrOthers, "Others"},
    {kStrVoipMediaStatistics, "VoIP Media Statistics"},
};

// All identifiers but the project name's stand in one row without gaps, so that the place follows from the number.
constexpr std::size_t kCount = std::size(kEntries);
constexpr std::uint32_t kFirst = kStrWirelessStatistics;

constexpr bool IsInOrder() {
  for (std::size_t i = 1; i < kCount; ++i) {
    if (kEntries[i].identifier != kFirst + i - 1) return false;
  }
  return kEntries[0].identifier == kStrProjectName;
}
static_assert(IsInOrder());

constexpr std::size_t PoolSize() {
  std::size_t size = 0;
  for (const Entry& entry : kEntries) size += entry.text.size() + 1;
  return size;
}

// The UTF-16 form of all texts, each with its closing zero, and where each begins.
struct Pool {
  std::array<char16_t, PoolSize()> units{};
  std::array<std::uint16_t, kCount> begins{};
};

constexpr Pool MakePool() {
  Pool pool;
  std::size_t at = 0;
  for (std::size_t i = 0; i < kCount; ++i) {
    pool.begins[i] = static_cast<std::uint16_t>(at);
    for (char c : kEntries[i].text) {
      if (c < 0x20 || c > 0x7E) throw "a text of the table is ASCII";
      pool.units[at++] = static_cast<char16_t>(c);
    }
    ++at;
  }
  return pool;
}
constexpr Pool kPool = MakePool();

// The place of an identifier in the table, or kCount.
std::size_t PlaceOf(std::uint32_t identifier) {
  if (identifier == kStrProjectName) return 0;
  if (identifier < kFirst || identifier - kFirst >= kCount - 1) return kCount;
  return identifier - kFirst + 1;
}

}  // namespace

std::u16string_view TextOf(std::uint32_t identifier) {
  std::size_t place = PlaceOf(identifier);
  if (place == kCount) return {};
  return {kPool.units.data() + kPool.begins[place], kEntries[place].text.size()};
}

std::string_view AsciiTextOf(std::uint32_t identifier) {
  std::size_t place = PlaceOf(identifier);
  return place == kCount ? std::string_view() : kEntries[place].text;
}

}  // namespace orvo
