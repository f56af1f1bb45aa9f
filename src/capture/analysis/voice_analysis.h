#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "capture/analysis/call_table.h"
#include "capture/analysis/media_stream.h"
#include "capture/tables/counters.h"
#include "capture/tables/paged_vector.h"

namespace orvo {

struct VoiceLimits {
  std::size_t calls = 100'000;    ///< about 1 KB each, with what they say of their media
  std::size_t streams = 100'000;  ///< about 500 bytes each
};

/// Calls and streams of one moment. Any number of threads read it without a lock.
struct FrozenVoice {
  FrozenTable<MediaStream> streams;
  FrozenTable<Call> calls;
  VoiceCounts counts;
};

/// Follows calls (SIP) and their streams (RTP, RTCP), and finds streams that no signalling has announced.
///
/// A stream that is announced counts from its first packet on. Any other has to prove itself: kProof packets of one
/// payload type with advancing sequence numbers and timestamps; then those count, too. Candidates stand in a table of
/// fixed size, where a newcomer takes the place of the one that was silent for longest.
///
/// Belongs to one thread; others may call it while that thread is stopped.
class VoiceAnalysis {
 public:
  static constexpr int kProof = 5;

  explicit VoiceAnalysis(const VoiceLimits& limits);

  /// Whether a packet may be for the analysis: a few compares. All others need not be shown to Inspect.
  static bool Concerns(const PacketFacts& facts) {
    return facts.payload.size() >= 8 && facts.has_ports &&
           (MayBeRtp(facts.payload) || MayBeRtcp(facts.payload) || MayBeSip(facts.payload));
  }

  /// Takes a packet, in the order of the capture.
  void Inspect(const Packet& packet, const PacketFacts& facts);

  FrozenVoice Freeze();
  VoiceCounts counts() const;
  void Reset();

 private:
  /// A stream that has still to prove itself, or that the full table has not taken.
  struct Candidate {
    MediaStream stream;
    std::uint32_t last_timestamp = 0;
    std::uint16_t last_sequence = 0;
    int proof = 0;  ///< packets that followed each other as they should; 0 for a place that is free
  };

  void TakeSip(Bytes payload, std::uint64_t time);
  void TakeRtp(const RtpArrival& arrival, std::uint64_t flow);
  void TakeRtcp(const RtcpReport& report, const IpEnds& ends, std::uint64_t time);
  void TakeBlock(const RtcpReportBlock& block, const RtcpReport& report, const IpEnds& ends, std::uint64_t time);
  bool Describe(MediaStream* stream) const;
  bool IsAnnounced(const RtpArrival& arrival) const;
  void Prove(const RtpArrival& arrival, std::uint64_t flow);
  Candidate& PlaceFor(const StreamKey& key);
  bool Append(const MediaStream& stream);
  std::uint32_t RowOf(const StreamKey& key) const;
  MediaStream* Reported(IpEnds ends, std::uint32_t ssrc);

  VoiceLimits limits_;
  KeyedHash hash_;
  CallTable calls_;
  PagedVector<MediaStream> streams_;
  RowIndex stream_index_;
  std::vector<Candidate> candidates_;  // made with the first of them
  VoiceCounts counts_;
};

}  // namespace orvo
