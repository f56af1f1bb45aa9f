#include "capture/analysis/voice_analysis.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <tuple>

#include "capture/context/media_table.h"
#include "tests/capture/engine_fixture.h"
#include "tests/capture/voice_packets.h"

namespace orvo::test {
namespace {

const std::string kInvite = "INVITE sip:ben@example.com SIP/2.0";
const std::string kRinging = "SIP/2.0 180 Ringing";
const std::string kOk = "SIP/2.0 200 OK";

/// A cell of the media table by its column's identifier.
std::string Cell(const FrozenVoice& voice, std::uint32_t row, const std::string& identifier) {
  ComPtr<ITable> table = MakeMediaTable(voice);
  for (std::uint32_t i = 0, columns = Ask(table)(&ITable::GetColumnCount); i < columns; ++i) {
    if (Ascii(Ask(table)(&ITable::GetColumnIdentifier, i)) == identifier) return CellOf(table, row, i);
  }
  return "no such column";
}

TEST(VoiceAnalysis, FollowsACallWithBothItsStreams) {
  VoiceBench bench;
  bench.SendSip(Sip(kInvite, "INVITE", Sdp(1, 4000)), 0);
  bench.SendSip(Sip("SIP/2.0 100 Trying", "INVITE"), 10);
  bench.SendSip(Sip(kRinging, "INVITE"), 100);
  bench.SendSip(Sip(kOk, "INVITE", Sdp(2, 6000)), 1500);
  bench.SendSip(Sip("ACK sip:ben@example.com SIP/2.0", "ACK"), 1510);
  bench.SendVoice({.sequence = 65530, .ssrc = 0xAA}, 50, 1600);
  for (unsigned i = 0; i < 50; ++i) {
    bench.Send(2, 6000, 1, 4000, Rtp{.sequence = i + 1, .timestamp = i * 160, .ssrc = 0xBB}.Bytes(), 1605 + i * 20);
  }
  bench.SendSip(Sip("BYE sip:ben@example.com SIP/2.0", "BYE"), 4000);
  bench.SendSip(Sip(kOk, "BYE"), 4010);

  FrozenVoice voice = bench.Freeze();
  EXPECT_EQ(voice.counts.calls, 1U);
  EXPECT_EQ(voice.counts.sip_requests, 3U);
  EXPECT_EQ(voice.counts.sip_responses, 4U);
  EXPECT_EQ(voice.counts.rtp_packets, 100U);
  ASSERT_EQ(voice.streams.size(), 2U);
  const std::pair<const char*, const char*> first[] = {
      {"CALL_NUMBER", "1"},
      {"CALL_ID", "call-1@host"},
      {"CALL_STATE", "Completed"},
      {"CALL_FROM", "ann@example.com"},
      {"CALL_TO", "ben@example.com"},
      {"CALL_STATUS", "200"},
      {"CALL_SETUP_TIME", "1500.000"},
      {"CALL_DURATION", "0:00:02.500000"},
      {"EXPECTED_PACKETS", "50"},
      {"LOST_PACKETS", "0"},
      {"PAYLOAD_BYTES", "8000"},
      {"PACKET_INTERVAL", "20.0"},
      {"MEDIA_TYPE", "Audio"},
      {"FIRST_SEQUENCE", "65530"},
      {"LAST_SEQUENCE", "43"},
      {"BIT_RATE", "65306"},
      {"SIGNALLED", "Yes"},
  };
  for (const auto& [identifier, text] : first) EXPECT_EQ(Cell(voice, 0, identifier), text) << identifier;
  EXPECT_EQ(Cell(voice, 1, "SOURCE_ADDRESS"), "10.0.0.2");
  EXPECT_EQ(Cell(voice, 1, "CALL_NUMBER"), "1");
}

TEST(VoiceAnalysis, KnowsHowCallsEnd) {
  struct Case {
    const char* state;
    std::vector<std::pair<std::string, std::string>> messages;  ///< first line, method
  };
  const std::string again = kInvite;
  const Case cases[] = {
      {"Calling", {{"SIP/2.0 100 Trying", "INVITE"}}},
      {"Ringing", {{kRinging, "INVITE"}}},
      {"In call", {{kRinging, "INVITE"}, {kOk, "INVITE"}}},
      {"In call", {{kOk, "INVITE"}, {"SIP/2.0 488 Not Acceptable Here", "INVITE"}}},
      {"Completed", {{kOk, "INVITE"}, {"BYE sip:b@h SIP/2.0", "BYE"}}},
      {"Ringing", {{kRinging, "INVITE"}, {"BYE sip:b@h SIP/2.0", "BYE"}}},
      {"Cancelled",
       {{kRinging, "INVITE"},
        {"CANCEL sip:b@h SIP/2.0", "CANCEL"},
        {kOk, "CANCEL"},
        {"SIP/2.0 487 Request Terminated", "INVITE"}}},
      {"In call", {{"CANCEL sip:b@h SIP/2.0", "CANCEL"}, {kOk, "INVITE"}}},
      {"Busy", {{"SIP/2.0 486 Busy Here", "INVITE"}, {kRinging, "INVITE"}}},
      {"Rejected", {{"SIP/2.0 603 Decline", "INVITE"}}},
      {"Unanswered", {{kRinging, "INVITE"}, {"SIP/2.0 480 Temporarily Unavailable", "INVITE"}}},
      {"Redirected", {{"SIP/2.0 302 Moved", "INVITE"}}},
      {"Failed", {{"SIP/2.0 500 Oops", "INVITE"}}},
      {"Challenged", {{"SIP/2.0 407 Proxy Authentication Required", "INVITE"}}},
      {"Ringing", {{"SIP/2.0 401 Unauthorized", "INVITE"}, {again, "INVITE"}, {kRinging, "INVITE"}}},
  };
  for (const Case& test : cases) {
    VoiceBench bench;
    bench.SendSip(Sip(kInvite, "INVITE", Sdp(1, 4000)), 0);
    std::uint64_t time = 0;
    for (const auto& [first_line, method] : test.messages) bench.SendSip(Sip(first_line, method), time += 100);
    bench.Send(2, 6000, 1, 4000, Rtp{}.Bytes(), time + 100);
    EXPECT_EQ(Cell(bench.Freeze(), 0, "CALL_STATE"), test.state) << test.messages.back().first;
  }
}

TEST(VoiceAnalysis, SignallingNamesCodecs) {
  // Formats and attributes that are signalled, the payload type, and what comes of it: codec, clock rate, whether
  // rated.
  using Case = std::tuple<const char*, const char*, std::uint8_t, const char*, const char*, bool>;
  const Case cases[] = {
      {"0", "", 0, "G.711 \xB5-law", "8000", true},
      {"8", "", 8, "G.711 A-law", "8000", true},
      {"18", "a=rtpmap:18 G729/8000\r\n", 18, "G.729", "8000", true},
      {"97", "a=rtpmap:97 iLBC/8000\r\n", 97, "iLBC", "8000", false},
      {"111", "a=rtpmap:111 opus/48000/2\r\n", 111, "Opus", "48000", false},
      {"112", "a=rtpmap:112 X-Strange/22050\r\n", 112, "X-Strange", "22050", false},
      {"99", "", 99, "", "", false},
  };
  for (const auto& [formats, attributes, type, codec, clock, rated] : cases) {
    VoiceBench bench;
    bench.SendSip(Sip(kInvite, "INVITE", Sdp(2, 6000, formats, attributes)), 0);
    bench.Send(1, 4000, 2, 6000, Rtp{.type = type}.Bytes(), 100);
    FrozenVoice voice = bench.Freeze();
    ASSERT_EQ(voice.streams.size(), 1U);
    EXPECT_EQ(Cell(voice, 0, "CODEC"), codec);
    EXPECT_EQ(Cell(voice, 0, "CLOCK_RATE"), clock);
    EXPECT_EQ(Cell(voice, 0, "MOS_CQ").empty(), !rated) << codec;
  }
}

TEST(VoiceAnalysis, TakesUnannouncedStreamsForOneOnlyWhenTheyProveIt) {
  struct Case {
    const char* name;
    std::vector<Rtp> packets;
    std::size_t streams;
  };
  auto run = [](int count, unsigned sequence_step, std::uint32_t tick_step, std::uint32_t ssrc_step = 0) {
    std::vector<Rtp> packets;
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(count); ++i) {
      packets.push_back({.sequence = 100 + i * sequence_step, .timestamp = i * tick_step, .ssrc = 5 + i * ssrc_step});
    }
    return packets;
  };
  auto changing = run(20, 1, 160);
  for (std::size_t i = 0; i < changing.size(); ++i) changing[i].type = i % 2 == 0 ? 0 : 8;
  auto unassigned = run(20, 1, 160);
  for (Rtp& packet : unassigned) packet.type = 40;
  auto disordered = run(6, 1, 160);
  std::swap(disordered[2], disordered[3]);
  const Case cases[] = {
      {"as many as it takes", run(VoiceAnalysis::kProof, 1, 160), 1},
      {"one too few", run(VoiceAnalysis::kProof - 1, 1, 160), 0},
      {"with losses", run(6, 3, 480), 1},
      {"two out of order", disordered, 1},
      {"sequence stands", run(20, 0, 160), 0},
      {"sequence jumps", run(20, 500, 160), 0},
      {"timestamp stands", run(20, 1, 0), 0},
      {"timestamp jumps", run(20, 1, 0x10000000), 0},
      {"source changes", run(20, 1, 160, 1), 0},
      {"payload type changes", changing, 0},
      {"payload type of no meaning", unassigned, 0},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    VoiceBench bench;
    std::uint64_t time = 0;
    for (const Rtp& packet : test.packets) bench.Send(1, 4000, 2, 6000, packet.Bytes(), time += 20);
    FrozenVoice voice = bench.Freeze();
    EXPECT_EQ(voice.streams.size(), test.streams);
    // Those before the proof count, too.
    EXPECT_EQ(voice.counts.rtp_packets, test.streams == 0 ? 0 : test.packets.size());
  }
  std::mt19937 random(11);
  VoiceBench bench;
  for (std::uint64_t i = 0; i < 10'000; ++i) {
    Buffer noise(40);
    for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random());
    noise[0] = 0x80;
    bench.Send(1, 4000, 2, 6000, noise, i);
  }
  EXPECT_EQ(bench.Freeze().streams.size(), 0U);
}

