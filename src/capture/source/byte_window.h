#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "capture/source/byte_reader.h"

namespace orvo {

/// Looks ahead in a stream of bytes: whatever is asked for lies in one piece, and is copied only where a read ended in
/// the middle of it. Reads in large blocks, but never waits for more than was asked for, so that a pipe flows.
class ByteWindow {
 public:
  explicit ByteWindow(std::unique_ptr<ByteReader> reader);

  /// The next `count` bytes, which stay next; null when the stream ends before. The bytes stay where they are until
  /// more are asked for than left() tells, or until Skip. Memory grows to the largest `count`, which the caller bounds.
  const std::uint8_t* Look(std::size_t count) { return left() >= count ? begin_ : Fill(count); }
  /// Bytes that can be looked at without reading.
  std::size_t left() const { return static_cast<std::size_t>(end_ - begin_); }
  /// Moves on by at most left() bytes.
  void Take(std::size_t count) { begin_ += count; }
  /// Moves on by any count; false when the stream ends before.
  bool Skip(std::uint64_t count);

  /// From now on the stream is read ahead, while what is at hand is looked at; see MakeReadAheadReader for which may
  /// be.
  void ReadAhead();

  /// Bytes of the file behind the stream that have been used up, and all of them; see ByteReader.
  std::uint64_t position() const { return reader_->position(); }
  std::uint64_t size() const { return reader_->size(); }
  const std::string& problem() const { return reader_->problem(); }

 private:
  const std::uint8_t* Fill(std::size_t count);
  bool ReadMore();

  std::unique_ptr<ByteReader> reader_;
  std::unique_ptr<std::uint8_t[]> buffer_;
  std::size_t capacity_;
  const std::uint8_t* begin_;  // what has been read and not taken
  const std::uint8_t* end_;
};

}  // namespace orvo
