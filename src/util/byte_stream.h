#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orvo {

/// Copies bytes; the sizes of single numbers become one load and one store.
inline void CopyBytes(void* destination, const void* source, std::size_t count) {
  switch (count) {
    case 1: std::memcpy(destination, source, 1); break;
    case 2: std::memcpy(destination, source, 2); break;
    case 4: std::memcpy(destination, source, 4); break;
    default: std::memcpy(destination, source, count);
  }
}

/// A growable buffer of at most 4 GiB - 1 bytes with one position for reading and writing. The position never stands
/// beyond the length; bytes beyond the length are undefined. It grows and shrinks in steps, not by doubling.
class CByteStream {
 public:
  enum Origin : std::uint32_t { kFromStart = 0, kFromCurrent = 1, kFromEnd = 2 };

  CByteStream() = default;
  /// Grows in steps of `growth_increment` bytes, which must not be 0.
  explicit CByteStream(std::uint32_t growth_increment) : growth_increment_(growth_increment) {}
  /// Works on the caller's bytes, which must outlive it: empty at first, it ends where they end.
  CByteStream(std::uint8_t* buffer, std::uint32_t capacity)
      : capacity_(capacity), buffer_(buffer), owns_buffer_(false) {}
  CByteStream(const CByteStream&) = delete;
  CByteStream& operator=(const CByteStream&) = delete;

  /// Frees a buffer of its own.
  virtual ~CByteStream();
  virtual bool IsAtEnd() const;
  /// Writes `count` bytes at the position; a null source skips over what is there. False for no bytes, and when they do
  /// not fit into the caller's bytes. Raises E_OUTOFMEMORY, and nothing has changed then.
  virtual bool Write(const void* source, std::uint32_t count);
  /// Reads exactly `count` bytes. When fewer are left nothing is copied, the position moves to the end, and the result
  /// is false; false as well, without a move, for a null destination and for no bytes.
  virtual bool Read(void* destination, std::uint32_t count);

  /// Moves the position, to the end at most. From the end the offset counts backwards, to the start at most. An unknown
  /// origin changes nothing.
  void Seek(std::uint32_t offset, std::uint32_t origin);
  /// Makes room for `extra` bytes behind the length. Without effect on the caller's bytes.
  /// Raises E_OUTOFMEMORY, and nothing has changed then.
  void Reserve(std::uint32_t extra);
  /// Cuts or extends (by undefined bytes); 0 frees the buffer. Without effect on the caller's bytes.
  /// Raises E_OUTOFMEMORY, and nothing has changed then.
  void SetLength(std::uint32_t length);

  std::uint32_t position() const { return position_; }
  std::uint32_t length() const { return length_; }
  std::uint32_t capacity() const { return capacity_; }
  std::uint8_t* buffer() const { return buffer_; }

 private:
  void Reallocate(std::uint32_t capacity);

  std::uint32_t position_ = 0;
  std::uint32_t growth_increment_ = 1024;
  std::uint32_t length_ = 0;
  std::uint32_t capacity_ = 0;
  std::uint8_t* buffer_ = nullptr;
  bool owns_buffer_ = true;
};

}  // namespace orvo
