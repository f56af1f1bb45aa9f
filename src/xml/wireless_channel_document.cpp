#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/channel_values.h"
#include "xml/category_documents.h"
#include "xml/data_rate_elements.h"
#include "xml/report_document.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

using Channel = WirelessChannelEntry;
using Strength = WirelessStrength;

using wireless_channel::AverageDbm;
using wireless_channel::AveragePercent;
using wireless_channel::Band;
using wireless_channel::Count;
using wireless_channel::Dbm;
using wireless_channel::Frames;
using wireless_channel::Frequency;
using wireless_channel::Number;
using wireless_channel::Percent;

template <FrameCount Channel::*frames>
Value Packets(const Channel& channel) {
  return Frames<frames, &FrameCount::packets>(channel);
}

template <FrameCount Channel::*frames>
Value Bytes(const Channel& channel) {
  return Frames<frames, &FrameCount::bytes>(channel);
}

// clang-format off
constexpr XmlColumn<Channel> kColumns[] = {
    {"Channel", kNoSwitch, Number},
    {"Frequency", kSwitchWChannelFrequency, Frequency},
    {"Band", kSwitchWChannelBand, Band},
    {"Packets", kNoSwitch, Packets<&Channel::total>},
    {"Bytes", kNoSwitch, Bytes<&Channel::total>},
    {"DataPackets", kSwitchWChannelDataPackets, Packets<&Channel::data>},
    {"DataBytes", kSwitchWChannelDataBytes, Bytes<&Channel::data>},
    {"MngtPackets", kSwitchWChannelMngtPackets, Packets<&Channel::management>},
    {"MngtBytes", kSwitchWChannelMngtBytes, Bytes<&Channel::management>},
    {"CtrlPackets", kSwitchWChannelCtrlPackets, Packets<&Channel::control>},
    {"CtrlBytes", kSwitchWChannelCtrlBytes, Bytes<&Channel::control>},
    {"LocalPackets", kSwitchWChannelLocalPackets, Packets<&Channel::local>},
    {"LocalBytes", kSwitchWChannelLocalBytes, Bytes<&Channel::local>},
    {"FromDSPackets", kSwitchWChannelFromDSPackets, Packets<&Channel::from_ds>},
    {"FromDSBytes", kSwitchWChannelFromDSBytes, Bytes<&Channel::from_ds>},
    {"ToDSPackets", kSwitchWChannelToDSPackets, Packets<&Channel::to_ds>},
    {"ToDSBytes", kSwitchWChannelToDSBytes, Bytes<&Channel::to_ds>},
    {"DS2DSPackets", kSwitchWChannelDS2DSPackets, Packets<&Channel::ds_to_ds>},
    {"DS2DSBytes", kSwitchWChannelDS2DSBytes, Bytes<&Channel::ds_to_ds>},
    {"RetryPackets", kSwitchWChannelRetryPackets, Packets<&Channel::retry>},
    {"RetryBytes", kSwitchWChannelRetryBytes, Bytes<&Channel::retry>},
    {"ProtectedPackets", kSwitchWChannelProtectedPackets, Packets<&Channel::protected_frames>},
    {"ProtectedBytes", kSwitchWChannelProtectedBytes, Bytes<&Channel::protected_frames>},
    {"OrderPackets", kSwitchWChannelOrderPackets, Packets<&Channel::order>},
    {"OrderBytes", kSwitchWChannelOrderBytes, Bytes<&Channel::order>},
    {"CRCPackets", kSwitchWChannelCRCPackets, Count<&Channel::crc_packets>},
    {"WEPICVErrors", kSwitchWChannelICVErrorPackets, Count<&Channel::icv_errors>},
    {"SignalMin", kSwitchWChannelSignalMin, Percent<&Channel::signal, &Strength::min_percent>},
    {"SignalMax", kSwitchWChannelSignalMax, Percent<&Channel::signal, &Strength::max_percent>},
    {"SignalCur", kSwitchWChannelSignalCur, Percent<&Channel::signal, &Strength::current_percent>},
    {"SignalAvg", kSwitchWChannelSignalAvg, AveragePercent<&Channel::signal_sum>},
    {"SignaldBmMin", kSwitchWChannelSignaldBmMin, Dbm<&Channel::signal, &Strength::min_dbm>},
    {"SignaldBmMax", kSwitchWChannelSignaldBmMax, Dbm<&Channel::signal, &Strength::max_dbm>},
    {"SignaldBmCur", kSwitchWChannelSignaldBmCur, Dbm<&Channel::signal, &Strength::current_dbm>},
    {"SignaldBmAvg", kSwitchWChannelSignaldBmAvg, AverageDbm<&Channel::signal, &Channel::signal_milliwatt_sum>},
    {"NoiseMin", kSwitchWChannelNoiseMin, Percent<&Channel::noise, &Strength::min_percent>},
    {"NoiseMax", kSwitchWChannelNoiseMax, Percent<&Channel::noise, &Strength::max_percent>},
    {"NoiseCur", kSwitchWChannelNoiseCur, Percent<&Channel::noise, &Strength::current_percent>},
    {"NoiseAvg", kSwitchWChannelNoiseAvg, AveragePercent<&Channel::noise_sum>},
    {"NoisedBmMin", kSwitchWChannelNoisedBmMin, Dbm<&Channel::noise, &Strength::min_dbm>},
    {"NoisedBmMax", kSwitchWChannelNoisedBmMax, Dbm<&Channel::noise, &Strength::max_dbm>},
    {"NoisedBmCur", kSwitchWChannelNoisedBmCur, Dbm<&Channel::noise, &Strength::current_dbm>},
    {"NoisedBmAvg", kSwitchWChannelNoisedBmAvg, AverageDbm<&Channel::noise, &Channel::noise_milliwatt_sum>},
};
// clang-format on

std::span<const WirelessRate> RatesOf(IWirelessChannelStats& statistics, const Channel& channel) {
  const WirelessRate* rates = nullptr;
  std::uint32_t count = 0;
  Check(statistics.GetRates(channel.channel, channel.frequency, channel.band, &rates, &count));
  if (!rates) return {};
  return {rates, count};
}

bool WriteEntry(XmlReport& report) {
  if (!report.IsOn(kSwitchOutputWChannelsStats)) return false;
  const ComPtr<IWirelessChannelStats> statistics = Obtain(*report.job.live, kWirelessChannelCategory);
  if (!statistics) return false;
  DataRateElements rates(report, *report.job.live);
  IndexEntry entry(report, "WirelessChannelStatistics", u"1.0");
  AddSummary(report, entry.element(), *report.job.live);
  const XmlWriter stats = entry.element().AddElement("Stats");
  const XmlColumns<Channel> columns(report, kColumns);
  std::uint32_t count = 0;
  Check(statistics->GetCount(&count));
  for (std::uint32_t index = 0; index < count; ++index) {
    const Channel* channel = nullptr;
    Check(statistics->GetEntry(index, &channel));
    const XmlWriter row = stats.AddElement("ChannelStat");
    columns.AddTo(report, *channel, row);
    if (rates.is_on()) rates.AddTo(RatesOf(*statistics, *channel), row);
  }
  entry.Keep(count);
  return true;
}

}  // namespace

bool WriteWirelessChannelDocument(XmlReport& report) {
  return Contain(report, kIndexFile, [&] { return WriteEntry(report); });
}

}  // namespace orvo
