#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "capture/source/packet_source.h"

namespace orvo {

/// A filter expression in the language of pcap-filter(7). Used by one thread at a time.
class PacketFilter {
 public:
  /// Null, and libpcap's reason in `error`, for an expression that makes sense for no link type. One with names of
  /// hosts asks the system's name service for them.
  static std::unique_ptr<PacketFilter> Make(const std::string& expression, SourceError* error);
  PacketFilter(const PacketFilter&) = delete;
  PacketFilter& operator=(const PacketFilter&) = delete;
  ~PacketFilter();

  /// Whether the expression holds for the packet. It holds for no packet of a link type that it makes no sense for
  /// (such as a question about wireless frames on Ethernet); warning() names that link type then.
  bool Matches(const Packet& packet);
  const SourceError& warning() const;

 private:
  struct Parts;
  explicit PacketFilter(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

/// Those packets of a source that a filter lets through. The others are as if they had not been captured.
class FilteredSource final : public PacketSource {
 public:
  /// Both stay the caller's and outlive this object; the source's own warning is asked of it.
  FilteredSource(PacketSource* source, PacketFilter* filter) : source_(source), filter_(filter) {}

  bool Next(Packet* packet) override {
    while (source_->Next(packet)) {
      if (filter_->Matches(*packet)) return true;
    }
    return false;
  }
  std::size_t NextBatch(std::span<Packet> room) override {
    for (;;) {
      const std::span<Packet> all = room.first(source_->NextBatch(room));
      if (all.empty()) return 0;
      const auto end =
          std::remove_if(all.begin(), all.end(), [this](const Packet& packet) { return !filter_->Matches(packet); });
      if (end != all.begin()) return static_cast<std::size_t>(end - all.begin());
    }
  }
  SourceProgress progress() const override { return source_->progress(); }
  /// The source's: nobody knows which of them the filter would have let through.
  std::uint64_t dropped() const override { return source_->dropped(); }
  /// The filter's.
  const SourceError& warning() const override { return filter_->warning(); }

 private:
  PacketSource* source_;
  PacketFilter* filter_;
};

}  // namespace orvo
