#include "capture/source/zstd_reader.h"

#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

namespace orvo {
namespace {

constexpr int kWindowLogMax = 27;
/// What the shortest header of a frame needs.
constexpr std::size_t kFrameStart = 5;

/// What frames are recommended to keep to (RFC 8878 section 3.1.1.1.2), with the room that the library takes beside it.
constexpr std::size_t kUsualMemory = (std::size_t{8} + 1) << 20;

/// A permission to take more than that, of which there are few: files that are read side by side take it all at once.
class LargeWindow {
 public:
  LargeWindow() = default;
  LargeWindow(const LargeWindow&) = delete;
  LargeWindow& operator=(const LargeWindow&) = delete;
  ~LargeWindow() { Release(); }

  /// False when no more are to be had.
  bool Take() {
    if (taken_) return true;
    if (in_use_.fetch_add(1) < kMostLargeWindows) return taken_ = true;
    in_use_.fetch_sub(1);
    return false;
  }
  void Release() {
    if (taken_) in_use_.fetch_sub(1);
    taken_ = false;
  }

 private:
  static inline std::atomic<int> in_use_{0};
  bool taken_ = false;
};

struct FreeStream {
  void operator()(ZSTD_DStream* stream) const { ZSTD_freeDStream(stream); }
};

class ZstdReader final : public ByteReader {
 public:
  explicit ZstdReader(ByteWindow packed) : packed_(std::move(packed)), stream_(ZSTD_createDStream()) {
    if (!stream_ || ZSTD_isError(ZSTD_DCtx_setParameter(stream_.get(), ZSTD_d_windowLogMax, kWindowLogMax))) {
      throw std::bad_alloc();
    }
  }

  std::size_t Read(std::uint8_t* room, std::size_t size) override {
    ZSTD_outBuffer out{room, size, 0};
    while (!ended_ && out.pos == 0) Step(&out);
    return out.pos;
  }

  std::uint64_t position() const override { return packed_.position(); }
  std::uint64_t size() const override { return packed_.size(); }
  const std::string& problem() const override { return problem_; }

 private:
  /// Unpacks some more, one block at most: of a call that fails, nothing is kept.
  void Step(ZSTD_outBuffer* out) {
    const std::uint8_t* packed = packed_.Look(1);
    // What was unpacked and found no room comes out without further input.
    if (!packed && !pending_) return EndOfInput();
    ZSTD_inBuffer in{packed, packed ? std::min(packed_.left(), wanted_) : 0, 0};
    const std::size_t result = ZSTD_decompressStream(stream_.get(), out, &in);
    if (ZSTD_isError(result)) return EndWithError(result);
    if (ZSTD_sizeof_DStream(stream_.get()) > kUsualMemory && !large_.Take()) return EndForMemory();
    packed_.Take(in.pos);
    within_frame_ = result != 0;
    wanted_ = within_frame_ ? result : kFrameStart;
    pending_ = within_frame_ && out->pos == out->size;
    if (packed && in.pos == 0 && out->pos == 0) End("its compressed data is damaged");
  }

  void EndOfInput() {
    if (!packed_.problem().empty()) return End(packed_.problem());
    End(within_frame_ ? "its compressed data is cut off" : "");
  }

  void EndWithError(std::size_t result) {
    if (ZSTD_getErrorCode(result) == ZSTD_error_frameParameter_windowTooLarge) {
      return End("its compressed data looks back on more than 128 MB; unpack it by \"zstd -d --long=31\" first");
    }
    End(std::string("its compressed data is damaged: ") + ZSTD_getErrorName(result));
  }

  void EndForMemory() {
    End("its compressed data looks back on more than 8 MB, as that of " + std::to_string(kMostLargeWindows) +
        " other files does that are read at the same time; unpack it by \"zstd -d --long=27\" first");
  }

  /// What comes in files one after the other need not be kept side by side.
  void End(std::string problem) {
    problem_ = std::move(problem);
    ended_ = true;
    stream_.reset();
    large_.Release();
  }

  ByteWindow packed_;
  std::unique_ptr<ZSTD_DStream, FreeStream> stream_;
  LargeWindow large_;
  std::string problem_;
  std::size_t wanted_ = kFrameStart;  // bytes up to the next block's end
  bool within_frame_ = false;
  bool pending_ = false;  // the last step filled all room, so there may be more
  bool ended_ = false;
};

}  // namespace

bool IsZstd(const std::uint8_t* magic) {
  const std::uint32_t number =
      magic[0] | (std::uint32_t{magic[1]} << 8) | (std::uint32_t{magic[2]} << 16) | (std::uint32_t{magic[3]} << 24);
  return number == ZSTD_MAGICNUMBER || (number & ZSTD_MAGIC_SKIPPABLE_MASK) == ZSTD_MAGIC_SKIPPABLE_START;
}

std::unique_ptr<ByteReader> MakeZstdReader(ByteWindow packed) {
  return std::make_unique<ZstdReader>(std::move(packed));
}

}  // namespace orvo
