#include "capture/source/merged_source.h"

#include <algorithm>

namespace orvo {

// Sources tell their interfaces only packet by packet, so each gets a range that no capture fills.
constexpr std::uint32_t kInterfacesPerSource = 1U << 16;

MergedSource::MergedSource(const std::vector<PacketSource*>& sources) : sources_(sources) {
  for (std::size_t i = 0; i < sources.size(); ++i) {
    Head head{
        .source = sources[i], .packet = {}, .first_interface = static_cast<std::uint32_t>(i) * kInterfacesPerSource};
    if (head.source->Next(&head.packet)) heads_.push_back(head);
  }
}

void MergedSource::Advance(std::size_t index) {
  Head& head = heads_[index];
  if (!head.source->Next(&head.packet)) heads_.erase(heads_.begin() + static_cast<std::ptrdiff_t>(index));
}

bool MergedSource::Next(Packet* packet) {
  if (delivered_ != kNone) Advance(delivered_);
  delivered_ = kNone;
  if (heads_.empty()) return false;
  auto earliest = std::ranges::min_element(heads_, {}, [](const Head& head) { return head.packet.time; });
  delivered_ = static_cast<std::size_t>(earliest - heads_.begin());
  *packet = earliest->packet;
  packet->interface_number += earliest->first_interface;
  return true;
}

std::size_t MergedSource::NextBatch(std::span<Packet> room) {
  const bool head_waits = delivered_ == kNone;
  if (heads_.size() != 1 || head_waits) return PacketSource::NextBatch(room);
  const Head& only = heads_.front();
  const std::size_t count = only.source->NextBatch(room);
  for (Packet& packet : room.first(count)) packet.interface_number += only.first_interface;
  if (count == 0) {
    heads_.clear();
    delivered_ = kNone;
  }
  return count;
}

SourceProgress MergedSource::progress() const {
  SourceProgress sum;
  for (const PacketSource* source : sources_) {
    const SourceProgress one = source->progress();
    sum.bytes_read += one.bytes_read;
    sum.bytes_total += one.bytes_total;
  }
  return sum;
}

std::uint64_t MergedSource::dropped() const {
  std::uint64_t sum = 0;
  for (const PacketSource* source : sources_) sum += source->dropped();
  return sum;
}

}  // namespace orvo