TEST(VoiceAnalysis, DoesNotTakeSilenceForLongPackets) {
  VoiceBench bench;
  bench.SendSip(Sip(kInvite, "INVITE", Sdp(2, 6000, "0 13")), 0);
  for (unsigned i = 0; i < 20; ++i) {
    // Half a minute of silence after every packet but the first few, announced by comfort noise.
    const unsigned spoken = i < 5 ? i * 160 : i * 240'000;
    bench.Send(1, 4000, 2, 6000, Rtp{.sequence = 2 * i, .timestamp = spoken, .type = 0}.Bytes(), spoken / 8);
    bench.Send(1, 4000, 2, 6000, Rtp{.sequence = 2 * i + 1, .timestamp = spoken + 160, .type = 13}.Bytes(),
               spoken / 8 + 20);
  }
  EXPECT_EQ(Cell(bench.Freeze(), 0, "PACKET_INTERVAL"), "") << "no two packets of voice in a row";
  for (unsigned i = 0; i < 3; ++i) {
    const unsigned spoken = 6'000'000 + i * 160;
    bench.Send(1, 4000, 2, 6000, Rtp{.sequence = 40 + i, .timestamp = spoken, .type = 0}.Bytes(), spoken / 8);
  }
  const FrozenVoice voice = bench.Freeze();
  EXPECT_EQ(Cell(voice, 0, "PACKET_INTERVAL"), "20.0");
  EXPECT_EQ(Cell(voice, 0, "R_CONVERSATIONAL"), "91.3");
}

