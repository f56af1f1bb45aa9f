#include "capture/source/link_type.h"

#include <pcap/dlt.h>
#include <pcap/pcap.h>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

struct Renumbered {
  std::uint32_t in_files;
  std::uint32_t in_programs;
};

constexpr Renumbered kRenumbered[] = {
    {100, DLT_ATM_RFC1483}, {101, DLT_RAW},      {102, DLT_SLIP_BSDOS},
    {103, DLT_PPP_BSDOS},   {106, DLT_ATM_CLIP}, {246, DLT_PFSYNC},
};

}  // namespace

std::uint32_t LinkTypeFromFile(std::uint32_t number) {
  for (const Renumbered& one : kRenumbered) {
    if (one.in_files == number) return one.in_programs;
  }
  return number;
}

std::string LinkTypeText(std::uint32_t link_type) {
  const char* name = pcap_datalink_val_to_name(static_cast<int>(link_type));
  return "link type " + std::to_string(link_type) + (name ? " (" + std::string(name) + ")" : "");
}

bool IsDecodable(std::uint32_t link_type) {
  return ProtocolRegistry::Get().Find(Layer::kLink, link_type) != 0;
}

}  // namespace orvo
