#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/object.h"
#include "platform/stream.h"

namespace orvo::test {

/// A stream over a string; at most `step` bytes at a time, and no more than `room` in all.
class MemoryStream final : public Object<IStream> {
 public:
  std::string bytes;
  std::size_t position = 0;
  std::size_t step = 1 << 20;
  std::size_t room = 1 << 30;

  Status Read(void* destination, std::uint32_t count, std::uint32_t* read) override {
    std::size_t taken = std::min({std::size_t{count}, step, bytes.size() - position});
    std::memcpy(destination, bytes.data() + position, taken);
    position += taken;
    if (read) *read = static_cast<std::uint32_t>(taken);
    return S_OK;
  }
  Status Write(const void* source, std::uint32_t count, std::uint32_t* written) override {
    std::size_t taken = std::min({std::size_t{count}, step, room - bytes.size()});
    bytes.append(static_cast<const char*>(source), taken);
    position = bytes.size();
    if (written) *written = static_cast<std::uint32_t>(taken);
    return S_OK;
  }
  Status Seek(std::int64_t, std::uint32_t, std::uint64_t*) override { return E_NOTIMPL; }
  Status SetSize(std::uint64_t) override { return E_NOTIMPL; }
  Status CopyTo(IStream*, std::uint64_t, std::uint64_t*, std::uint64_t*) override { return E_NOTIMPL; }
  Status Commit(std::uint32_t) override { return E_NOTIMPL; }
  Status Revert() override { return E_NOTIMPL; }
  Status LockRegion(std::uint64_t, std::uint64_t, std::uint32_t) override { return E_NOTIMPL; }
  Status UnlockRegion(std::uint64_t, std::uint64_t, std::uint32_t) override { return E_NOTIMPL; }
  Status Stat(void*, std::uint32_t) override { return E_NOTIMPL; }
  Status Clone(IStream**) override { return E_NOTIMPL; }
};

}  // namespace orvo::test
