#include "util/byte_stream.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::uint64_t kSizeLimit = std::numeric_limits<std::uint32_t>::max();

}  // namespace

CByteStream::~CByteStream() {
  if (owns_buffer_) std::free(buffer_);
}

bool CByteStream::IsAtEnd() const {
  return position_ >= length_;
}

bool CByteStream::Write(const void* source, std::uint32_t count) {
  if (count == 0) return false;
  if (owns_buffer_) Reserve(count);
  if (capacity_ - position_ < count) return false;
  if (source) CopyBytes(buffer_ + position_, source, count);
  position_ += count;
  length_ = std::max(length_, position_);
  return true;
}

bool CByteStream::Read(void* destination, std::uint32_t count) {
  if (!destination || count == 0) return false;
  if (length_ - position_ < count) {
    position_ = length_;
    return false;
  }
  CopyBytes(destination, buffer_ + position_, count);
  position_ += count;
  return true;
}

void CByteStream::Seek(std::uint32_t offset, std::uint32_t origin) {
  switch (origin) {
    case kFromStart: position_ = std::min(offset, length_); break;
    case kFromCurrent: position_ += std::min(offset, length_ - position_); break;
    case kFromEnd: position_ = length_ - std::min(offset, length_); break;
    default: break;
  }
}

void CByteStream::Reserve(std::uint32_t extra) {
  if (!owns_buffer_ || capacity_ - length_ >= extra) return;
  std::uint64_t needed = std::uint64_t{length_} + extra;
  if (needed > kSizeLimit) Raise(E_OUTOFMEMORY);
  std::uint64_t steps = (needed - capacity_ + growth_increment_ - 1) / growth_increment_;
  Reallocate(static_cast<std::uint32_t>(std::min(capacity_ + steps * growth_increment_, kSizeLimit)));
}

void CByteStream::SetLength(std::uint32_t length) {
  if (!owns_buffer_) return;
  if (length == 0) {
    std::free(buffer_);
    buffer_ = nullptr;
    position_ = length_ = capacity_ = 0;
    return;
  }
  if (length > length_) {
    Reserve(length - length_);
  } else if (length < length_ && capacity_ >= growth_increment_ && length <= capacity_ - growth_increment_) {
    std::uint64_t steps = (std::uint64_t{length} + growth_increment_ - 1) / growth_increment_;
    Reallocate(static_cast<std::uint32_t>(steps * growth_increment_));
  }
  length_ = length;
  position_ = std::min(position_, length_);
}

void CByteStream::Reallocate(std::uint32_t capacity) {
  void* buffer = std::realloc(buffer_, capacity);
  if (!buffer) Raise(E_OUTOFMEMORY);
  buffer_ = static_cast<std::uint8_t*>(buffer);
  capacity_ = capacity;
}

}  // namespace orvo
