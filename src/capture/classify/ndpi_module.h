#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "capture/source/packet.h"

struct ndpi_detection_module_struct;
struct ndpi_flow_struct;

namespace orvo {

/// One detection module of nDPI and the flows that it looks at. Belongs to one thread at a time, which need not be the
/// one that made it. nDPI's allocations are counted: see flow_bytes.
class NdpiModule {
 public:
  /// Numbers of nDPI's; `protocol` is 0 when nothing was recognised, `service` when nothing more is known.
  struct Finding {
    std::uint16_t protocol = 0;  ///< what is spoken, for example TLS
    std::uint16_t service = 0;   ///< what it is spoken to, for example a mail service
    bool known() const { return protocol != 0; }
  };

  struct FlowDeleter {
    void operator()(ndpi_flow_struct* flow) const;
  };
  /// A flow that nDPI looks at. Its module must outlive it.
  using FlowPtr = std::unique_ptr<ndpi_flow_struct, FlowDeleter>;

  /// A new module, which takes about 4 MB and 20 ms. Raises std::bad_alloc without memory.
  static std::unique_ptr<NdpiModule> Make();
  /// The names of all protocols by nDPI's numbers; the first is that of no protocol. Any thread may ask.
  static std::vector<std::string> Names();

  NdpiModule(const NdpiModule&) = delete;
  NdpiModule& operator=(const NdpiModule&) = delete;
  ~NdpiModule();

  /// Begins to fetch a flow that will be looked at; null for none.
  static void Prefetch(const ndpi_flow_struct* flow);

  /// Raises std::bad_alloc without memory.
  FlowPtr NewFlow();
  /// Looks at an IP datagram of the flow, as far as it was captured; its header is there in full. `time` is in
  /// nanoseconds.
  Finding Inspect(ndpi_flow_struct* flow, Bytes datagram, std::uint64_t time);
  /// What the packets so far suggest, ports and address ranges included. Nothing may be inspected after that.
  Finding Guess(ndpi_flow_struct* flow);

  /// What the flows have allocated and still hold.
  std::size_t flow_bytes() const { return flow_bytes_; }

 private:
  class Counting;

  NdpiModule();

  std::size_t flow_bytes_ = 0;
  std::vector<std::uint8_t> datagram_;
  ndpi_detection_module_struct* module_ = nullptr;
};

}  // namespace orvo
