// Calls and their streams: SIP and SDP, RTP and RTCP.

#include "capture/analysis/voice_analysis.h"
#include "capture/context/media_table.h"
#include "capture/decode/protocol_registry.h"
#include "fuzz/support/packet_input.h"

namespace orvo::fuzz {
namespace {

constexpr unsigned kLongestStep = 36;  // a minute
constexpr VoiceLimits kLimits{3, 5};

/// The input format of packet_input.h: a link type, a step of time, bytes cut off, a length, the bytes.
std::string AsInput(const Packet& packet) {
  constexpr char kMillisecond = 20;
  const auto place = std::ranges::find(LinkTypes(), packet.link_type) - LinkTypes().begin();
  std::string input{static_cast<char>(place), kMillisecond, '\0'};
  input += static_cast<char>(packet.bytes.size() & 0xFF);
  input += static_cast<char>(packet.bytes.size() >> 8);
  return input.append(AsText(packet.bytes));
}

}  // namespace

void TestOneInput(Input input) {
  VoiceAnalysis analysis(kLimits);
  Packet packet;
  packet.time = kFirstTime;
  PacketFacts facts;
  while (TakePacket(&input, &packet, kLongestStep)) {
    DecodePacket(packet, &facts);
    analysis.Inspect(packet, facts);
  }
  const FrozenVoice voice = analysis.Freeze();
  Require(voice.calls.size() <= kLimits.calls && voice.streams.size() <= kLimits.streams, "limits hold");
  std::uint64_t packets = 0;
  for (std::size_t row = 0; row < voice.streams.size(); ++row) {
    const MediaStream& stream = voice.streams[row];
    const LossCounts losses = stream.sequence.losses();
    packets += stream.packets;
    Require(losses.lost < losses.expected, "something of every stream has come");
    Require(losses.expected - losses.lost <= stream.packets, "no more has come than there was");
    Require(losses.gaps <= losses.lost && losses.longest_gap <= losses.lost, "gaps are made of losses");
  }
  Require(packets == voice.counts.rtp_packets, "every packet is one of a stream");
  ComPtr<ITable> table = MakeMediaTable(voice);
  std::uint32_t columns = 0;
  table->GetColumnCount(&columns);
  for (std::uint32_t row = 0; row < voice.streams.size(); ++row) {
    for (std::uint32_t column = 0; column < columns; ++column) {
      std::u16string text;
      Require(table->GetCell(row, column, &text) == S_OK, "every cell has a text");
      for (char16_t unit : text) Require(unit >= 0x20 && unit != 0x7F, "no control character reaches a cell");
    }
  }
}

void MakeSeeds(const SeedSink& add) {
  constexpr int kPackets = 8;
  constexpr int kMostSeeds = 12;
  for (const std::string& path : Samples()) {
    SourceError error;
    std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
    Require(source != nullptr, "samples can be read");
    std::string seed;
    int taken = 0;
    PacketFacts facts;
    for (Packet packet; taken < kPackets * kMostSeeds && source->Next(&packet);) {
      DecodePacket(packet, &facts);
      if (!VoiceAnalysis::Concerns(facts)) continue;
      seed += AsInput(packet);
      if (++taken % kPackets == 0) add(std::exchange(seed, {}));
    }
    if (!seed.empty()) add(seed);
  }
}

}  // namespace orvo::fuzz
