#include "pdf/pdf_memory.h"

#include <algorithm>
#include <cstddef>

namespace orvo {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
constexpr std::size_t kAlignment = alignof(std::max_align_t);

thread_local PdfMemory* in_use = nullptr;

}  // namespace

PdfMemory::Use::Use(PdfMemory* memory) : outer_(in_use) {
  in_use = memory;
}

PdfMemory::Use::~Use() {
  in_use = outer_;
}

void* PdfMemory::Take(unsigned int bytes) noexcept {
  try {
    if (in_use->gate_ && !in_use->gate_(bytes)) return nullptr;
    return in_use->Cut(bytes);
  } catch (...) {
    return nullptr;  // the library is C
  }
}

void PdfMemory::GiveBack(void* /*piece*/) noexcept {}

void* PdfMemory::Cut(std::size_t bytes) {
  bytes = std::max((bytes + kAlignment - 1) / kAlignment * kAlignment, kAlignment);
  if (bytes > left_) {
    // A piece that is large itself gets a block of its own, and what is left of the current one stays in use.
    const bool is_large = bytes > kBlock / 4;
    const std::size_t size = is_large ? bytes : kBlock;
    std::unique_ptr<std::byte[]>& block = blocks_.emplace_back(std::make_unique_for_overwrite<std::byte[]>(size));
    if (is_large) return block.get();
    next_ = block.get();
    left_ = size;
  }
  left_ -= bytes;
  return std::exchange(next_, next_ + bytes);
}

}  // namespace orvo
