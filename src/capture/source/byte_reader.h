#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvo {

/// A stream of bytes that comes from a file, as it stands there or unpacked. Used by one thread at a time.
class ByteReader {
 public:
  virtual ~ByteReader() = default;

  /// Gives the next bytes, at most `size` of them and fewer when fewer are at hand; `size` is not 0. Gives 0 at the
  /// end, and from then on; problem() tells whether that end was a sound one.
  virtual std::size_t Read(std::uint8_t* room, std::size_t size) = 0;
  /// Bytes of the file itself that have been used up, whatever they unpacked to.
  virtual std::uint64_t position() const = 0;
  /// Bytes of the file itself; 0 when nobody knows, as for a pipe.
  virtual std::uint64_t size() const = 0;
  /// Why the stream ended too early, as part of a sentence; empty when it did not.
  virtual const std::string& problem() const = 0;
};

}  // namespace orvo
