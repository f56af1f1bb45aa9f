#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "capture/classify/flow_table.h"
#include "capture/classify/ndpi_module.h"
#include "capture/classify/recency_list.h"
#include "capture/decode/packet_facts.h"
#include "capture/tables/counters.h"

namespace orvo {

struct DetectionLimits {
  std::size_t flows = 1'000'000;   ///< kept at once; 0 turns the detection off
  std::size_t undecided = 50'000;  ///< looked into at once, about 1 KB each, at least 1
  std::size_t bytes = 64'000'000;  ///< what those may take together
};

/// Finds out what the flows of TCP and UDP carry, from the content of their first packets.
///
/// A flow is looked into until its application is recognised, or was not in its first few packets with payload; then
/// the best guess from ports and address ranges holds. What looking into it took is freed at once, and the flow keeps
/// two numbers. Packets before that moment have no application. Belongs to one thread.
class ApplicationDetector {
 public:
  explicit ApplicationDetector(const DetectionLimits& limits);
  ApplicationDetector(const ApplicationDetector&) = delete;
  ApplicationDetector& operator=(const ApplicationDetector&) = delete;

  /// Notes packets in their flows, one after the other, and among the facts of each which flow it is of, and the flow's
  /// applications as of that packet. There are as many facts as packets; the more at a time, the faster it goes, up to
  /// some hundred.
  void Inspect(std::span<const Packet> packets, std::span<PacketFacts> facts);

  FlowCounts counts() const;
  std::size_t undecided() const { return undecided_; }
  /// What the flows that are being looked into take.
  std::size_t undecided_bytes() const { return module_ ? module_->flow_bytes() : 0; }

 private:
  /// A flow that is being looked into.
  struct State {
    NdpiModule::FlowPtr ndpi;
    std::uint32_t flow = kNoItem;
    std::uint32_t older = kNoItem;
    std::uint32_t newer = kNoItem;
    std::uint16_t packets = 0;
    std::uint16_t port_application = 0;
  };

  void Prepare(std::span<const Packet> packets, std::span<const PacketFacts> facts);
  const State* ExpectedState(const FlowPacket& packet) const;
  void Enter(const FlowPacket& packet, PacketFacts* facts);
  void LookInto(std::uint32_t number, std::uint64_t time, const PacketFacts& facts);
  std::uint32_t StateOf(std::uint32_t number, const PacketFacts& facts);
  void JudgeOldest();
  void Decide(Flow& flow, NdpiModule::Finding finding);
  static void Settle(Flow& flow, std::array<std::uint16_t, 2> applications);
  void GiveUp(Flow& flow);
  void Drop(Flow& flow);

  DetectionLimits limits_;
  std::unique_ptr<NdpiModule> module_;  // made when the first flow is looked into
  std::vector<FlowPacket> expected_;    // of the packets in work
  std::vector<State> states_;
  std::uint32_t first_free_ = kNoItem;  // those not in use are linked by `newer`
  std::size_t undecided_ = 0;
  RecencyList waiting_;
  std::uint64_t recognised_ = 0;
  std::uint64_t not_inspected_ = 0;
  FlowTable flows_;  // the last, as it hands over what is left when it ends
};

}  // namespace orvo
