#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "capture/source/packet.h"
#include "platform/status.h"

namespace orvo {

/// Why a source cannot be opened, or what was wrong with its end: a status, and one line of UTF-8 that names the cause
/// and what can be done.
struct SourceError {
  Status status = S_OK;
  std::string message;
};

struct SourceProgress {
  std::uint64_t bytes_read = 0;
  std::uint64_t bytes_total = 0;  ///< 0 when nobody knows, as for a pipe
};

/// Where packets come from. Used by one thread at a time.
class PacketSource {
 public:
  virtual ~PacketSource() = default;

  /// The next packet; false at the end, after which warning() tells whether the end was a sound one.
  virtual bool Next(Packet* packet) = 0;
  /// The next packets, as many as are at hand and find room; gives how many, 0 at the end only. Waits for the first
  /// alone. All of their bytes are valid until more packets are asked for. `room` is not empty.
  virtual std::size_t NextBatch(std::span<Packet> room) { return Next(room.data()) ? 1 : 0; }
  virtual SourceProgress progress() const = 0;
  /// Packets that the source saw but could not deliver.
  virtual std::uint64_t dropped() const = 0;
  /// What was wrong with the packets read so far; S_OK and an empty message when nothing was.
  virtual const SourceError& warning() const = 0;
};

/// A source whose reader may wait long for the next packet, so that somebody else has to be able to end that.
class WaitingSource : public PacketSource {
 public:
  /// Ends the reading: a reader that waits gets its end soon, and every later one at once. May be called from any
  /// thread.
  virtual void Stop() = 0;
};

}  // namespace orvo
