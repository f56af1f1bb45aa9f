#include "capture/analysis/codecs.h"

#include <algorithm>
#include <array>

namespace orvo {
namespace {

using enum MediaKind;

// Ie is that of G.113 table I.1, at the codec's usual bit rate, Bpl that of table I.2. Where only Ie is published, Bpl
// is that of G.711 without concealment, the least robust of the table.
constexpr std::array kCodecs{
    Codec{"PCMU", "G.711 \u00B5-law", kAudio, 0, 4.3},
    Codec{"PCMA", "G.711 A-law", kAudio, 0, 4.3},
    Codec{"G729", "G.729", kAudio, 11, 19.0},
    Codec{"G729D", "G.729D", kAudio},
    Codec{"G729E", "G.729E", kAudio},
    Codec{"G723", "G.723.1", kAudio, 15, 16.1},
    Codec{"G728", "G.728", kAudio, 7},
    Codec{"G721", "G.721", kAudio, 7},
    Codec{"G726-40", "G.726 40 kbit/s", kAudio, 2},
    Codec{"G726-32", "G.726 32 kbit/s", kAudio, 7},
    Codec{"G726-24", "G.726 24 kbit/s", kAudio, 25},
    Codec{"G726-16", "G.726 16 kbit/s", kAudio, 50},
    Codec{"GSM", "GSM Full Rate", kAudio, 20},
    Codec{"GSM-HR-08", "GSM Half Rate", kAudio, 23},
    Codec{"GSM-EFR", "GSM Enhanced Full Rate", kAudio, 5, 10.0},
    Codec{"AMR", "AMR", kAudio, 5, 10.0},  // at 12.2 kbit/s it is GSM's enhanced full rate
    Codec{"AMR-WB", "AMR-WB", kAudio},
    Codec{"G722", "G.722", kAudio},
    Codec{"G7221", "G.722.1", kAudio},
    Codec{"EVS", "EVS", kAudio},
    Codec{"iLBC", "iLBC", kAudio},
    Codec{"speex", "Speex", kAudio},
    Codec{"opus", "Opus", kAudio},
    Codec{"SILK", "SILK", kAudio},
    Codec{"LPC", "LPC", kAudio},
    Codec{"QCELP", "QCELP", kAudio},
    Codec{"DVI4", "DVI4", kAudio},
    Codec{"L16", "Linear PCM 16 bit", kAudio},
    Codec{"MPA", "MPEG audio", kAudio},
    Codec{"MP4A-LATM", "AAC", kAudio},
    Codec{"mpeg4-generic", "MPEG-4", kAudio},
    Codec{"CN", "Comfort noise", kAudio},
    Codec{"telephone-event", "Telephone events", kAudio},
    Codec{"CelB", "CelB", kVideo},
    Codec{"JPEG", "JPEG", kVideo},
    Codec{"nv", "nv", kVideo},
    Codec{"H261", "H.261", kVideo},
    Codec{"H263", "H.263", kVideo},
    Codec{"H263-1998", "H.263+", kVideo},
    Codec{"H263-2000", "H.263++", kVideo},
    Codec{"H264", "H.264", kVideo},
    Codec{"H265", "H.265", kVideo},
    Codec{"VP8", "VP8", kVideo},
    Codec{"VP9", "VP9", kVideo},
    Codec{"AV1", "AV1", kVideo},
    Codec{"MPV", "MPEG video", kVideo},
    Codec{"MP2T", "MPEG transport stream", kVideo},
    Codec{"MP4V-ES", "MPEG-4 video", kVideo},
};

/// Tables 4 and 5 of RFC 3551, by payload type.
constexpr std::array<StaticPayload, 35> kStaticPayloads{{
    {"PCMU", 8000},
    {},
    {},
    {"GSM", 8000},
    {"G723", 8000},
    {"DVI4", 8000},
    {"DVI4", 16000},
    {"LPC", 8000},
    {"PCMA", 8000},
    {"G722", 8000},
    {"L16", 44100},
    {"L16", 44100},
    {"QCELP", 8000},
    {"CN", 8000},
    {"MPA", 90000},
    {"G728", 8000},
    {"DVI4", 11025},
    {"DVI4", 22050},
    {"G729", 8000},
    {"CN", 8000},
    {},
    {},
    {},
    {},
    {},
    {"CelB", 90000},
    {"JPEG", 90000},
    {},
    {"nv", 90000},
    {},
    {},
    {"H261", 90000},
    {"MPV", 90000},
    {"MP2T", 90000},
    {"H263", 90000},
}};

constexpr char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool SameName(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, Lower, Lower);
}

}  // namespace

const Codec* FindCodec(std::string_view encoding) {
  const auto* found =
      std::ranges::find_if(kCodecs, [&](const Codec& codec) { return SameName(codec.encoding, encoding); });
  return found == kCodecs.end() ? nullptr : found;
}

const StaticPayload* FindStaticPayload(std::uint8_t payload_type) {
  if (payload_type >= kStaticPayloads.size()) return nullptr;
  const StaticPayload& payload = kStaticPayloads[payload_type];
  return payload.clock_rate == 0 ? nullptr : &payload;
}

bool IsComfortNoise(std::string_view encoding) {
  return SameName(encoding, "CN");
}

bool IsTelephoneEvent(std::string_view encoding) {
  return SameName(encoding, "telephone-event");
}

}  // namespace orvo
