#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "capture/source/packet_source.h"

namespace orvo {

struct InterfaceOptions {
  /// Also take frames that are for other stations.
  bool promiscuous = true;
  /// Bytes kept of a frame, 1 to 262,144.
  std::uint32_t snap_length = 262'144;
  /// Give each packet when it arrives, at the cost of more work for each; otherwise packets are handed over in blocks,
  /// at the latest after `timeout_milliseconds`.
  bool immediate = false;
  std::uint32_t timeout_milliseconds = 100;
  /// Bytes that the system keeps while the reader is busy.
  std::uint32_t buffer_size = 16U << 20;
  /// Give only packets that this expression of pcap-filter(7) holds for, empty for all. The system filters, so that
  /// the others cost nothing and cannot be lost in their place.
  std::string filter{};
};

/// Packets of a network interface, as they come. Time stamps are the system's, in nanoseconds where it has them.
class InterfaceSource : public WaitingSource {
 public:
  /// Waits for packets. The end comes once Stop has been called or the interface failed, which warning() tells.
  std::size_t NextBatch(std::span<Packet> room) override = 0;
  /// The captured bytes so far; there is no total.
  SourceProgress progress() const override = 0;
  /// Packets that the system or the interface lost since the source was opened. Asks the system, by the reading thread.
  std::uint64_t dropped() const override = 0;

  /// A reader that waits returns at the latest after the time-out. Packets that still lie in the system's buffer are
  /// not given. May be called from a signal handler, too.
  void Stop() override = 0;
};

/// Begins to capture from an interface, named as the system names it ("eth0", or "any" for all). Null, and the cause
/// in `error`, for an interface that is not there (the message lists those that are), one that is down, a filter that
/// makes no sense for its packets, and when the process lacks the capability. That is needed for opening alone;
/// programs that the process runs do not inherit the interface.
std::unique_ptr<InterfaceSource> OpenInterface(const std::string& name, const InterfaceOptions& options,
                                               SourceError* error);

}  // namespace orvo
