#include <gtest/gtest.h>

#include "capture/analysis/expert/first_bytes.h"
#include "tests/capture/expert_fixture.h"

namespace orvo::test {
namespace {

using Ports = std::array<std::uint16_t, 2>;

std::uint16_t Named(std::string_view name) {
  return ProtocolRegistry::Get().FindName(name);
}

Buffer Dns(unsigned id, unsigned flags) {
  return Be16(id) + Be16(flags) + Zeros(8);
}

TEST(ExpertFlow, FindsTheClient) {
  struct Case {
    std::uint8_t protocol;
    Buffer first;
    Ports expected;  ///< the client's port first
  };
  auto tcp = [](unsigned from, unsigned to, std::uint8_t flags) { return TcpHeader(from, to, 1, 1, flags); };
  const Case cases[] = {
      {6, tcp(80, 443, TcpSegment::kSyn), {80, 443}},  // who opens, whatever the ports
      {6, tcp(6000, 40000, TcpSegment::kSyn | TcpSegment::kAck), {40000, 6000}},
      {6, tcp(40000, 443, TcpSegment::kAck), {40000, 443}},
      {6, tcp(443, 40000, TcpSegment::kAck), {40000, 443}},
      {6, tcp(3306, 40000, TcpSegment::kAck), {40000, 3306}},  // known, though not low
      {17, Udp(53, 900), {900, 53}},                           // of two low ones the lower
      {17, Udp(5353, 5353), {5353, 5353}},
      {17, Udp(50000, 40000), {50000, 40000}},  // who speaks first
      {17, Udp(40000, 50000), {40000, 50000}},
  };
  for (const Case& c : cases) {
    for (bool forth : {true, false}) {
      ExpertFixture expert;
      expert.FeedIp(forth, c.protocol, c.first);
      FlowRow row = expert.Rows().at(0);
      EXPECT_EQ(row.ports, c.expected);
      bool sent_by_client = row.packets[kClient] == 1;
      EXPECT_EQ(row.addresses[sent_by_client ? kClient : kServer][3], forth ? 1 : 2);
    }
  }
}

TEST(ExpertFlow, FollowsQueriesToNameServers) {
  struct Message {
    bool query;
    unsigned id;
    double milliseconds;
    unsigned rcode = 0;
  };
  struct Case {
    std::vector<Message> messages;
    const char* events;
    std::uint64_t samples;
    std::uint32_t worst;
  };
  const Case cases[] = {
      {{{true, 1, 0}, {true, 2, 1}, {false, 2, 5}, {false, 1, 11}}, "", 2, 11'000},
      {{{true, 1, 0}, {false, 1, 501}}, "DNS_SLOW_ANSWER", 1, 501'000},
      {{{true, 1, 0}, {true, 1, 400}, {false, 1, 410}}, "DNS_REPEATED_QUERY", 1, 410'000},
      {{{true, 1, 0}, {false, 1, 5, 3}}, "DNS_NAME_NOT_FOUND", 1, 5'000},
      {{{true, 1, 0}, {false, 1, 5, 2}, {true, 2, 6}, {false, 2, 7, 5}}, "DNS_ERROR*2", 2, 5'000},
      {{{false, 9, 0}, {true, 1, 1}, {false, 8, 2}}, "", 0, 0},  // answers to nothing
      // More queries at once than are remembered: the oldest is forgotten.
      {{{true, 1, 0}, {true, 2, 1}, {true, 3, 2}, {true, 4, 3}, {true, 5, 4}, {false, 1, 5}, {false, 5, 6}},
       "",
       1,
       2'000},
  };
  for (const Case& c : cases) {
    ExpertFixture expert;
    for (const Message& message : c.messages) {
      Buffer dns = Dns(message.id, message.query ? 0x0100 : 0x8180 + message.rcode);
      expert.FeedIp(message.query, 17, message.query ? Udp(40000, 53, dns) : Udp(53, 40000, dns), message.milliseconds);
    }
    FlowRow row = expert.Rows().at(0);
    EXPECT_EQ(expert.Events(), c.events);
    EXPECT_EQ(row.responses.count(), c.samples);
    EXPECT_EQ(row.responses.worst, c.worst);
  }
}

/// A request of one byte and the beginnings of payloads that follow, by turns from the server and the client.
std::string EventsOfTalk(unsigned port, const std::vector<std::pair<Buffer, double>>& payloads) {
  ExpertFixture expert;
  std::uint32_t sequences[2] = {1, 1};
  bool client = true;
  for (const auto& [payload, milliseconds] : payloads) {
    std::uint32_t sequence = sequences[client ? 0 : 1];
    std::uint32_t acknowledged = sequences[client ? 1 : 0];
    Buffer header = client ? TcpHeader(40000, port, sequence, acknowledged, TcpSegment::kAck)
                           : TcpHeader(port, 40000, sequence, acknowledged, TcpSegment::kAck);
    expert.FeedIp(client, 6, header + payload, milliseconds);
    sequences[client ? 0 : 1] += static_cast<std::uint32_t>(payload.size());
    client = !client;
  }
  return expert.Events();
}

TEST(ExpertFlow, ReadsTheFirstBytesOfAnswers) {
  Buffer get = Text("GET / HTTP/1.1\r\n");
  EXPECT_EQ(EventsOfTalk(80, {{get, 0}, {Text("HTTP/1.1 200 OK\r\n"), 10}}), "");
  EXPECT_EQ(EventsOfTalk(80, {{get, 0}, {Text("HTTP/1.1 404 Not Found\r\n"), 10}}), "HTTP_CLIENT_ERROR");
  EXPECT_EQ(EventsOfTalk(80, {{get, 0}, {Text("HTTP/1.0 503 Busy"), 10}, {get, 20}, {Text("HTTP/1.1 500 X"), 30}}),
            "HTTP_SERVER_ERROR*2");
  EXPECT_EQ(EventsOfTalk(80, {{get, 0}, {Text("HTTP/1.1 200 OK\r\n"), 400}, {get, 410}, {Text("x"), 900}}), "");
  EXPECT_EQ(EventsOfTalk(80, {{Buffer{1}, 0}, {Text("HTTP/1.1 404 Not Found\r\n"), 10}}), "HTTP_CLIENT_ERROR");
  EXPECT_EQ(EventsOfTalk(5000, {{get, 0}, {Text("HTTP/1.1 404 Not Found\r\n"), 10}}), "");  // not known to be HTTP

  Buffer hello{22, 3, 1, 0, 100, 1, 0};
  Buffer server_hello{22, 3, 3, 0, 100, 2, 0};
  Buffer data{23, 3, 3, 0, 100, 9};
  Buffer alert{21, 3, 3, 0, 2, 2, 40};
  EXPECT_EQ(EventsOfTalk(443, {{hello, 0}, {server_hello, 300}, {data, 400}}), "");
  Buffer key_exchange{22, 3, 3, 0, 100, 16};
  Buffer change{20, 3, 3, 0, 1, 1};
  EXPECT_EQ(EventsOfTalk(443, {{hello, 0}, {server_hello, 450}, {key_exchange, 900}, {change, 1001}, {alert, 1002}}),
            "TLS_SLOW_HANDSHAKE");
  EXPECT_EQ(EventsOfTalk(443, {{hello, 0}, {alert, 10}}), "TLS_ALERT");
  EXPECT_EQ(EventsOfTalk(443, {{hello, 0}, {Buffer{21, 3, 3, 0, 2, 1, 0}, 10}}), "");  // a farewell

  // Over TCP, messages stand behind their length.
  EXPECT_EQ(EventsOfTalk(53, {{Be16(12) + Dns(1, 0x0100), 0}, {Be16(12) + Dns(1, 0x8182), 10}}), "DNS_ERROR");
  EXPECT_EQ(EventsOfTalk(53, {{Be16(12) + Dns(1, 0x0100), 0}, {Be16(12) + Dns(1, 0x8183), 10}}), "DNS_NAME_NOT_FOUND");
}

TEST(FirstBytes, NeedToBeThereAndRight) {
  EXPECT_EQ(HttpStatus(Text("HTTP/1.1 404 x")), 404U);
  for (const char* text : {"", "HTTP/1.1 40", "HTTP/1.1 4x4 ", "HTTP/2.0 404", "HTTP/1.1-404 x", "POST / HTTP/1.1"}) {
    EXPECT_EQ(HttpStatus(Text(text)), 0U) << text;
  }
  Buffer alert{21, 3, 3, 0, 2, 2, 40};
  EXPECT_TRUE(ReadTlsRecord(alert).fatal_alert);
  EXPECT_EQ(ReadTlsRecord(alert).alert, 40);
  for (std::size_t length = 0; length < alert.size(); ++length) {
    EXPECT_FALSE(ReadTlsRecord(Bytes(alert).first(length)).fatal_alert);
  }
  EXPECT_FALSE(ReadTlsRecord(Buffer{23, 3, 3, 0xFF, 0xFF, 0}).after_handshake);
  EXPECT_FALSE(ReadTlsRecord(Buffer{23, 9, 3, 0, 9, 0}).after_handshake);
  EXPECT_FALSE(ReadDnsHeader(Zeros(11)).is_query);
  EXPECT_FALSE(ReadDnsHeader(Dns(1, 0x2800)).is_query);  // an update
}

TEST(ExpertFlow, TimesAnswersOnlyWhereEachQueryHasOne) {
  for (auto [port, samples] : {std::pair{123U, 1U}, {4000U, 0U}}) {
    ExpertFixture expert;
    expert.FeedIp(true, 17, Udp(50000, port, {1}), 0);
    expert.FeedIp(true, 17, Udp(50000, port, {1}), 1);
    expert.FeedIp(false, 17, Udp(port, 50000, {1}), 3);
    expert.FeedIp(false, 17, Udp(port, 50000, {1}), 9);
    FlowRow row = expert.Rows().at(0);
    EXPECT_EQ(row.responses.count(), samples);
    EXPECT_EQ(row.responses.worst, samples * 3000);
  }
}

TEST(ExpertFlow, RatesResponsesByTheTarget) {
  ResponseTimes<std::uint32_t> responses;
  for (std::uint64_t time : {100'000U, 500'000U, 500'001U, 2'000'000U, 2'000'001U}) responses.Add(time, 500'000);
  EXPECT_EQ(responses.satisfied, 2U);
  EXPECT_EQ(responses.tolerated, 2U);
  EXPECT_EQ(responses.frustrated, 1U);
  EXPECT_DOUBLE_EQ(responses.apdex(), 0.6);
  EXPECT_EQ(responses.best, 100'000U);
  EXPECT_EQ(responses.worst, 2'000'001U);
  ResponseTimes<std::uint64_t> sum;
  sum.Join(responses);
  sum.Join(ResponseTimes<std::uint32_t>());
  sum.Join(responses);
  EXPECT_EQ(sum.count(), 10U);
  EXPECT_EQ(sum.best, 100'000U);
  EXPECT_DOUBLE_EQ(sum.mean(), responses.mean());
}

TEST(ExpertFlow, BelongsToWhatItWasRecognisedAs) {
  ExpertFixture expert;
  expert.FeedIp(true, 6, TcpHeader(40000, 443, 1, 1, TcpSegment::kSyn));
  EXPECT_EQ(expert.Rows().at(0).applications, (Ports{Named("TLS"), 0}));
  expert.applications = {Named("HTTP"), Named("SSH")};
  expert.FeedIp(true, 6, TcpHeader(40000, 443, 2, 1, TcpSegment::kAck) + Buffer{1});
  EXPECT_EQ(expert.Rows().at(0).applications, expert.applications);
  std::vector<ApplicationRow> totals = expert.analysis.Freeze().Applications();
  ASSERT_EQ(totals.size(), 1U);
  EXPECT_EQ(totals[0].packets[kClient], 2U);
}

/// Flows that are over, each by one more that takes its place in the flow table.
TEST(ExpertFlow, KeepsSoManyRowsAndCountsTheOthers) {
  ExpertOptions options;
  options.flows = 3;
  ExpertFixture expert(options, 2);
  for (unsigned i = 1; i <= 10; ++i) {
    expert.FeedIp(true, 17, Udp(40000 + i, 53, Dns(1, 0x0100)), i);
    expert.FeedIp(false, 17, Udp(53, 40000 + i, Dns(1, 0x8183)), i + 0.5);
  }
  FrozenExpert frozen = expert.analysis.Freeze();
  std::vector<std::uint64_t> ids;
  for (const FlowRow& row : expert.Rows()) ids.push_back(row.id);
  EXPECT_EQ(ids, (std::vector<std::uint64_t>{6, 7, 8, 9, 10}));  // two under way, three that are over
  EXPECT_EQ(frozen.flows.dropped, 5U);
  EXPECT_EQ(frozen.flows.rows.size(), 5U);
  std::vector<ApplicationRow> totals = frozen.Applications();
  ASSERT_EQ(totals.size(), 1U);
  EXPECT_EQ(totals[0].flows, 10U);
  EXPECT_EQ(totals[0].events, 10U);
  EXPECT_EQ(totals[0].flows_with_events, 10U);
  EXPECT_EQ(totals[0].packets, (std::array<std::uint64_t, 2>{10, 10}));
  EXPECT_EQ(totals[0].responses.count(), 10U);
  EXPECT_EQ(expert.Events(), "DNS_NAME_NOT_FOUND*10");
}

TEST(ExpertFlow, WhatIsFrozenStaysAndAResetBeginsAnew) {
  ExpertFixture expert;
  expert.FeedIp(false, 6, TcpHeader(5000, 40000, 1, 1, TcpSegment::kSyn));
  FrozenExpert before = expert.analysis.Freeze();
  expert.FeedIp(false, 6, TcpHeader(5000, 40000, 1, 1, TcpSegment::kSyn));
  EXPECT_EQ(before.flows.rows[0].packets[kClient], 1U);
  EXPECT_EQ(before.events.total, 0U);
  EXPECT_EQ(expert.Rows().at(0).packets[kClient], 2U);
  EXPECT_EQ(expert.Events(), "TCP_RETRANSMISSION");

  expert.analysis.Reset();
  EXPECT_TRUE(expert.Rows().empty());
  EXPECT_EQ(expert.Events(), "");
  EXPECT_TRUE(expert.analysis.Freeze().Applications().empty());
  expert.FeedIp(true, 6, TcpHeader(40000, 5000, 1, 2, TcpSegment::kAck));  // whose client is still known
  FlowRow row = expert.Rows().at(0);
  EXPECT_EQ(row.ports, (Ports{5000, 40000}));
  EXPECT_EQ(row.packets, (std::array<std::uint32_t, 2>{0, 1}));
  EXPECT_EQ(before.flows.rows[0].packets[kClient], 1U);
}

TEST(EventLog, DropsTheOldestAndCountsThemAll) {
  EventLog log(3);
  for (std::uint64_t i = 1; i <= 7; ++i) {
    EventRecord record;
    record.time = kNewYear + i;
    record.event = i % 2 == 0 ? ExpertEvent::kDnsError : ExpertEvent::kTcpReset;
    log.Add(record);
    EXPECT_EQ(log.Freeze().size(), std::min<std::uint64_t>(i, 3));
  }
  FrozenEvents frozen = log.Freeze();
  log.Add({});
  EXPECT_EQ(frozen.size(), 3U);
  EXPECT_EQ(frozen.fallen_out(), 4U);
  for (std::uint64_t i = 0; i < 3; ++i) EXPECT_EQ(frozen[i].number, 5 + i);
  const EventCount& count = frozen.counts[static_cast<std::size_t>(ExpertEvent::kDnsError)];
  EXPECT_EQ(count.count, 3U);
  EXPECT_EQ(count.first_time, kNewYear + 2);
  EXPECT_EQ(count.last_time, kNewYear + 6);

  EventLog none(0);
  none.Add({});
  EXPECT_EQ(none.Freeze().size(), 0U);
  EXPECT_EQ(none.Freeze().total, 1U);
}

}  // namespace
}  // namespace orvo::test
