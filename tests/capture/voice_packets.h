#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "capture/analysis/voice_analysis.h"
#include "capture/decode/protocol_registry.h"
#include "capture/source/capture_file.h"
#include "tests/capture/frames.h"

namespace orvo::test {

/// A packet of RTP, field by field.
struct Rtp {
  unsigned sequence = 1;
  std::uint32_t timestamp = 0;
  std::uint32_t ssrc = 0x11223344;
  std::uint8_t type = 0;
  bool marker = false;
  std::size_t length = 160;

  Buffer Bytes() const {
    return Buffer{0x80, static_cast<std::uint8_t>(type | (marker ? 0x80 : 0))} + Be16(sequence & 0xFFFF) +
           Be32(timestamp) + Be32(ssrc) + Zeros(length);
  }

  static Buffer Be32(std::uint32_t value) { return Be16(value >> 16) + Be16(value & 0xFFFF); }
};

inline Buffer TextBytes(std::string_view text) {
  return {text.begin(), text.end()};
}

/// A session description that wants media at 10.0.0.`host`.
inline std::string Sdp(int host, int port, const std::string& formats = "0", const std::string& attributes = "") {
  return "v=0\r\no=- 1 1 IN IP4 10.0.0.9\r\ns=call\r\nc=IN IP4 10.0.0." + std::to_string(host) +
         "\r\nt=0 0\r\nm=audio " + std::to_string(port) + " RTP/AVP " + formats + "\r\n" + attributes;
}

/// A message of SIP; `first` is its first line, `method` that of its CSeq.
inline std::string Sip(const std::string& first, const std::string& method, const std::string& body = "",
                       const std::string& call_id = "call-1@host") {
  return first + "\r\nVia: SIP/2.0/UDP 10.0.0.1:5060;branch=z9hG4bK1\r\nFrom: \"Ann\" <sip:ann@example.com>;tag=a\r\n" +
         "To: <sip:ben@example.com>\r\nCall-ID: " + call_id + "\r\nCSeq: 1 " + method + "\r\n" +
         (body.empty() ? "" : "Content-Type: application/sdp\r\n") + "Content-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + body;
}

/// An analysis with packets of hosts 10.0.0.x.
class VoiceBench {
 public:
  explicit VoiceBench(const VoiceLimits& limits = {}) : analysis_(limits) {}

  void Send(int from, unsigned from_port, int to, unsigned to_port, const Buffer& payload, std::uint64_t milliseconds) {
    SendFrame(Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Host(from), Host(to), 17, Udp(from_port, to_port, payload))),
              milliseconds);
  }
  void SendFrame(const Buffer& frame, std::uint64_t milliseconds) {
    Packet packet = MakePacket(frame, kNewYear + milliseconds * 1'000'000);
    PacketFacts facts = Decoded(packet);
    analysis_.Inspect(packet, facts);
  }
  void SendFile(const std::string& path) {
    SourceError error;
    std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
    if (!source) return;
    PacketFacts facts;
    for (Packet packet; source->Next(&packet);) {
      DecodePacket(packet, &facts);
      analysis_.Inspect(packet, facts);
    }
  }
  /// From host 1 to host 2, by the ports of signalling.
  void SendSip(const std::string& message, std::uint64_t milliseconds) {
    Send(1, 5060, 2, 5060, TextBytes(message), milliseconds);
  }
  /// `count` packets every 20 ms, as a telephone sends them, from host 1 to host 2.
  void SendVoice(Rtp rtp, int count, std::uint64_t milliseconds = 0, unsigned from_port = 4000,
                 unsigned to_port = 6000) {
    for (int i = 0; i < count; ++i) {
      Send(1, from_port, 2, to_port, rtp.Bytes(), milliseconds + static_cast<std::uint64_t>(i) * 20);
      ++rtp.sequence;
      rtp.timestamp += 160;
    }
  }

  FrozenVoice Freeze() { return analysis_.Freeze(); }
  VoiceAnalysis& analysis() { return analysis_; }

 private:
  static Buffer Host(int number) { return Ip4(static_cast<std::uint8_t>(number)); }

  VoiceAnalysis analysis_;
};

}  // namespace orvo::test
