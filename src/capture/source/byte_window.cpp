#include "capture/source/byte_window.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "capture/source/read_ahead_reader.h"

namespace orvo {
namespace {

/// Large enough that the cost of a system call vanishes, and small enough to be still in the cache when it is read.
constexpr std::size_t kBlock = std::size_t{1} << 18;

}  // namespace

ByteWindow::ByteWindow(std::unique_ptr<ByteReader> reader)
    : reader_(std::move(reader)),
      buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(kBlock)),
      capacity_(kBlock),
      begin_(buffer_.get()),
      end_(begin_) {}

void ByteWindow::ReadAhead() {
  reader_ = MakeReadAheadReader(std::move(reader_));
}

const std::uint8_t* ByteWindow::Fill(std::size_t count) {
  const std::size_t kept = left();
  if (count > capacity_) {
    auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(count);
    std::memcpy(larger.get(), begin_, kept);
    buffer_ = std::move(larger);
    capacity_ = count;
  } else {
    std::memmove(buffer_.get(), begin_, kept);
  }
  begin_ = buffer_.get();
  end_ = begin_ + kept;
  while (left() < count) {
    if (!ReadMore()) return nullptr;
  }
  return begin_;
}

bool ByteWindow::ReadMore() {
  const std::size_t used = left();
  const std::size_t count = reader_->Read(buffer_.get() + used, capacity_ - used);
  end_ += count;
  return count != 0;
}

bool ByteWindow::Skip(std::uint64_t count) {
  while (count > left()) {
    count -= left();
    begin_ = end_ = buffer_.get();
    if (!ReadMore()) return false;
  }
  Take(static_cast<std::size_t>(count));
  return true;
}

}  // namespace orvo
