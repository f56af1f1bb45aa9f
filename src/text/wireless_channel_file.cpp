#include "text/wireless_channel_file.h"

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/channel_values.h"
#include "text/columns.h"
#include "text/rate_columns.h"
#include "text/section_file.h"

namespace orvo {
namespace {

using Channel = WirelessChannelEntry;
using Strength = WirelessStrength;

using wireless_channel::AverageDbm;
using wireless_channel::AveragePercent;
using wireless_channel::Band;
using wireless_channel::Count;
using wireless_channel::Frames;
using wireless_channel::Frequency;
using wireless_channel::Number;
using wireless_channel::Percent;

/// A strength in dBm; nothing where none was measured.
template <Strength Channel::*what, std::int8_t Strength::*field>
Value KnownDbm(const Channel& channel) {
  if ((channel.*what).*field == kNoDbm) return {};
  return wireless_channel::Dbm<what, field>(channel);
}

template <FrameCount Channel::*frames>
Value Packets(const Channel& channel) {
  return Frames<frames, &FrameCount::packets>(channel);
}

template <FrameCount Channel::*frames>
Value Bytes(const Channel& channel) {
  return Frames<frames, &FrameCount::bytes>(channel);
}

// clang-format off
constexpr Column<Channel> kColumns[] = {
    {kStrChannel, kAlways, Number},
    {kStrFrequency, kSwitchWChannelFrequency, Frequency},
    {kStrBand, kSwitchWChannelBand, Band},
    {kStrChannelTotalPackets, kAlways, Packets<&Channel::total>},
    {kStrChannelTotalBytes, kAlways, Bytes<&Channel::total>},
    {kStrDataPackets, kSwitchWChannelDataPackets, Packets<&Channel::data>},
    {kStrDataBytes, kSwitchWChannelDataBytes, Bytes<&Channel::data>},
    {kStrMgmtPackets, kSwitchWChannelMngtPackets, Packets<&Channel::management>},
    {kStrMgmtBytes, kSwitchWChannelMngtBytes, Bytes<&Channel::management>},
    {kStrCtrlPackets, kSwitchWChannelCtrlPackets, Packets<&Channel::control>},
    {kStrCtrlBytes, kSwitchWChannelCtrlBytes, Bytes<&Channel::control>},
    {kStrLocalPackets, kSwitchWChannelLocalPackets, Packets<&Channel::local>},
    {kStrLocalBytes, kSwitchWChannelLocalBytes, Bytes<&Channel::local>},
    {kStrFromDsPackets, kSwitchWChannelFromDSPackets, Packets<&Channel::from_ds>},
    {kStrFromDsBytes, kSwitchWChannelFromDSBytes, Bytes<&Channel::from_ds>},
    {kStrToDsPackets, kSwitchWChannelToDSPackets, Packets<&Channel::to_ds>},
    {kStrToDsBytes, kSwitchWChannelToDSBytes, Bytes<&Channel::to_ds>},
    {kStrDsToDsPackets, kSwitchWChannelDS2DSPackets, Packets<&Channel::ds_to_ds>},
    {kStrDsToDsBytes, kSwitchWChannelDS2DSBytes, Bytes<&Channel::ds_to_ds>},
    {kStrRetryPackets, kSwitchWChannelRetryPackets, Packets<&Channel::retry>},
    {kStrRetryBytes, kSwitchWChannelRetryBytes, Bytes<&Channel::retry>},
    {kStrProtectedPackets, kSwitchWChannelProtectedPackets, Packets<&Channel::protected_frames>},
    {kStrProtectedBytes, kSwitchWChannelProtectedBytes, Bytes<&Channel::protected_frames>},
    {kStrOrderPackets, kSwitchWChannelOrderPackets, Packets<&Channel::order>},
    {kStrOrderBytes, kSwitchWChannelOrderBytes, Bytes<&Channel::order>},
    {kStrCrcPackets, kSwitchWChannelCRCPackets, Count<&Channel::crc_packets>},
    {kStrWepIcvErrors, kSwitchWChannelICVErrorPackets, Count<&Channel::icv_errors>},
    {kStrMinSignal, kSwitchWChannelSignalMin, Percent<&Channel::signal, &Strength::min_percent>},
    {kStrMaxSignal, kSwitchWChannelSignalMax, Percent<&Channel::signal, &Strength::max_percent>},
    {kStrCurSignal, kSwitchWChannelSignalCur, Percent<&Channel::signal, &Strength::current_percent>},
    {kStrAvgSignal, kSwitchWChannelSignalAvg, AveragePercent<&Channel::signal_sum>},
    {kStrMinSignalDbm, kSwitchWChannelSignaldBmMin, KnownDbm<&Channel::signal, &Strength::min_dbm>},
    {kStrMaxSignalDbm, kSwitchWChannelSignaldBmMax, KnownDbm<&Channel::signal, &Strength::max_dbm>},
    {kStrCurSignalDbm, kSwitchWChannelSignaldBmCur, KnownDbm<&Channel::signal, &Strength::current_dbm>},
    {kStrAvgSignalDbm, kSwitchWChannelSignaldBmAvg, AverageDbm<&Channel::signal, &Channel::signal_milliwatt_sum>},
    {kStrMinNoise, kSwitchWChannelNoiseMin, Percent<&Channel::noise, &Strength::min_percent>},
    {kStrMaxNoise, kSwitchWChannelNoiseMax, Percent<&Channel::noise, &Strength::max_percent>},
    {kStrCurNoise, kSwitchWChannelNoiseCur, Percent<&Channel::noise, &Strength::current_percent>},
    {kStrAvgNoise, kSwitchWChannelNoiseAvg, AveragePercent<&Channel::noise_sum>},
    {kStrMinNoiseDbm, kSwitchWChannelNoisedBmMin, KnownDbm<&Channel::noise, &Strength::min_dbm>},
    {kStrMaxNoiseDbm, kSwitchWChannelNoisedBmMax, KnownDbm<&Channel::noise, &Strength::max_dbm>},
    {kStrCurNoiseDbm, kSwitchWChannelNoisedBmCur, KnownDbm<&Channel::noise, &Strength::current_dbm>},
    {kStrAvgNoiseDbm, kSwitchWChannelNoisedBmAvg, AverageDbm<&Channel::noise, &Channel::noise_milliwatt_sum>},
};
// clang-format on

std::string Header(const TextReport& report, const ColumnSet<Channel>& columns, const RateColumns& rates) {
  TextBuffer line(2048);
  line.Append("Time Saved");
  columns.AppendTitles(report.separator, &line);
  rates.AppendTitles(report, &line);
  line.Append('\n');
  return std::string(line.view());
}

std::span<const WirelessRate> RatesOf(IWirelessChannelStats& statistics, const Channel& channel) {
  const WirelessRate* rates = nullptr;
  std::uint32_t count = 0;
  Check(statistics.GetRates(channel.channel, channel.frequency, channel.band, &rates, &count));
  if (!rates) return {};
  return {rates, count};
}

}  // namespace

void WriteWirelessChannelFile(TextReport& report) {
  ComPtr<IWirelessChannelStats> statistics;
  if (Failed(GetCategory(report.job.statistics, kWirelessChannelCategory, &statistics)) || !statistics) return;
  const ColumnSet<Channel> columns(report, kColumns);
  RateColumns rates(report);

  auto write_rows = [&](SectionFile& file) {
    const std::string time_saved = TimeSaved(report);
    std::uint32_t count = 0;
    Check(statistics->GetCount(&count));
    TextBuffer& row = file.row();
    for (std::uint32_t index = 0; index < count; ++index) {
      const Channel* channel = nullptr;
      Check(statistics->GetEntry(index, &channel));
      row.Append(time_saved);
      columns.AppendValues(report, *channel, &row);
      if (rates.is_on()) rates.AppendValues(report, RatesOf(*statistics, *channel), &row);
      file.EndRow();
    }
  };
  WriteSectionFile(report, FilePath(report, kStrWirelessChannelStatistics), Header(report, columns, rates), write_rows);
}

}  // namespace orvo