TEST(VoiceAnalysis, CountsWhatTheNetworkDoesToAStream) {
  VoiceBench bench;
  bench.SendSip(Sip(kInvite, "INVITE", Sdp(2, 6000, "0 8 101", "a=rtpmap:101 telephone-event/8000\r\n")), 0);
  auto send = [&](unsigned sequence, std::uint64_t time, std::uint8_t type = 0) {
    bench.Send(1, 4000, 2, 6000, Rtp{.sequence = sequence, .timestamp = sequence * 160, .type = type}.Bytes(), time);
  };
  send(10, 200);
  send(11, 220);
  send(13, 260);
  send(12, 261);       // late
  send(12, 262);       // twice
  send(17, 340);       // three lost
  send(18, 360, 8);    // another codec
  send(19, 380, 101);  // a key, which is no change
  send(20, 400, 8);
  FrozenVoice voice = bench.Freeze();
  const std::pair<const char*, const char*> cells[] = {
      {"PACKETS", "9"},        {"EXPECTED_PACKETS", "11"},    {"LOST_PACKETS", "3"},    {"PACKET_LOSS", "27.27"},
      {"LOSS_GAPS", "1"},      {"LONGEST_LOSS_GAP", "3"},     {"LATE_PACKETS", "1"},    {"DUPLICATE_PACKETS", "1"},
      {"EVENTS", "4"},         {"PAYLOAD_TYPE_CHANGES", "1"}, {"CODEC", "G.711 A-law"}, {"PAYLOAD_TYPE", "8"},
      {"BURST_RATIO", "2.18"}, {"LARGEST_DELTA", "78.000"},   {"LEAST_DELTA", "1.000"},
  };
  for (const auto& [identifier, text] : cells) EXPECT_EQ(Cell(voice, 0, identifier), text) << identifier;
}

