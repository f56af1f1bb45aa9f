#include "capture/analysis/sip_message.h"

#include <osipparser2/osip_message.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <new>
#include <optional>

#include "capture/analysis/osip_parser.h"
#include "capture/analysis/sip_text.h"

namespace orvo {
namespace {

constexpr std::size_t kMaxHeader = 65536;
constexpr std::size_t kMaxField = 1024;
constexpr std::size_t kMaxBody = 8192;
constexpr std::size_t kMaxText = 256;

constexpr char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool SameName(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, Lower, Lower);
}

/// The fields that are of interest, with the one letter that may stand for the name (RFC 3261 section 7.3.3).
struct FieldName {
  std::string_view name;
  char letter;  ///< 0 for none
};
enum Field : std::size_t { kFrom, kTo, kCallId, kCSeq, kContentType, kContentLength, kFieldCount };
constexpr std::array<FieldName, kFieldCount> kFields{{
    {"From", 'f'},
    {"To", 't'},
    {"Call-ID", 'i'},
    {"CSeq", 0},
    {"Content-Type", 'c'},
    {"Content-Length", 'l'},
}};

struct FreeMessage {
  void operator()(osip_message_t* message) const { osip_message_free(message); }
};
using OsipPtr = std::unique_ptr<osip_message_t, FreeMessage>;

/// A message taken apart as far as that goes without grammar.
struct Outline {
  std::string_view first_line;
  std::array<std::string, kFieldCount> values;  ///< empty for a field that is not there
  std::size_t header_length = 0;                ///< with the empty line behind it
};

/// "SIP/2.0 200 OK" or "INVITE sip:somebody SIP/2.0".
bool IsFirstLine(std::string_view line) {
  return line.size() <= kMaxField && IsPlain(line) && (line.starts_with("SIP/2.0 ") || line.ends_with(" SIP/2.0"));
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

/// The value that a line's field is to be put into; null for a field of no interest or one that came before.
std::string* ValueOf(std::string_view name, Outline* outline) {
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    bool letter = name.size() == 1 && kFields[i].letter != 0 && Lower(name[0]) == kFields[i].letter;
    if (letter || SameName(name, kFields[i].name)) return outline->values[i].empty() ? &outline->values[i] : nullptr;
  }
  return nullptr;
}

bool ReadOutline(std::string_view text, Outline* outline) {
  std::string_view rest = text.substr(0, kMaxHeader);
  std::size_t all = rest.size();
  outline->first_line = TakeLine(&rest);
  if (!IsFirstLine(outline->first_line)) return false;
  std::string* value = nullptr;  // what a folded line continues
  while (!rest.empty()) {
    std::string_view line = TakeLine(&rest);
    if (line.empty()) break;
    if (line[0] == ' ' || line[0] == '\t') {
      if (value) value->append(" ").append(Trimmed(line).substr(0, kMaxField));
    } else {
      std::size_t colon = line.find(':');
      value = colon == std::string_view::npos ? nullptr : ValueOf(Trimmed(line.substr(0, colon)), outline);
      if (value) value->assign(Trimmed(line.substr(colon + 1)).substr(0, kMaxField + 1));
    }
    if (value && (value->size() > kMaxField || !IsPlain(*value))) {
      value->clear();
      value = nullptr;
    }
  }
  outline->header_length = all - rest.size();
  return true;
}

/// The message with the fields of interest only. The parser allocates for every field and list item, and adding an item
/// walks all before it; with these few there is nothing to walk.
OsipPtr Parse(const Outline& outline) {
  PrepareOsip();
  std::string text(outline.first_line);
  text.append("\r\n");
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    // The length would be that of a body that the parser does not get.
    if (i == kContentLength || outline.values[i].empty()) continue;
    text.append(kFields[i].name).append(": ").append(outline.values[i]).append("\r\n");
  }
  text.append("\r\n");
  osip_message_t* raw = nullptr;
  if (osip_message_init(&raw) != 0) throw std::bad_alloc();
  OsipPtr parsed(raw);
  return osip_message_parse(raw, text.data(), text.size()) == 0 ? std::move(parsed) : nullptr;
}

std::string Cut(const char* text) {
  return std::string(std::string_view(text ? text : "").substr(0, kMaxText));
}

