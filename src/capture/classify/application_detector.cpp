#include "capture/classify/application_detector.h"

#include <ndpi_protocol_ids.h>

#include <algorithm>

#include "capture/classify/dns_shape.h"
#include "capture/classify/ndpi_names.h"
#include "capture/classify/port_application.h"

namespace orvo {
namespace {

constexpr std::uint8_t kTcp = 6;

/// Packets with payload in which an application shows itself, if it does at all: mostly in the first, else when both
/// ends have spoken. In more packets nDPI only sees more and more protocols in bytes that are of none.
constexpr std::uint16_t kTcpPackets = 6;
constexpr std::uint16_t kUdpPackets = 4;

constexpr NdpiModule::Finding kDns{.protocol = NDPI_PROTOCOL_DNS};

/// Whether a datagram is one of the name service on its own port. nDPI would not say more, only later: of all flows
/// these are the most, and most of them are over after two packets.
bool IsPlainDns(const PacketFacts& facts) {
  static const std::uint16_t dns = ApplicationsOf(kDns, 0)[0];
  return facts.ip_protocol != kTcp && PortApplication(facts) == dns && LooksLikeDns(facts.payload);
}

}  // namespace

ApplicationDetector::ApplicationDetector(const DetectionLimits& limits)
    : limits_(limits), flows_(limits.flows, [this](Flow& flow) { Drop(flow); }) {
  limits_.undecided = std::max<std::size_t>(limits_.undecided, 1);
}

void ApplicationDetector::Inspect(std::span<const Packet> packets, std::span<PacketFacts> facts) {
  if (limits_.flows == 0) return;
  Prepare(packets, facts);
  // Few at a time of what is large.
  constexpr std::size_t kAhead = 4;
  for (std::size_t i = 0; i < packets.size(); ++i) {
    if (i + kAhead < packets.size()) {
      if (const State* state = ExpectedState(expected_[i + kAhead])) NdpiModule::Prefetch(state->ndpi.get());
    }
    if (expected_[i].is_of_flow()) Enter(expected_[i], &facts[i]);
  }
}

/// Tells the flows' keys, and has fetched what Enter will look at.
void ApplicationDetector::Prepare(std::span<const Packet> packets, std::span<const PacketFacts> facts) {
  expected_.resize(packets.size());
  for (std::size_t i = 0; i < packets.size(); ++i) {
    expected_[i] = {};
    if (expected_[i].Read(facts[i], packets[i].time)) flows_.Expect(&expected_[i]);
  }
  for (FlowPacket& packet : expected_) {
    if (packet.is_of_flow()) flows_.Prepare(&packet);
  }
  for (const FlowPacket& packet : expected_) {
    flows_.PrepareNeighbours(packet);
    if (const State* state = ExpectedState(packet)) __builtin_prefetch(state, 1);
  }
}

/// The state that the packet will be looked into with, as far as can be foreseen; null for none.
const ApplicationDetector::State* ApplicationDetector::ExpectedState(const FlowPacket& packet) const {
  const Flow* flow = packet.has_payload ? flows_.Expected(packet) : nullptr;
  return flow && flow->state < states_.size() ? &states_[flow->state] : nullptr;
}

void ApplicationDetector::Enter(const FlowPacket& packet, PacketFacts* facts) {
  std::uint32_t number = flows_.Enter(packet);
  if (!flows_[number].decided && packet.has_payload) LookInto(number, packet.time, *facts);
  Flow& flow = flows_[number];
  if (flow.ended && flow.state != kNoItem) GiveUp(flow);
  facts->applications = flow.applications;
  facts->flow = {flow.serial, number, packet.from_first};
}

void ApplicationDetector::LookInto(std::uint32_t number, std::uint64_t time, const PacketFacts& facts) {
  if (flows_[number].state == kNoItem && IsPlainDns(facts)) {
    ++recognised_;
    Settle(flows_[number], ApplicationsOf(kDns, 0));
    return;
  }
  State& state = states_[StateOf(number, facts)];
  NdpiModule::Finding finding = module_->Inspect(state.ndpi.get(), facts.datagram, time);
  bool tcp = flows_[number].key.ip_protocol == kTcp;
  // nDPI knows this protocol by its port alone.
  if (!finding.known() && !tcp && LooksLikeDns(facts.payload)) finding = kDns;
  ++state.packets;
  std::uint16_t most = tcp ? kTcpPackets : kUdpPackets;
  if (finding.known()) {
    ++recognised_;
    Decide(flows_[number], finding);
  } else if (state.packets >= most) {
    GiveUp(flows_[number]);
  }
}

/// The state of a flow, which is made at need.
std::uint32_t ApplicationDetector::StateOf(std::uint32_t number, const PacketFacts& facts) {
  Flow& flow = flows_[number];
  if (flow.state != kNoItem) {
    waiting_.Touch(states_, flow.state);
    return flow.state;
  }
  if (!module_) module_ = NdpiModule::Make();
  while (undecided() >= limits_.undecided || (undecided() != 0 && undecided_bytes() > limits_.bytes)) JudgeOldest();
  NdpiModule::FlowPtr ndpi = module_->NewFlow();
  if (first_free_ == kNoItem) {
    states_.emplace_back();
    first_free_ = static_cast<std::uint32_t>(states_.size() - 1);
  }
  flow.state = first_free_;
  first_free_ = states_[first_free_].newer;
  ++undecided_;
  State& state = states_[flow.state];
  state.ndpi = std::move(ndpi);
  state.flow = number;
  state.packets = 0;
  state.port_application = PortApplication(facts);
  waiting_.Append(states_, flow.state);
  return flow.state;
}

/// Ends the search in the flow that has said nothing for longest.
void ApplicationDetector::JudgeOldest() {
  ++not_inspected_;
  GiveUp(flows_[states_[waiting_.oldest()].flow]);
}

void ApplicationDetector::GiveUp(Flow& flow) {
  // Our own knowledge of the ports goes before nDPI's guess, and is what the flow's first packets were counted as.
  const State& state = states_[flow.state];
  Decide(flow, state.port_application == 0 ? module_->Guess(state.ndpi.get()) : NdpiModule::Finding{});
}

void ApplicationDetector::Decide(Flow& flow, NdpiModule::Finding finding) {
  Settle(flow, ApplicationsOf(finding, states_[flow.state].port_application));
  Drop(flow);
}

void ApplicationDetector::Settle(Flow& flow, std::array<std::uint16_t, 2> applications) {
  flow.applications = applications;
  flow.decided = true;
}

/// Frees what looking into the flow has taken.
void ApplicationDetector::Drop(Flow& flow) {
  if (flow.state == kNoItem) return;
  waiting_.Remove(states_, flow.state);
  states_[flow.state].ndpi.reset();
  states_[flow.state].newer = first_free_;
  first_free_ = flow.state;
  --undecided_;
  flow.state = kNoItem;
}

FlowCounts ApplicationDetector::counts() const {
  return {flows_.begun(), recognised_, flows_.given_up(), not_inspected_};
}

}  // namespace orvo