TEST(VoiceAnalysis, MeasuresDelayByReports) {
  VoiceBench bench;
  bench.SendVoice({.ssrc = 0xAA}, 10);
  for (unsigned i = 0; i < 10; ++i) {
    bench.Send(2, 6000, 1, 4000, Rtp{.sequence = i, .timestamp = i * 160, .ssrc = 0xBB}.Bytes(), i * 20);
  }
  EXPECT_EQ(Cell(bench.Freeze(), 0, "ONE_WAY_DELAY"), "");
  auto report = [](std::uint32_t sender, std::uint32_t mark, std::uint32_t about, std::uint32_t last,
                   std::uint32_t held) {
    return Buffer{0x81, 200} + Be16(12) + Rtp::Be32(sender) + Be16(0) + Rtp::Be32(mark) + Be16(0) + Zeros(12) +
           Rtp::Be32(about) + Buffer{0, 0, 0, 3} + Zeros(4) + Rtp::Be32(16) + Rtp::Be32(last) + Rtp::Be32(held);
  };
  bench.Send(1, 4001, 2, 6001, report(0xAA, 0x1000, 0xBB, 0, 0), 1000);
  // 0.5 s later, held for 0.4375 s: 62.5 ms to the receiver and back. It refers to the other's own report, too.
  bench.Send(2, 6001, 1, 4001, report(0xBB, 0x2000, 0xAA, 0x1000, 0x7000), 1500);
  // Held for longer than it can have been, and about a report that nobody has seen: neither tells anything.
  bench.Send(1, 4001, 2, 6001, report(0xAA, 0x3000, 0xBB, 0x2000, 0x70000), 1600);
  bench.Send(1, 4001, 2, 6001, report(0xAA, 0x3000, 0xBB, 0x7777, 0), 1700);
  FrozenVoice voice = bench.Freeze();
  EXPECT_EQ(Cell(voice, 0, "RECEIVER_ROUND_TRIP"), "62.500");
  EXPECT_EQ(Cell(voice, 0, "SENDER_ROUND_TRIP"), "");
  EXPECT_EQ(Cell(voice, 0, "ONE_WAY_DELAY"), "31.250");
  EXPECT_EQ(Cell(voice, 1, "ONE_WAY_DELAY"), "31.250");
  EXPECT_EQ(Cell(voice, 0, "REPORTED_LOST"), "3");
  EXPECT_EQ(Cell(voice, 0, "REPORTED_JITTER"), "2.000");
  EXPECT_EQ(voice.counts.rtcp_packets, 4U);
  bench.Send(1, 4001, 2, 6001, report(0x99, 0x3000, 0x98, 0x7777, 0), 1800);
  EXPECT_EQ(bench.Freeze().counts.rtcp_packets, 4U) << "about nobody's stream";
}

