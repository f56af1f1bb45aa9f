#include "capture/analysis/expert/wireless_watch.h"

namespace orvo {
namespace {

constexpr std::uint64_t kSecond = 1'000'000'000;

void Report(ExpertEvent event, std::uint64_t value, const Packet& packet, const WirelessFacts& wireless,
            std::vector<EventRecord>* events) {
  EventRecord record;
  record.event = event;
  record.time = packet.time;
  record.value = value;
  record.source = wireless.transmitter;
  record.destination = wireless.receiver;
  events->push_back(record);
}

bool IsFarewell(const WirelessFacts& wireless) {
  return wireless.type == FrameType::kManagement &&
         (wireless.subtype == kDeauthentication || wireless.subtype == kDisassociation);
}

}  // namespace

void WirelessWatch::Inspect(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  if (!facts.is_wireless || !facts.wireless.is_readable) return;
  const WirelessFacts& wireless = facts.wireless;
  // Frames to a group are not acknowledged, so that nobody repeats them.
  if (wireless.type == FrameType::kData && wireless.delivery == Delivery::kUnicast) CountData(packet, wireless, events);
  if (IsFarewell(wireless)) CountFarewell(packet, wireless, events);
}

WirelessWatch::Node& WirelessWatch::NodeOf(const AddressRecord& address) {
  if (nodes_.empty()) nodes_.resize(kPlaces);
  Node& node = nodes_[hash_(address) % kPlaces];
  if (node.address != address) {
    node = {};
    node.address = address;
  }
  return node;
}

void WirelessWatch::CountData(const Packet& packet, const WirelessFacts& wireless, std::vector<EventRecord>* events) {
  Node& sender = NodeOf(wireless.transmitter);
  ++sender.frames;
  if (wireless.is_retry) ++sender.retries;
  if (wireless.radio.signal.dbm != kNoDbm) {
    ++sender.levels;
    sender.level_sum += wireless.radio.signal.dbm;
  }
  if (sender.frames < kFrames) return;

  const std::uint64_t percent = std::uint64_t{sender.retries} * 100 / sender.frames;
  const bool repeats = percent > ThresholdOf(ExpertEvent::kWirelessRetries);
  if (repeats && !sender.repeats) Report(ExpertEvent::kWirelessRetries, percent, packet, wireless, events);
  sender.repeats = repeats;
  if (sender.levels != 0) {
    // Levels below zero, as all of them are in the air, count by what they lack.
    const std::int32_t missing = -sender.level_sum / sender.levels;
    const bool is_weak = missing > static_cast<std::int32_t>(ThresholdOf(ExpertEvent::kWirelessWeakSignal));
    if (is_weak && !sender.is_weak) {
      Report(ExpertEvent::kWirelessWeakSignal, static_cast<std::uint64_t>(missing), packet, wireless, events);
    }
    sender.is_weak = is_weak;
  }
  sender.frames = sender.retries = sender.levels = 0;
  sender.level_sum = 0;
}

/// By network: whoever floods one commonly does so in the name of its access point or of its stations.
void WirelessWatch::CountFarewell(const Packet& packet, const WirelessFacts& wireless,
                                  std::vector<EventRecord>* events) {
  Node& network = NodeOf(wireless.network);
  const std::uint64_t second = packet.time / kSecond;
  if (second != network.second) {
    network.second = second;
    network.farewells = 0;
  }
  // Once for each second, when it has become too many.
  if (++network.farewells == ThresholdOf(ExpertEvent::kDeauthenticationFlood) + 1) {
    Report(ExpertEvent::kDeauthenticationFlood, network.farewells, packet, wireless, events);
  }
}

}  // namespace orvo
