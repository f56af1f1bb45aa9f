#include "capture/classify/ndpi_module.h"

#include <ndpi_api.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>

namespace orvo {
namespace {

/// nDPI's length of a packet has 16 bits.
constexpr std::size_t kMaxDatagram = 65535;
/// Zeros behind what is inspected, for readers that look a few bytes too far.
constexpr std::size_t kSlack = 256;
constexpr std::size_t kIpv4Header = 20;
constexpr std::size_t kIpv6Header = 40;

/// Readers that take the bytes of others for theirs: a few small numbers, TFTP's among them, satisfy them. What their
/// protocols are known by elsewhere, such as names of servers, still counts.
constexpr std::array<unsigned, 2> kCredulous{NDPI_PROTOCOL_NOE, NDPI_PROTOCOL_SKYPE_TEAMS};

/// Where the present thread's allocations are counted; null for nowhere.
thread_local std::size_t* g_counter = nullptr;

/// What stands before every block that nDPI gets.
struct alignas(std::max_align_t) BlockHeader {
  std::size_t size;
  std::size_t* counter;
};

void* Allocate(std::size_t size) {
  auto* header = static_cast<BlockHeader*>(std::calloc(1, sizeof(BlockHeader) + size));
  if (!header) return nullptr;
  *header = {size, g_counter};
  if (header->counter) *header->counter += size;
  return header + 1;
}

void Free(void* block) {
  if (!block) return;
  BlockHeader* header = static_cast<BlockHeader*>(block) - 1;
  if (header->counter) *header->counter -= header->size;
  std::free(header);
}

void Silence(std::uint32_t, void*, ndpi_log_level_t, const char*, const char*, unsigned, const char*, ...) {}

/// nDPI makes and ends one module at a time.
std::mutex& ModulesMutex() {
  static std::mutex mutex;
  return mutex;
}

/// The module that told the names, for whoever needs one first.
std::unique_ptr<NdpiModule>& Spare() {
  static std::unique_ptr<NdpiModule> spare;
  return spare;
}

NdpiModule::Finding FindingOf(const ndpi_protocol& found) {
  if (found.master_protocol == NDPI_PROTOCOL_UNKNOWN) return {found.app_protocol, 0};
  if (found.app_protocol == found.master_protocol) return {found.master_protocol, 0};
  return {found.master_protocol, found.app_protocol};
}

/// Makes an IP header say that the datagram ends where the capture does.
void SetLength(std::uint8_t* datagram, std::size_t size) {
  bool ipv4 = (datagram[0] >> 4) == 4;
  std::size_t length = ipv4 ? size : size - kIpv6Header;
  std::uint8_t* field = datagram + (ipv4 ? 2 : 4);
  field[0] = static_cast<std::uint8_t>(length >> 8);
  field[1] = static_cast<std::uint8_t>(length);
}

}  // namespace

/// Counts what nDPI allocates on this thread while it stands, as a flow's.
class NdpiModule::Counting {
 public:
  explicit Counting(NdpiModule* module) { g_counter = &module->flow_bytes_; }
  Counting(const Counting&) = delete;
  Counting& operator=(const Counting&) = delete;
  ~Counting() { g_counter = nullptr; }
};

void NdpiModule::FlowDeleter::operator()(ndpi_flow_struct* flow) const {
  ndpi_free_flow(flow);
}

NdpiModule::NdpiModule() : datagram_(kMaxDatagram + kSlack) {
  set_ndpi_malloc(Allocate);
  set_ndpi_free(Free);
  set_ndpi_flow_malloc(Allocate);
  set_ndpi_flow_free(Free);
  module_ = ndpi_init_detection_module(ndpi_no_prefs);
  if (!module_) throw std::bad_alloc();
  set_ndpi_debug_function(module_, Silence);
  NDPI_PROTOCOL_BITMASK all;
  NDPI_BITMASK_SET_ALL(all);
  // The library's own macro for this does not compile without a warning.
  constexpr unsigned kBits = 32;
  for (unsigned number : kCredulous) all.fds_bits[number / kBits] &= ~(1U << (number % kBits));
  ndpi_set_protocol_detection_bitmask2(module_, &all);
  ndpi_finalize_initialization(module_);
}

NdpiModule::~NdpiModule() {
  std::lock_guard lock(ModulesMutex());
  ndpi_exit_detection_module(module_);
}

std::unique_ptr<NdpiModule> NdpiModule::Make() {
  std::lock_guard lock(ModulesMutex());
  return Spare() ? std::move(Spare()) : std::unique_ptr<NdpiModule>(new NdpiModule);
}

std::vector<std::string> NdpiModule::Names() {
  std::lock_guard lock(ModulesMutex());
  if (!Spare()) Spare().reset(new NdpiModule);
  ndpi_detection_module_struct* module = Spare()->module_;
  std::vector<std::string> names;
  for (std::uint32_t i = 0; i < ndpi_get_num_supported_protocols(module); ++i) {
    names.emplace_back(ndpi_get_proto_name(module, static_cast<std::uint16_t>(i)));
  }
  return names;
}

void NdpiModule::Prefetch(const ndpi_flow_struct* flow) {
  constexpr std::size_t kCacheLine = 64;
  static const std::size_t size = ndpi_detection_get_sizeof_ndpi_flow_struct();
  if (!flow) return;
  for (std::size_t at = 0; at < size; at += kCacheLine) {
    __builtin_prefetch(reinterpret_cast<const char*>(flow) + at, 1);
  }
}

NdpiModule::FlowPtr NdpiModule::NewFlow() {
  Counting counting(this);
  auto* flow = static_cast<ndpi_flow_struct*>(ndpi_flow_malloc(ndpi_detection_get_sizeof_ndpi_flow_struct()));
  if (!flow) throw std::bad_alloc();
  return FlowPtr(flow);
}

NdpiModule::Finding NdpiModule::Inspect(ndpi_flow_struct* flow, Bytes datagram, std::uint64_t time) {
  std::size_t size = std::min(datagram.size(), kMaxDatagram);
  if (size < kIpv4Header || (datagram[0] >> 4 != 4 && size < kIpv6Header)) return {};
  // nDPI sees no further than this header, and calls what stands behind it IPsec, whatever that is.
  if (datagram[datagram[0] >> 4 == 4 ? 9 : 6] == IPPROTO_AH) return {};
  // A copy: some of nDPI's readers write into the packet, and some look beyond its end.
  std::copy_n(datagram.begin(), size, datagram_.begin());
  std::fill_n(datagram_.begin() + static_cast<std::ptrdiff_t>(size), kSlack, std::uint8_t{0});
  SetLength(datagram_.data(), size);
  Counting counting(this);
  return FindingOf(ndpi_detection_process_packet(module_, flow, datagram_.data(), static_cast<std::uint16_t>(size),
                                                 time / 1'000'000));
}

NdpiModule::Finding NdpiModule::Guess(ndpi_flow_struct* flow) {
  Counting counting(this);
  std::uint8_t guessed = 0;
  return FindingOf(ndpi_detection_giveup(module_, flow, 1, &guessed));
}

}  // namespace orvo
