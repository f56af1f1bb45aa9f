#include <gtest/gtest.h>

#include <random>
#include <string>

#include "capture/analysis/sip_message.h"
#include "tests/capture/voice_packets.h"

namespace orvo::test {
namespace {

const std::string kInvite = "INVITE sip:ben@example.com SIP/2.0";

struct ReadMessage {
  explicit ReadMessage(std::string_view text) { read = ReadSip(text, &message, &length); }

  bool read = false;
  std::size_t length = 0;
  SipMessage message;
};

TEST(SipMessage, ReadsRequestsAndResponses) {
  std::string body = Sdp(1, 4000, "8 101", "a=rtpmap:8 PCMA/8000\r\na=rtpmap:101 telephone-event/8000\r\n");
  std::string text = Sip(kInvite, "INVITE", body);
  ReadMessage request(text + "tail");
  ASSERT_TRUE(request.read);
  EXPECT_EQ(request.length, text.size());
  EXPECT_TRUE(request.message.is_request);
  EXPECT_EQ(request.message.method, "INVITE");
  EXPECT_EQ(request.message.call_id, "call-1@host");
  EXPECT_EQ(request.message.from, "ann@example.com");
  EXPECT_EQ(request.message.to, "ben@example.com");
  EXPECT_FALSE(request.message.in_dialog);
  ASSERT_EQ(request.message.media.size(), 1U);
  EXPECT_EQ(request.message.media[0].endpoint.port, 4000);
  const MediaDescription& description = *request.message.media[0].description;
  EXPECT_EQ(description.kind, MediaKind::kAudio);
  ASSERT_EQ(description.formats.size(), 2U);
  EXPECT_EQ(description.Find(101)->encoding, "telephone-event");
  EXPECT_EQ(description.Find(8)->clock_rate, 8000U);

  ReadMessage response(
      "SIP/2.0 180 Ringing\ni: short\nf: <tel:+49301234>\nt:\n <sip:ben@[2001:db8::1]:5070>\n ;tag=x\nCSEQ: 7 "
      "INVITE\n\n");
  ASSERT_TRUE(response.read);
  EXPECT_FALSE(response.message.is_request);
  EXPECT_EQ(response.message.status, 180);
  EXPECT_EQ(response.message.method, "INVITE");
  EXPECT_EQ(response.message.call_id, "short");
  EXPECT_EQ(response.message.from, "+49301234");
  EXPECT_EQ(response.message.to, "ben@2001:db8::1:5070");
  EXPECT_TRUE(response.message.in_dialog);
}

TEST(SipMessage, RefusesWhatIsNone) {
  const char* none[] = {"",
                        "INVITE",
                        "OPTIONS * HTTP/1.1\r\nHost: x\r\n\r\n",
                        "SIP/2.0\r\n\r\n",
                        "INVITE sip:a SIP/2.0x\r\n\r\n",
                        "MESSAGE for you: SIP/2.0\x01 SIP/2.0\r\n\r\n"};
  for (const char* text : none) EXPECT_EQ(ReadMessage(text).length, 0U) << text;
  // SIP, but without what every message has.
  const std::string incomplete[] = {kInvite + "\r\n\r\n", kInvite + "\r\nCSeq: 1 INVITE",
                                    "SIP/2.0 9999 What\r\nCall-ID: x\r\nCSeq: 1 A\r\n\r\n",
                                    "SIP/2.0 200 OK\r\nCSeq: 1 INVITE\r\n\r\n"};
  for (const std::string& text : incomplete) {
    ReadMessage message(text);
    EXPECT_FALSE(message.read) << text;
    EXPECT_NE(message.length, 0U) << text;
  }
}

TEST(SipMessage, FindsTheDescriptionAmongSeveralParts) {
  std::string part =
      "--b\r\nContent-Type: application/isup\r\n\r\nxyz\r\n--b\r\nContent-Type: application/sdp\r\n\r\n" +
      Sdp(3, 5004) + "\r\n--b--\r\n";
  std::string text = Sip(kInvite, "INVITE", part);
  text.replace(text.find("application/sdp"), 15, "multipart/mixed;boundary=b");
  ReadMessage message(text);
  ASSERT_TRUE(message.read);
  ASSERT_EQ(message.message.media.size(), 1U);
  EXPECT_EQ(message.message.media[0].endpoint.port, 5004);
}

TEST(SipMessage, EndlessInputTakesLittle) {
  std::string many_headers = kInvite + "\r\n";
  for (int i = 0; i < 100'000; ++i)
    many_headers += "Via: SIP/2.0/UDP h;branch=" + std::to_string(i) + "\r\nTo: <sip:b@h>\r\n";
  std::string list =
      kInvite + "\r\nCall-ID: x\r\nCSeq: 1 INVITE\r\nFrom: <sip:a@h>" + std::string(60'000, ';') + "\r\n\r\n";
  std::string folded = kInvite + "\r\nCall-ID: x\r\nCSeq: 1 INVITE\r\nFrom:\r\n";
  for (int i = 0; i < 20'000; ++i) folded += " ;a\r\n";
  for (const std::string* text : {&many_headers, &list, &folded}) {
    ReadMessage message(*text);
    EXPECT_LE(message.message.from.size(), 512U);
    EXPECT_LE(message.length, text->size());
  }
  EXPECT_TRUE(ReadMessage(list + "\r\n").read) << "one field that is too long costs that field";
  EXPECT_EQ(ReadMessage(list).message.from, "");
  std::string long_id = Sip(kInvite, "INVITE", "", std::string(900, 'x'));
  EXPECT_EQ(ReadMessage(long_id).message.call_id.size(), 256U);
}

TEST(SessionDescription, KeepsWhatCanBeUsed) {
  struct Case {
    const char* name;
    std::string text;
    std::size_t media;
  };
  const Case cases[] = {
      {"whole", Sdp(1, 4000), 1},
      {"nothing but what matters", "c=IN IP4 10.0.0.1\nm=audio 4000 RTP/AVP 0\n", 1},
      {"IPv6", "c=IN IP6 2001:db8::7\r\nm=video 4000 RTP/SAVPF 96\r\na=rtpmap:96 VP8/90000\r\n", 1},
      {"address of its own", "m=audio 4000 RTP/AVP 0\r\nc=IN IP4 10.0.0.1\r\n", 1},
      {"cut in the middle", Sdp(1, 4000).substr(0, 80), 0},
      {"refused", Sdp(1, 0), 0},
      {"on hold", "c=IN IP4 0.0.0.0\r\nm=audio 4000 RTP/AVP 0\r\n", 0},
      {"no address", "m=audio 4000 RTP/AVP 0\r\n", 0},
      {"address of no form", "c=IN IP4 300.1.1.1\r\nm=audio 4000 RTP/AVP 0\r\n", 0},
      {"port of no form", "c=IN IP4 10.0.0.1\r\nm=audio 99999 RTP/AVP 0\r\n", 0},
      {"no RTP", "c=IN IP4 10.0.0.1\r\nm=image 4000 udptl t38\r\n", 0},
      {"control characters", "c=IN IP4 10.0.0.1\r\nm=audio 40\x01 RTP/AVP 0\r\n", 0},
      {"empty", "", 0},
      {"lines of nothing", std::string(5000, '\n'), 0},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    EXPECT_EQ(ReadSessionDescription(test.text).size(), test.media);
  }
  std::string many = "c=IN IP4 10.0.0.1\r\n";
  for (int i = 0; i < 1000; ++i) many += "m=audio " + std::to_string(4000 + i) + " RTP/AVP 0\r\na=rtpmap:0 X/1\r\n";
  EXPECT_EQ(ReadSessionDescription(many).size(), static_cast<std::size_t>(kMaxMedia));
  std::string formats = "m=audio 4000 RTP/AVP";
  for (int i = 0; i < 70; ++i) formats += " 96";
  auto media = ReadSessionDescription("c=IN IP4 10.0.0.1\r\n" + formats + "\r\n");
  ASSERT_EQ(media.size(), 1U);
  EXPECT_EQ(media[0].description->formats.size(), static_cast<std::size_t>(kMaxFormats));
}

TEST(SessionDescription, BelievesOnlyWholeMappings) {
  auto media =
      ReadSessionDescription(Sdp(1, 4000, "96 97 98 99 200 x",
                                 "a=rtpmap:96 opus/48000/2\r\na=rtpmap:97 none\r\na=rtpmap:98 zero/0\r\na=rtpmap:99 " +
                                     std::string(99, 'n') + "/8000\r\na=rtpmap:100 other/8000\r\na=rtpmap:\r\n"));
  ASSERT_EQ(media.size(), 1U);
  const MediaDescription& description = *media[0].description;
  EXPECT_EQ(description.formats.size(), 4U);
  EXPECT_EQ(description.Find(96)->encoding, "opus");
  EXPECT_EQ(description.Find(96)->clock_rate, 48000U);
  for (int type : {97, 98, 99}) EXPECT_EQ(description.Find(static_cast<std::uint8_t>(type))->clock_rate, 0U);
  EXPECT_EQ(description.Find(100), nullptr);
}

// The parser behind is a library's: whatever the bytes, it must neither read nor write beyond them.
TEST(SipMessage, SurvivesDamage) {
  std::string good = Sip(kInvite, "INVITE", Sdp(1, 4000, "0 8 96", "a=rtpmap:96 opus/48000/2\r\n"));
  std::mt19937 random(7);
  static constexpr char kSpecial[] = "\r\n\t :;,<>\"@/=\\%[]()?&\0\x7F\xFF";
  for (int i = 0; i < 20'000; ++i) {
    std::string text = good;
    for (int change = static_cast<int>(random() % 6); change >= 0; --change) {
      std::size_t at = random() % text.size();
      switch (random() % 4) {
        case 0: text[at] = kSpecial[random() % (sizeof kSpecial - 1)]; break;
        case 1: text.erase(at, random() % 20); break;
        case 2: text.insert(at, text.substr(random() % text.size(), random() % 40)); break;
        default: text.insert(at, 1 + random() % 3, kSpecial[random() % (sizeof kSpecial - 1)]); break;
      }
      if (text.empty()) break;
    }
    text.resize(text.size() - random() % (text.size() / 2 + 1));
    ReadMessage message(text);
    ASSERT_LE(message.length, text.size());
    ASSERT_TRUE(!message.read || !message.message.call_id.empty());
  }
}

}  // namespace
}  // namespace orvo::test
