#include "capture/source/packet_filter.h"

#include <pcap/dlt.h>
#include <pcap/pcap.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "capture/source/link_type.h"
#include "capture/source/source_notes.h"

namespace orvo {
namespace {

/// Longer than any frame; programs give it as the length to keep.
constexpr int kSnapLength = 262'144;

/// Link types that an expression is tried for before any packet is seen: one of each kind that the language knows.
constexpr int kTried[] = {DLT_EN10MB, DLT_RAW, DLT_IEEE802_11_RADIO, DLT_LINUX_SLL, DLT_LINUX_SLL2, DLT_IEEE802_11,
                          DLT_PPP,    DLT_NULL};

/// An expression compiled for one link type.
class Program {
 public:
  /// On failure the program is empty, and the reason in `reason`.
  Program(const std::string& expression, int link_type, std::string* reason) {
    // Older versions of libpcap compile with variables that all threads share.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    const std::unique_ptr<pcap_t, void (*)(pcap_t*)> handle(pcap_open_dead(link_type, kSnapLength), pcap_close);
    if (!handle) throw std::bad_alloc();
    constexpr int kOptimize = 1;
    compiled_ = pcap_compile(handle.get(), &code_, expression.c_str(), kOptimize, PCAP_NETMASK_UNKNOWN) == 0;
    if (!compiled_) *reason = OneLine(pcap_geterr(handle.get()));
  }
  Program(Program&& other) noexcept
      : code_(std::exchange(other.code_, {})), compiled_(std::exchange(other.compiled_, false)) {}
  Program& operator=(Program&&) = delete;
  ~Program() { pcap_freecode(&code_); }

  bool compiled() const { return compiled_; }
  bool Matches(const Packet& packet) const {
    pcap_pkthdr header{};
    header.caplen = static_cast<bpf_u_int32>(packet.bytes.size());
    header.len = packet.original_length;
    return compiled_ && pcap_offline_filter(&code_, &header, packet.bytes.data()) != 0;
  }

 private:
  bpf_program code_{};
  bool compiled_ = false;
};

struct ForLink {
  std::uint32_t link_type;
  Program program;
};

}  // namespace

struct PacketFilter::Parts {
  std::string expression;
  SourceNotes notes{"the filter"};
  std::vector<ForLink> programs;  // one for each link type met

  const Program& For(std::uint32_t link_type) {
    const auto found = std::ranges::find(programs, link_type, &ForLink::link_type);
    if (found != programs.end()) return found->program;
    std::string reason;
    programs.push_back({link_type, Program(expression, static_cast<int>(link_type), &reason)});
    if (!programs.back().program.compiled() && programs.size() <= kMostNoted) {
      notes.Add("packets of " + LinkTypeText(link_type) +
                " are left out, as the expression makes no sense for them: " + reason);
    }
    return programs.back().program;
  }

  /// Link types that warnings are given for; a capture with more of them is a made-up one.
  static constexpr std::size_t kMostNoted = 8;
};

PacketFilter::PacketFilter(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
PacketFilter::~PacketFilter() = default;

std::unique_ptr<PacketFilter> PacketFilter::Make(const std::string& expression, SourceError* error) {
  *error = {};
  std::string first_reason;
  for (int link_type : kTried) {
    std::string reason;
    if (Program(expression, link_type, &reason).compiled()) {
      auto parts = std::make_unique<Parts>();
      parts->expression = expression;
      return std::unique_ptr<PacketFilter>(new PacketFilter(std::move(parts)));
    }
    if (first_reason.empty()) first_reason = reason;
  }
  *error = Refusal(E_INVALIDARG, Brief(expression), first_reason);
  return nullptr;
}

bool PacketFilter::Matches(const Packet& packet) {
  return parts_->For(packet.link_type).Matches(packet);
}

const SourceError& PacketFilter::warning() const {
  return parts_->notes.warning();
}

}  // namespace orvo
