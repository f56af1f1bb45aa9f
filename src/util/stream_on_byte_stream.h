#pragma once

#include "platform/stream.h"
#include "util/byte_stream.h"

namespace orvo {

/// A byte stream in memory behind the platform's stream interface, for one transfer: the holder lets somebody write,
/// seeks to the start, and lets somebody read. It belongs to the scope that made it; references to it are not counted
/// and keep nothing alive.
class CStreamOnCByteStream final : public IStream {
 public:
  CStreamOnCByteStream() : stream_(0x10000) {}

  Status QueryInterface(const Guid& iid, void** out) override;
  std::uint32_t AddRef() override { return 1; }
  std::uint32_t Release() override { return 1; }

  /// E_POINTER for a null destination; `read` may be null.
  Status Read(void* destination, std::uint32_t count, std::uint32_t* read) override;
  /// E_POINTER for a null source, STG_E_MEDIUMFULL when there is no memory; `written` may be null and is 0 on failure.
  Status Write(const void* source, std::uint32_t count, std::uint32_t* written) override;
  /// Moves within the stream, to its end at most; the low 32 bits of the move count. E_INVALIDARG for a move before the
  /// start, STG_E_INVALIDFUNCTION for an unknown origin; `new_position` may be null.
  Status Seek(std::int64_t move, std::uint32_t origin, std::uint64_t* new_position) override;
  /// E_INVALIDARG from 2^32 on, STG_E_MEDIUMFULL when there is no memory.
  Status SetSize(std::uint64_t size) override;

  Status CopyTo(IStream*, std::uint64_t, std::uint64_t*, std::uint64_t*) override { return E_NOTIMPL; }
  Status Commit(std::uint32_t) override { return E_NOTIMPL; }
  Status Revert() override { return E_NOTIMPL; }
  Status LockRegion(std::uint64_t, std::uint64_t, std::uint32_t) override { return E_NOTIMPL; }
  Status UnlockRegion(std::uint64_t, std::uint64_t, std::uint32_t) override { return E_NOTIMPL; }
  Status Stat(void*, std::uint32_t) override { return E_NOTIMPL; }
  Status Clone(IStream**) override { return E_NOTIMPL; }

  /// What lies behind the interface.
  const CByteStream& bytes() const { return stream_; }

 private:
  Status SetLength(std::uint64_t length);

  CByteStream stream_;
};

}  // namespace orvo
