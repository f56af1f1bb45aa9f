#pragma once

#include <cstdint>

#include "platform/unknown.h"

namespace orvo {

class ISequentialStream : public IUnknown {
 public:
  static constexpr Guid kIid = "0C733A30-2A1C-11CE-ADE5-00AA0044773D"_guid;

  /// Copies up to `count` bytes; S_OK also at the end, with 0 bytes read.
  virtual Status Read(void* destination, std::uint32_t count, std::uint32_t* read) = 0;
  virtual Status Write(const void* source, std::uint32_t count, std::uint32_t* written) = 0;

 protected:
  ~ISequentialStream() = default;
};

/// The platform's byte stream interface, slot for slot.
class IStream : public ISequentialStream {
 public:
  static constexpr Guid kIid = "0000000C-0000-0000-C000-000000000046"_guid;
  enum Origin : std::uint32_t { kFromStart = 0, kFromCurrent = 1, kFromEnd = 2 };

  virtual Status Seek(std::int64_t move, std::uint32_t origin, std::uint64_t* new_position) = 0;
  virtual Status SetSize(std::uint64_t size) = 0;
  virtual Status CopyTo(IStream* target, std::uint64_t count, std::uint64_t* read, std::uint64_t* written) = 0;
  virtual Status Commit(std::uint32_t flags) = 0;
  virtual Status Revert() = 0;
  virtual Status LockRegion(std::uint64_t offset, std::uint64_t count, std::uint32_t type) = 0;
  virtual Status UnlockRegion(std::uint64_t offset, std::uint64_t count, std::uint32_t type) = 0;
  virtual Status Stat(void* statistics, std::uint32_t flags) = 0;
  virtual Status Clone(IStream** clone) = 0;

 protected:
  ~IStream() = default;
};

}  // namespace orvo
