#include "capture/source/interface_source.h"

#include <dirent.h>
#include <fcntl.h>
#include <pcap/pcap.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "capture/source/link_type.h"
#include "capture/source/source_notes.h"
#include "platform/clock.h"

namespace orvo {
namespace {

constexpr std::uint32_t kLongestFrame = 262'144;

struct Close {
  void operator()(pcap_t* handle) const { pcap_close(handle); }
};
using Handle = std::unique_ptr<pcap_t, Close>;

class LiveInterface final : public InterfaceSource {
 public:
  LiveInterface(const std::string& name, Handle handle)
      : notes_(name),
        handle_(std::move(handle)),
        link_type_(static_cast<std::uint32_t>(pcap_datalink(handle_.get()))),
        nanoseconds_per_unit_(pcap_get_tstamp_precision(handle_.get()) == PCAP_TSTAMP_PRECISION_NANO ? 1 : 1000) {
    // No exception may pass through libpcap, so that nothing is allocated below it.
    lengths_.reserve(kMostAtOnce);
    copies_.reserve(kMostAtOnce * kLongestFrame);
  }

  bool Next(Packet* packet) override { return NextBatch({packet, 1}) != 0; }

  std::size_t NextBatch(std::span<Packet> room) override {
    while (!stopped_.load(std::memory_order_relaxed)) {
      lengths_.clear();
      copies_.clear();
      const int result = pcap_dispatch(handle_.get(), static_cast<int>(std::min(room.size(), kMostAtOnce)), &Take,
                                       reinterpret_cast<std::uint8_t*>(this));
      if (result < 0 && result != PCAP_ERROR_BREAK) Fail();
      if (result < 0) stopped_ = true;
      if (lengths_.empty()) continue;  // nothing came before the time-out
      return Deliver(room);
    }
    return 0;
  }

  SourceProgress progress() const override { return {bytes_, 0}; }

  std::uint64_t dropped() const override {
    pcap_stat now{};
    if (pcap_stats(handle_.get(), &now) == 0) {
      // The system counts in 32 bits, which may overflow between two looks.
      dropped_ += static_cast<std::uint32_t>(now.ps_drop - seen_.ps_drop);
      dropped_ += static_cast<std::uint32_t>(now.ps_ifdrop - seen_.ps_ifdrop);
      seen_ = now;
    }
    return dropped_;
  }

  const SourceError& warning() const override { return notes_.warning(); }

  void Stop() override {
    stopped_ = true;
    pcap_breakloop(handle_.get());
  }

  void Note(std::string_view note) { notes_.Add(note); }

 private:
  // What is given at once; the system takes its own bytes back before, so that they are copied. Room for as many of the
  // longest is set aside, but takes no memory until it is used.
  static constexpr std::size_t kMostAtOnce = 64;

  /// Called by libpcap for each packet.
  static void Take(std::uint8_t* self, const pcap_pkthdr* header, const std::uint8_t* bytes) {
    auto& source = *reinterpret_cast<LiveInterface*>(self);
    source.lengths_.push_back(*header);
    source.copies_.insert(source.copies_.end(), bytes, bytes + header->caplen);
  }

  std::size_t Deliver(std::span<Packet> room) {
    std::size_t offset = 0;
    for (std::size_t i = 0; i < lengths_.size(); ++i) {
      Fill(lengths_[i], copies_.data() + offset, &room[i]);
      offset += lengths_[i].caplen;
    }
    return lengths_.size();
  }

  void Fill(const pcap_pkthdr& header, const std::uint8_t* bytes, Packet* packet) {
    const auto seconds = static_cast<std::uint64_t>(std::max<std::int64_t>(header.ts.tv_sec, 0));
    const auto fraction = static_cast<std::uint64_t>(std::max<std::int64_t>(header.ts.tv_usec, 0));
    packet->time = kUnixEpoch + seconds * kNanosecondsPerSecond + fraction * nanoseconds_per_unit_;
    packet->bytes = {bytes, header.caplen};
    packet->original_length = std::max(header.len, header.caplen);
    packet->link_type = link_type_;
    packet->interface_number = 0;
    bytes_ += header.caplen;
    if (!decodable_) [[unlikely]]
      notes_.AddUnknownLink(link_type_);
  }

  void Fail() { notes_.Add("capturing stopped: " + std::string(pcap_geterr(handle_.get()))); }

