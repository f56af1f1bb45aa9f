#include "capture/tables/wireless_channels.h"

#include <cmath>

#include "capture/tables/level_range.h"

namespace orvo {
namespace {

double Milliwatts(std::int8_t dbm) {
  return std::pow(10.0, dbm / 10.0);
}

void Add(FrameCount* count, std::uint64_t bytes) {
  ++count->packets;
  count->bytes += bytes;
}

FrameCount* CountOfType(FrameType type, WirelessChannelEntry* entry) {
  switch (type) {
    case FrameType::kManagement: return &entry->management;
    case FrameType::kControl: return &entry->control;
    case FrameType::kData: return &entry->data;
    default: return nullptr;
  }
}

FrameCount* CountOfWay(const WirelessFacts& facts, WirelessChannelEntry* entry) {
  if (facts.to_ds) return facts.from_ds ? &entry->ds_to_ds : &entry->to_ds;
  return facts.from_ds ? &entry->from_ds : &entry->local;
}

void CountClasses(const WirelessFacts& facts, std::uint64_t bytes, WirelessChannelEntry* entry) {
  if (FrameCount* count = CountOfType(facts.type, entry)) Add(count, bytes);
  Add(CountOfWay(facts, entry), bytes);
  if (facts.is_retry) Add(&entry->retry, bytes);
  if (facts.is_protected) Add(&entry->protected_frames, bytes);
  if (facts.has_order) Add(&entry->order, bytes);
  entry->icv_errors += facts.icv_error;
}

void CountLevels(const RadioFacts& radio, WirelessChannelRow* row) {
  WirelessChannelEntry& entry = row->entry;
  AddLevel(radio.signal, &row->has_signal, &entry.signal);
  AddLevel(radio.noise, &row->has_noise, &entry.noise);
  if (radio.signal.known()) entry.signal_sum += static_cast<std::uint64_t>(radio.signal.percent);
  if (radio.noise.known()) entry.noise_sum += static_cast<std::uint64_t>(radio.noise.percent);
  if (radio.signal.dbm != kNoDbm) entry.signal_milliwatt_sum += Milliwatts(radio.signal.dbm);
  if (radio.noise.dbm != kNoDbm) entry.noise_milliwatt_sum += Milliwatts(radio.noise.dbm);
}

}  // namespace

std::uint32_t WirelessChannelTable::RowOf(const RadioFacts& radio) {
  auto is_it = [&](std::uint32_t row) {
    const WirelessChannelEntry& entry = rows_[row].entry;
    return entry.channel == radio.channel && entry.frequency == radio.frequency;
  };
  // Radios stay on a channel for many frames, and there are few channels.
  if (latest_ < rows_.size() && is_it(latest_)) return latest_;
  for (latest_ = 0; latest_ < rows_.size(); ++latest_) {
    if (is_it(latest_)) return latest_;
  }
  if (rows_.size() >= limit_) return kNoRow;
  WirelessChannelRow added;
  added.entry.channel = radio.channel;
  added.entry.frequency = radio.frequency;
  rows_.Append(added);
  return latest_;
}

bool WirelessChannelTable::Count(const WirelessNote& note) {
  const WirelessFacts& facts = note.facts;
  const std::uint32_t number = RowOf(facts.radio);
  if (number == kNoRow) return false;
  const std::uint64_t bytes = note.bytes;
  WirelessChannelRow& row = rows_.Edit(number);
  Add(&row.entry.total, bytes);
  row.entry.crc_packets += facts.radio.bad_fcs;
  row.modes |= facts.radio.modes;
  row.entry.band = BandCode(row.entry.frequency, row.modes);
  CountLevels(facts.radio, &row);
  if (facts.is_readable) CountClasses(facts, bytes, &row.entry);
  return facts.radio.rate == 0 || rates_.Count(&row.first_rate, facts.radio.rate, bytes);
}

}  // namespace orvo