/// user@host, or the whole address where it is none of SIP's.
std::string PartyOf(const osip_from_t* party) {
  if (!party || !party->url) return {};
  const osip_uri_t& url = *party->url;
  if (!url.host) return Cut(url.string);
  std::string text = url.username ? Cut(url.username) + "@" : std::string();
  text += Cut(url.host);
  if (url.port) text.append(":").append(url.port);
  return Cut(text.c_str());
}

bool HasTag(osip_to_t* to) {
  osip_generic_param_t* tag = nullptr;
  return to && osip_to_get_tag(to, &tag) == 0 && tag;
}

std::string CallIdOf(const osip_call_id_t* call_id) {
  if (!call_id || !call_id->number) return {};
  std::string text = Cut(call_id->number);
  if (call_id->host) text.append("@").append(Cut(call_id->host));
  return text;
}

/// The body of the first part that is a session description, of a body in several parts (RFC 2046 section 5.1).
std::string_view DescriptionPart(std::string_view body) {
  bool announced = false;
  while (!body.empty()) {
    std::string_view line = TakeLine(&body);
    if (line.empty() && announced) {
      // Boundaries begin with two hyphens, as no line of a description does.
      return body.substr(0, body.find("\n--"));
    }
    if (line.starts_with("--")) announced = false;
    std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    std::string_view name = Trimmed(line.substr(0, colon));
    bool is_type = SameName(name, "Content-Type") || SameName(name, "c");
    if (is_type && SameName(Trimmed(line.substr(colon + 1)).substr(0, 15), "application/sdp")) announced = true;
  }
  return {};
}

std::string_view DescriptionIn(std::string_view body, const osip_content_type_t* type) {
  if (!type || !type->type || !type->subtype) return {};
  if (SameName(type->type, "application") && SameName(type->subtype, "sdp")) return body;
  return SameName(type->type, "multipart") ? DescriptionPart(body) : std::string_view();
}

std::optional<std::size_t> LengthOf(std::string_view value) {
  std::size_t length = 0;
  auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), length);
  if (error != std::errc()) return {};
  return length;
}

constexpr std::uint32_t Letters(const char (&text)[5]) {
  std::uint32_t word = 0;
  for (int i = 0; i < 4; ++i) word = word << 8 | static_cast<unsigned char>(text[i]);
  return word;
}

}  // namespace

bool BeginsLikeSip(std::uint32_t first_letters) {
  // The methods of RFC 3261 and of its extensions (IANA: SIP methods).
  switch (first_letters) {
    case Letters("SIP/"):
    case Letters("INVI"):
    case Letters("ACK "):
    case Letters("BYE "):
    case Letters("CANC"):
    case Letters("REGI"):
    case Letters("OPTI"):
    case Letters("PRAC"):
    case Letters("UPDA"):
    case Letters("INFO"):
    case Letters("REFE"):
    case Letters("SUBS"):
    case Letters("NOTI"):
    case Letters("PUBL"):
    case Letters("MESS"): return true;
    default: return false;
  }
}

bool ReadSip(std::string_view text, SipMessage* message, std::size_t* length) {
  *length = 0;
  Outline outline;
  if (!ReadOutline(text, &outline)) return false;
  std::string_view body = text.substr(outline.header_length);
  if (auto told = LengthOf(outline.values[kContentLength])) body = body.substr(0, *told);
  *length = outline.header_length + body.size();

  OsipPtr parsed = Parse(outline);
  if (!parsed) return false;
  *message = {};
  message->is_request = parsed->sip_method != nullptr;
  int status = parsed->status_code;
  if (!message->is_request && (status < 100 || status > 699)) return false;
  message->status = message->is_request ? std::uint16_t{0} : static_cast<std::uint16_t>(status);
  const char* answered = parsed->cseq ? parsed->cseq->method : nullptr;
  message->method = Cut(message->is_request ? parsed->sip_method : answered);
  message->call_id = CallIdOf(parsed->call_id);
  message->from = PartyOf(parsed->from);
  message->to = PartyOf(parsed->to);
  message->in_dialog = HasTag(parsed->to);
  if (message->method.empty() || message->call_id.empty()) return false;
  std::string_view description = DescriptionIn(body, parsed->content_type);
  if (!description.empty()) message->media = ReadSessionDescription(description.substr(0, kMaxBody));
  return true;
}

}  // namespace orvo