  SourceNotes notes_;
  Handle handle_;
  std::uint32_t link_type_;
  std::uint32_t nanoseconds_per_unit_;
  bool decodable_ = IsDecodable(link_type_);
  std::uint64_t bytes_ = 0;
  std::vector<pcap_pkthdr> lengths_;  // of the packets given last
  std::vector<std::uint8_t> copies_;  // their bytes, one after the other
  mutable pcap_stat seen_{};
  mutable std::uint64_t dropped_ = 0;
  std::atomic<bool> stopped_ = false;
  static_assert(std::atomic<bool>::is_always_lock_free, "signal handlers set it");
};

/// "eth0, lo", or nothing when the system tells none.
std::string InterfaceNames() {
  pcap_if_t* first = nullptr;
  std::array<char, PCAP_ERRBUF_SIZE> why{};
  if (pcap_findalldevs(&first, why.data()) != 0) return {};
  std::string names;
  for (const pcap_if_t* one = first; one; one = one->next) names += (names.empty() ? "" : ", ") + OneLine(one->name);
  pcap_freealldevs(first);
  return names;
}

struct Trouble {
  int code;
  Status status;
  const char* text;
};

constexpr Trouble kTroubles[] = {
    {PCAP_ERROR_PERM_DENIED, StatusFromError(kErrorAccessDenied),
     "may not be captured from; run as root, or give the program the capability CAP_NET_RAW"},
    {PCAP_ERROR_PROMISC_PERM_DENIED, StatusFromError(kErrorAccessDenied),
     "may not be put into promiscuous mode; run as root, or give the program the capability CAP_NET_ADMIN"},
    {PCAP_ERROR_IFACE_NOT_UP, E_FAIL, "is down; bring it up first"},
};

SourceError ActivationError(const std::string& name, pcap_t* handle, int code) {
  if (code == PCAP_ERROR_NO_SUCH_DEVICE) {
    const std::string names = InterfaceNames();
    return Refusal(StatusFromError(kErrorFileNotFound), name,
                   "there is no such interface" + (names.empty() ? names : "; there are: " + names));
  }
  for (const Trouble& one : kTroubles) {
    if (one.code == code) return Refusal(one.status, name, one.text);
  }
  const std::string_view detail = pcap_geterr(handle);
  return Refusal(E_FAIL, name, "cannot be captured from: " + OneLine(detail.empty() ? pcap_statustostr(code) : detail));
}

void Configure(pcap_t* handle, const InterfaceOptions& options) {
  // These fail for active handles only, and the precision where the system has microseconds.
  pcap_set_promisc(handle, options.promiscuous);
  pcap_set_snaplen(handle, static_cast<int>(std::clamp<std::uint32_t>(options.snap_length, 1, kLongestFrame)));
  pcap_set_immediate_mode(handle, options.immediate);
  pcap_set_timeout(handle, static_cast<int>(std::clamp<std::uint32_t>(options.timeout_milliseconds, 1, 60'000)));
  pcap_set_buffer_size(handle, static_cast<int>(std::clamp<std::uint32_t>(options.buffer_size, 1U << 16, 1U << 30)));
  pcap_set_tstamp_precision(handle, PCAP_TSTAMP_PRECISION_NANO);
}

/// Empty, or why the filter cannot be set.
std::string SetFilter(pcap_t* handle, const std::string& expression) {
  if (expression.empty()) return {};
  constexpr int kOptimize = 1;
  bpf_program program{};
  if (pcap_compile(handle, &program, expression.c_str(), kOptimize, PCAP_NETMASK_UNKNOWN) != 0) {
    return pcap_geterr(handle);
  }
  const int result = pcap_setfilter(handle, &program);
  pcap_freecode(&program);
  return result == 0 ? "" : pcap_geterr(handle);
}

/// Descriptors of this process; empty when the system does not tell.
std::vector<int> OpenDescriptors() {
  std::vector<int> open;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
  if (!folder) return open;
  while (const dirent* entry = readdir(folder.get())) {
    const int descriptor = std::atoi(entry->d_name);
    if (entry->d_name[0] != '.' && descriptor != dirfd(folder.get())) open.push_back(descriptor);
  }
  return open;
}

/// libpcap lets programs that are run inherit the interface; `before` is what was open without it.
void KeepToThisProcess(const std::vector<int>& before) {
  for (const int descriptor : OpenDescriptors()) {
    if (std::ranges::find(before, descriptor) == before.end()) fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
}

}  // namespace

std::unique_ptr<InterfaceSource> OpenInterface(const std::string& name, const InterfaceOptions& options,
                                               SourceError* error) {
  *error = {};
  std::array<char, PCAP_ERRBUF_SIZE> why{};
  const std::vector<int> open_before = OpenDescriptors();
  Handle handle(pcap_create(name.c_str(), why.data()));
  if (!handle) {
    *error = Refusal(E_FAIL, name, "cannot be captured from: " + OneLine(why.data()));
    return nullptr;
  }
  Configure(handle.get(), options);
  const int result = pcap_activate(handle.get());
  if (result < 0) {
    *error = ActivationError(name, handle.get(), result);
    return nullptr;
  }
  KeepToThisProcess(open_before);
  if (const std::string reason = SetFilter(handle.get(), options.filter); !reason.empty()) {
    *error = Refusal(E_INVALIDARG, name, "does not know the filter " + Brief(options.filter) + ": " + OneLine(reason));
    return nullptr;
  }
  const std::string activation_warning = result > 0 ? pcap_geterr(handle.get()) : "";
  auto source = std::make_unique<LiveInterface>(name, std::move(handle));
  if (result > 0) source->Note(activation_warning.empty() ? pcap_statustostr(result) : activation_warning);
  return source;
}

}  // namespace orvo
