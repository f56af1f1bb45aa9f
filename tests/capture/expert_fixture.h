#pragma once

#include <map>
#include <string>

#include "capture/analysis/expert/expert_analysis.h"
#include "capture/analysis/expert/expert_reader.h"
#include "capture/classify/flow_table.h"
#include "capture/decode/protocol_registry.h"
#include "tests/capture/frames.h"

namespace orvo::test {

inline constexpr std::uint64_t kMillisecond = 1'000'000;

/// A TCP header with everything that the analysis reads.
inline Buffer TcpHeader(unsigned from, unsigned to, std::uint32_t sequence, std::uint32_t acknowledgement,
                        std::uint8_t flags, unsigned window = 1000) {
  auto be32 = [](std::uint32_t value) { return Be16(value >> 16) + Be16(value & 0xFFFF); };
  return Be16(from) + Be16(to) + be32(sequence) + be32(acknowledgement) + Buffer{0x50, flags} + Be16(window) + Zeros(4);
}

inline Buffer Text(std::string_view text) {
  return {text.begin(), text.end()};
}

/// The analysis behind its reader.
class ExpertParts {
 public:
  explicit ExpertParts(const ExpertOptions& options) : analysis(options) {}

  void Inspect(const Packet& packet, const PacketFacts& facts) {
    PacketNote note(packet, facts, 0);
    reader_.Read({&packet, 1}, {&facts, 1}, &notes_);
    analysis.Inspect({&note, 1}, notes_);
  }

  ExpertAnalysis analysis;

 private:
  ExpertReader reader_;
  ExpertNotes notes_;
};

/// The same behind decoding and a flow table, as the engine has it.
class ExpertFixture : public ExpertParts {
 public:
  explicit ExpertFixture(const ExpertOptions& options = {}, std::size_t flows = 1000)
      : ExpertParts(options), flows_(flows, [](Flow&) {}) {}

  /// `milliseconds` count from the new year.
  void Feed(const Buffer& frame, double milliseconds = 0, std::uint32_t original_length = 0) {
    Packet packet = MakePacket(frame, kNewYear + static_cast<std::uint64_t>(milliseconds * kMillisecond));
    if (original_length != 0) packet.original_length = original_length;
    PacketFacts facts = Decoded(packet);
    FlowPacket flow_packet;
    if (flow_packet.Read(facts, packet.time)) {
      std::uint64_t begun = flows_.begun();
      flows_.Expect(&flow_packet);
      facts.flow.number = flows_.Enter(flow_packet);
      if (flows_.begun() != begun) serials_[facts.flow.number] = flows_.begun();
      facts.flow.serial = serials_[facts.flow.number];
      facts.flow.from_first = flow_packet.from_first;
    }
    facts.applications = applications;
    Inspect(packet, facts);
  }

  /// Between 10.0.0.1 and 10.0.0.2.
  void FeedIp(bool from_first, std::uint8_t protocol, const Buffer& payload, double milliseconds = 0) {
    Feed(Ethernet(Mac(1), Mac(2), 0x0800,
                  from_first ? Ipv4(Ip4(1), Ip4(2), protocol, payload) : Ipv4(Ip4(2), Ip4(1), protocol, payload)),
         milliseconds);
  }

  /// Every event that happened and how often: "DNS_ERROR DNS_SLOW_ANSWER*2".
  std::string Events() {
    std::string text;
    FrozenEvents events = analysis.Freeze().events;
    for (const ExpertEventType& type : expert_events::kTypes) {
      std::uint64_t count = events.counts[static_cast<std::size_t>(type.event)].count;
      if (count == 0) continue;
      text += (text.empty() ? "" : " ") + std::string(type.key);
      if (count != 1) text += "*" + std::to_string(count);
    }
    return text;
  }

  /// The rows in their order.
  std::vector<FlowRow> Rows() {
    FrozenExpert frozen = analysis.Freeze();
    std::vector<FlowRow> rows;
    for (std::uint32_t row : frozen.FlowOrder()) rows.push_back(frozen.flows.rows[row]);
    return rows;
  }

  std::array<std::uint16_t, 2> applications{};  ///< those of the packets to come

 private:
  FlowTable flows_;
  std::map<std::uint32_t, std::uint64_t> serials_;
};

}  // namespace orvo::test