TEST(VoiceAnalysis, LimitsHoldAndAreCounted) {
  VoiceBench bench({.calls = 3, .streams = 4});
  for (int i = 0; i < 10; ++i) {
    bench.SendSip(Sip(kInvite, "INVITE", Sdp(2, 6000 + 2 * i), "call-" + std::to_string(i)), 0);
  }
  for (std::uint32_t i = 0; i < 10; ++i) bench.SendVoice({.ssrc = i}, 20, i * 1000, 4000 + 2 * i, 6000 + 2 * i);
  FrozenVoice voice = bench.Freeze();
  EXPECT_EQ(voice.calls.size(), 3U);
  EXPECT_EQ(voice.streams.size(), 4U);
  EXPECT_EQ(voice.counts.unlisted_sip_messages, 7U);
  EXPECT_EQ(voice.counts.rtp_packets, 4 * 20U);
  EXPECT_EQ(voice.counts.unlisted_rtp_packets, 6 * 20U);
}

TEST(VoiceAnalysis, ThousandsOfSources) {
  VoiceBench bench;
  for (std::uint32_t i = 0; i < 2000; ++i) bench.SendVoice({.ssrc = i * 7919}, 6, i * 200);
  for (std::uint32_t i = 0; i < 10'000; ++i) bench.Send(1, 4000, 2, 6000, Rtp{.ssrc = ~i}.Bytes(), 700'000 + i);
  FrozenVoice voice = bench.Freeze();
  EXPECT_EQ(voice.streams.size(), 2000U);
  EXPECT_EQ(voice.counts.rtp_packets, 12'000U);
  std::set<std::string> sources;
  for (std::uint32_t row = 0; row < 2000; row += 100) sources.insert(Cell(voice, row, "SSRC"));
  EXPECT_EQ(sources.size(), 20U);
}

TEST(VoiceAnalysis, FrozenStaysAndResetBeginsAnew) {
  VoiceBench bench;
  bench.SendVoice({}, 10);
  FrozenVoice before = bench.Freeze();
  bench.SendVoice({.sequence = 11, .timestamp = 1600}, 10, 200);
  EXPECT_EQ(before.streams[0].packets, 10U);
  EXPECT_EQ(bench.Freeze().streams[0].packets, 20U);
  bench.analysis().Reset();
  EXPECT_EQ(bench.Freeze().streams.size(), 0U);
  EXPECT_EQ(bench.Freeze().counts.rtp_packets, 0U);
  EXPECT_EQ(before.streams.size(), 1U);
}

TEST(VoiceAnalysis, ReadsMessagesThatShareASegment) {
  VoiceBench bench;
  std::string both = Sip(kInvite, "INVITE", Sdp(1, 4000)) + Sip(kRinging, "INVITE") + "garbage";
  bench.SendFrame(Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 6, Tcp(5060, 5060, 0x18, TextBytes(both)))), 0);
  FrozenVoice voice = bench.Freeze();
  EXPECT_EQ(voice.counts.sip_requests, 1U);
  EXPECT_EQ(voice.counts.sip_responses, 1U);
  ASSERT_EQ(voice.calls.size(), 1U);
  EXPECT_EQ(voice.calls[0].state, CallState::kRinging);
}

