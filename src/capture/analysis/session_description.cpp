#include "capture/analysis/session_description.h"

#include <arpa/inet.h>
#include <osipparser2/osip_port.h>
#include <osipparser2/sdp_message.h>

#include <charconv>
#include <optional>
#include <string>

#include "capture/analysis/osip_parser.h"
#include "capture/analysis/sip_text.h"

namespace orvo {
namespace {

/// What of a description is handed to the parser.
constexpr int kMaxLines = 256;
constexpr std::size_t kMaxLine = 256;
constexpr std::size_t kMaxEncoding = 32;

struct FreeDescription {
  void operator()(sdp_message_t* sdp) const { sdp_message_free(sdp); }
};
using SdpPtr = std::unique_ptr<sdp_message_t, FreeDescription>;

/// Whether a line is one of those that map a payload type; the parser gives up the whole description for an empty one.
bool IsMapping(std::string_view line) {
  constexpr std::string_view kName = "a=rtpmap:";
  return line.starts_with(kName) && line.size() > kName.size() && line[kName.size()] >= '0' &&
         line[kName.size()] <= '9';
}

/// The description cut down to the lines that matter here, behind the ones that every description begins with. So
/// strange lines elsewhere do no harm, and the parser's lists, which it walks for every item that it adds, stay short.
std::string Essentials(std::string_view text) {
  std::string kept = "v=0\r\no=- 0 0 IN IP4 0.0.0.0\r\ns=-\r\n";
  std::string media;
  int media_count = 0;
  int lines = 0;
  bool has_address = false;
  while (!text.empty() && lines < kMaxLines) {
    std::string_view line = TakeLine(&text);
    bool begins_media = line.starts_with("m=");
    if (begins_media && ++media_count > kMaxMedia) break;
    bool address = line.starts_with("c=") && (media_count != 0 || !has_address);
    if (line.size() > kMaxLine || !IsPlain(line)) continue;
    if (!begins_media && !address && !(media_count != 0 && IsMapping(line))) continue;
    has_address = has_address || address;
    ++lines;
    (media_count == 0 ? kept : media).append(line).append("\r\n");
  }
  return kept + "t=0 0\r\n" + media;
}

std::optional<IpBytes> ReadAddress(const char* text) {
  IpBytes address{};
  std::uint8_t four[4];
  if (!text) return {};
  if (inet_pton(AF_INET, text, four) == 1) {
    address = MapIpv4(four);
    if (four[0] == 0) return {};
  } else if (inet_pton(AF_INET6, text, address.data()) != 1) {
    return {};
  }
  return address;
}

template <class T>
std::optional<T> ReadNumber(std::string_view text) {
  T value{};
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end == text.data()) return {};
  return value;
}

std::string_view TextOf(const char* text) {
  return text ? std::string_view(text) : std::string_view();
}

MediaKind KindOf(std::string_view media) {
  if (media == "audio") return MediaKind::kAudio;
  return media == "video" ? MediaKind::kVideo : MediaKind::kUnknown;
}

/// "8 PCMA/8000": the name and the clock of a payload type (RFC 8866 section 6.6).
void ApplyMapping(std::string_view mapping, MediaDescription* description) {
  auto type = ReadNumber<std::uint8_t>(mapping);
  std::size_t space = mapping.find(' ');
  if (!type || space == std::string_view::npos) return;
  std::string_view name = mapping.substr(space + 1);
  std::size_t slash = name.find('/');
  if (slash == std::string_view::npos || slash == 0 || slash > kMaxEncoding) return;
  auto clock = ReadNumber<std::uint32_t>(name.substr(slash + 1));
  if (!clock || *clock == 0) return;
  for (PayloadFormat& format : description->formats) {
    if (format.type == *type) format = {*type, std::string(name.substr(0, slash)), *clock};
  }
}

MediaDescription Describe(sdp_message_t* sdp, int media) {
  MediaDescription description;
  description.kind = KindOf(TextOf(sdp_message_m_media_get(sdp, media)));
  for (int i = 0; i < kMaxFormats; ++i) {
    const char* payload = sdp_message_m_payload_get(sdp, media, i);
    if (!payload) break;
    auto type = ReadNumber<std::uint8_t>(payload);
    if (!type || *type > 127) continue;
    const StaticPayload* known = FindStaticPayload(*type);
    description.formats.push_back(
        {*type, known ? std::string(known->encoding) : std::string(), known ? known->clock_rate : 0});
  }
  for (int i = 0; i < kMaxLines; ++i) {
    const sdp_attribute_t* attribute = sdp_message_attribute_get(sdp, media, i);
    if (!attribute) break;
    ApplyMapping(TextOf(attribute->a_att_value), &description);
  }
  return description;
}

const char* AddressOf(sdp_message_t* sdp, int media) {
  const sdp_connection_t* own = sdp_message_connection_get(sdp, media, 0);
  const sdp_connection_t* common = sdp_message_connection_get(sdp, -1, 0);
  return own ? own->c_addr : common ? common->c_addr : nullptr;
}

}  // namespace

std::vector<OfferedMedia> ReadSessionDescription(std::string_view text) {
  PrepareOsip();
  sdp_message_t* raw = nullptr;
  if (sdp_message_init(&raw) != 0) throw std::bad_alloc();
  SdpPtr sdp(raw);
  std::vector<OfferedMedia> offered;
  if (sdp_message_parse(sdp.get(), Essentials(text).c_str()) != 0) return offered;
  for (int i = 0; i < kMaxMedia && sdp_message_endof_media(sdp.get(), i) == 0; ++i) {
    if (TextOf(sdp_message_m_proto_get(sdp.get(), i)).find("RTP/") == std::string_view::npos) continue;
    auto port = ReadNumber<std::uint16_t>(TextOf(sdp_message_m_port_get(sdp.get(), i)));
    auto address = ReadAddress(AddressOf(sdp.get(), i));
    if (!port || *port == 0 || !address) continue;
    offered.push_back({{*address, *port}, std::make_shared<MediaDescription>(Describe(sdp.get(), i))});
  }
  return offered;
}

}  // namespace orvo
