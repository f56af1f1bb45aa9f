// Packets of flows, and what their content says about the application.

#include "capture/classify/application_detector.h"
#include "capture/classify/protocol_tree.h"
#include "capture/decode/protocol_registry.h"
#include "fuzz/support/packet_input.h"

namespace orvo::fuzz {
namespace {

constexpr std::uint64_t kHour = 3'600'000'000'000;
constexpr unsigned kLongestStep = 39;  // nine minutes, so that flows can expire

constexpr DetectionLimits kLimits{4, 2, 100'000};

}  // namespace

/// One detector serves all inputs, since it takes long to begin. An hour lies between two of them, so that all flows of
/// the one before have expired; only the library's own caches stay.
void TestOneInput(Input input) {
  static ApplicationDetector detector(kLimits);
  static std::uint64_t time = kFirstTime;
  Packet packet;
  packet.time = time += kHour;
  PacketFacts facts;
  while (TakePacket(&input, &packet, kLongestStep)) {
    time = std::max(time, packet.time);
    DecodePacket(packet, &facts);
    detector.Inspect({&packet, 1}, {&facts, 1});
    for (std::uint16_t application : facts.applications) {
      Require(application < ProtocolRegistry::Get().count(), "applications are registered");
    }
    const std::uint16_t place = ProtocolTree::Get().Classify(facts);
    Require(place == 0 || ProtocolTree::Get().Contains(place), "every packet has a place that there is");
    Require(detector.undecided() <= kLimits.undecided, "no more flows are looked into than may be");
    const FlowCounts counts = detector.counts();
    Require(counts.recognised <= counts.begun && counts.given_up <= counts.begun, "flows begin before they end");
  }
}

void MakeSeeds(const SeedSink& add) {
  MakePacketSeeds(add);
}

}  // namespace orvo::fuzz