TEST(VoiceAnalysis, AgreesWithAnotherAnalyser) {
  // The streams of recorded calls, by the RTP analysis of another program.
  constexpr const char* kColumns[] = {"SOURCE_ADDRESS",   "SOURCE_PORT",    "DESTINATION_ADDRESS",
                                      "DESTINATION_PORT", "PACKETS",        "LOST_PACKETS",
                                      "MEAN_JITTER",      "LARGEST_JITTER", "LARGEST_DELTA"};
  const std::pair<const char*, std::vector<std::string>> samples[] = {
      {"voice.pcap",
       {"192.0.2.62 4008 192.0.2.61 4002 351 0 1.393 2.164 26.756",
        "192.0.2.61 4002 192.0.2.62 4008 350 0 1.248 2.205 25.379"}},
      {"voice-lossy.pcap",
       {"192.0.2.71 4004 192.0.2.75 7000 300 0 1.339 1.817 24.461",
        "192.0.2.75 7000 192.0.2.71 4004 272 28 22.287 32.274 83.683",
        "192.0.2.75 33544 192.0.2.72 6000 283 17 16.783 24.216 66.911",
        "192.0.2.72 6000 192.0.2.75 33544 283 17 16.784 24.200 67.032"}},
  };
  for (const auto& [name, streams] : samples) {
    SCOPED_TRACE(name);
    VoiceBench bench;
    bench.SendFile(std::string(ORVO_SOURCE_DIR "/samples/") + name);
    FrozenVoice voice = bench.Freeze();
    EXPECT_EQ(voice.counts.sip_requests + voice.counts.sip_responses, 6U);
    EXPECT_EQ(voice.calls.size(), 1U);
    std::vector<std::string> found;
    for (std::uint32_t row = 0; row < voice.streams.size(); ++row) {
      std::string cells;
      for (const char* column : kColumns) cells += (cells.empty() ? "" : " ") + Cell(voice, row, column);
      found.push_back(cells);
    }
    EXPECT_EQ(found, streams);
  }
}

TEST(MediaTable, NamesEachColumnOnce) {
  ComPtr<ITable> table = MakeMediaTable({});
  const std::uint32_t count = Ask(table)(&ITable::GetColumnCount);
  ASSERT_EQ(count, 71U);
  std::set<std::u16string> identifiers;
  std::set<std::u16string> titles;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::u16string identifier = Ask(table)(&ITable::GetColumnIdentifier, i);
    EXPECT_TRUE(identifiers.insert(identifier).second) << Ascii(identifier);
    EXPECT_EQ(identifier.find_first_not_of(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789"), std::u16string::npos);
    EXPECT_TRUE(identifier[0] >= u'A' && identifier[0] <= u'Z') << Ascii(identifier);
    EXPECT_TRUE(titles.insert(Ask(table)(&ITable::GetColumnTitle, i)).second) << Ascii(identifier);
  }
  std::u16string text;
  EXPECT_EQ(table->GetColumnTitle(count, &text), E_INVALIDARG);
  EXPECT_EQ(table->GetColumnIdentifier(count, &text), E_INVALIDARG);
  EXPECT_EQ(table->GetCell(0, 0, &text), E_INVALIDARG);
  EXPECT_EQ(table->GetCell(0, 0, nullptr), E_POINTER);
  EXPECT_EQ(table->GetRowCount(nullptr), E_POINTER);
}

}  // namespace
}  // namespace orvo::test
