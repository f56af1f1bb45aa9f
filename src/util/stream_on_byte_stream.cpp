#include "util/stream_on_byte_stream.h"

#include <algorithm>
#include <limits>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::uint64_t kSizeLimit = std::numeric_limits<std::uint32_t>::max();

}  // namespace

Status CStreamOnCByteStream::QueryInterface(const Guid& iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (iid != IStream::kIid && iid != ISequentialStream::kIid && iid != IUnknown::kIid) return E_NOINTERFACE;
  *out = static_cast<IStream*>(this);
  AddRef();
  return S_OK;
}

Status CStreamOnCByteStream::Read(void* destination, std::uint32_t count, std::uint32_t* read) {
  if (!destination) return E_POINTER;
  std::uint32_t available = std::min(count, stream_.length() - stream_.position());
  stream_.Read(destination, available);
  if (read) *read = available;
  return S_OK;
}

Status CStreamOnCByteStream::Write(const void* source, std::uint32_t count, std::uint32_t* written) {
  if (!source) return E_POINTER;
  if (written) *written = 0;
  if (count == 0) return S_OK;
  std::uint32_t position = stream_.position();
  if (stream_.length() - position < count) {
    Status status = SetLength(std::uint64_t{position} + count);
    if (Failed(status)) return status;
  }
  // Not the byte stream's own Write, which would make room behind the length that was just set.
  CopyBytes(stream_.buffer() + position, source, count);
  stream_.Seek(position + count, CByteStream::kFromStart);
  if (written) *written = count;
  return S_OK;
}

Status CStreamOnCByteStream::Seek(std::int64_t move, std::uint32_t origin, std::uint64_t* new_position) {
  bool backwards = move < 0;
  auto bits = static_cast<std::uint64_t>(move);
  auto magnitude = static_cast<std::uint32_t>(backwards ? 0 - bits : bits);
  switch (origin) {
    case kFromStart:
      if (backwards) return E_INVALIDARG;
      stream_.Seek(magnitude, CByteStream::kFromStart);
      break;
    case kFromCurrent:
      if (!backwards) {
        stream_.Seek(magnitude, CByteStream::kFromCurrent);
      } else if (magnitude <= stream_.position()) {
        stream_.Seek(stream_.position() - magnitude, CByteStream::kFromStart);
      } else {
        return E_INVALIDARG;
      }
      break;
    case kFromEnd:
      // Nobody can stand beyond the end: a move forwards from there stays there.
      if (backwards && magnitude > stream_.length()) return E_INVALIDARG;
      stream_.Seek(move > 0 ? 0 : magnitude, CByteStream::kFromEnd);
      break;
    default: return STG_E_INVALIDFUNCTION;
  }
  if (new_position) *new_position = stream_.position();
  return S_OK;
}

Status CStreamOnCByteStream::SetSize(std::uint64_t size) {
  return size > kSizeLimit ? E_INVALIDARG : SetLength(size);
}

Status CStreamOnCByteStream::SetLength(std::uint64_t length) {
  if (length > kSizeLimit) return STG_E_MEDIUMFULL;
  Status status = Guard([&] { stream_.SetLength(static_cast<std::uint32_t>(length)); });
  return Failed(status) ? STG_E_MEDIUMFULL : S_OK;
}

}  // namespace orvo
