#include "capture/source/gzip_reader.h"

#define ZLIB_CONST  // input that zlib only reads
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace orvo {
namespace {

constexpr std::size_t kMagic = 2;
/// The largest window, and members with gzip's header and checksum.
constexpr int kWindowBits = 15 + 16;

class GzipReader final : public ByteReader {
 public:
  explicit GzipReader(ByteWindow packed) : packed_(std::move(packed)) {
    if (inflateInit2(&stream_, kWindowBits) != Z_OK) throw std::bad_alloc();
  }
  GzipReader(const GzipReader&) = delete;
  GzipReader& operator=(const GzipReader&) = delete;
  ~GzipReader() override { inflateEnd(&stream_); }

  std::size_t Read(std::uint8_t* room, std::size_t size) override {
    stream_.next_out = room;
    stream_.avail_out = Fitting(size);
    const uInt offered = stream_.avail_out;
    while (!ended_ && stream_.avail_out == offered) Step();
    return offered - stream_.avail_out;
  }

  std::uint64_t position() const override { return packed_.position(); }
  std::uint64_t size() const override { return packed_.size(); }
  const std::string& problem() const override { return problem_; }

 private:
  static uInt Fitting(std::size_t size) {
    return static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
  }

  /// Unpacks some more, from what is at hand of the packed bytes.
  void Step() {
    if (between_members_ && !BeginMember()) return;
    const std::uint8_t* packed = packed_.Look(1);
    if (!packed) {
      return End(packed_.problem().empty() ? "its compressed data is cut off" : packed_.problem());
    }
    const uInt offered = Fitting(packed_.left());
    const uInt room = stream_.avail_out;
    stream_.next_in = packed;
    stream_.avail_in = offered;
    const int result = inflate(&stream_, Z_NO_FLUSH);
    packed_.Take(offered - stream_.avail_in);
    between_members_ = result == Z_STREAM_END;
    if (between_members_) return;
    const bool moved = stream_.avail_in != offered || stream_.avail_out != room;
    if (result != Z_OK || !moved) {
      End("its compressed data is damaged" + (stream_.msg ? ": " + std::string(stream_.msg) : std::string()));
    }
  }

  bool BeginMember() {
    const std::uint8_t* magic = packed_.Look(kMagic);
    if (!magic && packed_.left() == 0) {
      End(packed_.problem());
    } else if (!magic || magic[0] != 0x1F || magic[1] != 0x8B) {
      End("something else follows its compressed data");
    } else {
      between_members_ = false;
      inflateReset(&stream_);
    }
    return !ended_;
  }

  void End(std::string problem) {
    problem_ = std::move(problem);
    ended_ = true;
  }

  ByteWindow packed_;
  z_stream stream_{};
  std::string problem_;
  bool between_members_ = false;
  bool ended_ = false;
};

}  // namespace

bool IsGzip(const std::uint8_t* magic) {
  constexpr std::uint8_t kDeflate = 8;
  return magic[0] == 0x1F && magic[1] == 0x8B && magic[2] == kDeflate;
}

std::unique_ptr<ByteReader> MakeGzipReader(ByteWindow packed) {
  return std::make_unique<GzipReader>(std::move(packed));
}

}  // namespace orvo
