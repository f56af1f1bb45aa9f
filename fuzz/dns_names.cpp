// The names that answers of name servers tell.

#include "capture/names/dns_names.h"
#include "capture/decode/protocol_registry.h"
#include "capture/source/capture_file.h"
#include "fuzz/support/target.h"

namespace orvo::fuzz {
namespace {

constexpr std::uint8_t kTcp = 6;
constexpr std::uint8_t kUdp = 17;

bool MayStandInName(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9') ||
         std::u16string_view(u"-_.?").find(unit) != std::u16string_view::npos || (unit > 0x7F && !IsInvisible(unit));
}

}  // namespace

/// The first byte tells whether the rest is a message of TCP, with its length in front.
void TestOneInput(Input input) {
  PacketFacts facts;
  facts.Begin(input.size(), input.size());
  facts.has_ports = true;
  facts.source_port = 53;
  facts.ip_protocol = (TakeByte(&input) & 1U) != 0 ? kTcp : kUdp;
  facts.payload = input;
  std::vector<KnownName> names;
  ReadHeardNames(facts, &names);
  // A record takes eleven bytes and its data four.
  Require(names.size() <= input.size() / 15, "no more names than the message can hold");
  NameDirectory directory(2);
  for (const KnownName& known : names) {
    Require(known.address.type == kAddressIp || known.address.type == kAddressIpv6, "names are those of IP addresses");
    Require(!known.name.empty() && known.name.size() <= NameDirectory::kMaxLength, "names have a length in bounds");
    for (char16_t unit : known.name) Require(MayStandInName(unit), "names hold nothing that acts in a report");
    directory.Learn(known.address, known.name, NameSource::kHeard);
  }
}

void MakeSeeds(const SeedSink& add) {
  constexpr int kMostSeeds = 60;
  int count = 0;
  for (const std::string& path : Samples()) {
    SourceError error;
    std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
    Require(source != nullptr, "samples can be read");
    PacketFacts facts;
    for (Packet packet; count < kMostSeeds && source->Next(&packet);) {
      DecodePacket(packet, &facts);
      if (!MayHoldNames(facts)) continue;
      add(std::string(1, facts.ip_protocol == kTcp ? '\1' : '\0') + std::string(AsText(facts.payload)));
      ++count;
    }
  }
}

}  // namespace orvo::fuzz
