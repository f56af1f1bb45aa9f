// Captures that are compressed: what comes out of them, and what damage and lies of the packed bytes cost.

#include <gmock/gmock.h>
#include <sys/resource.h>
#define ZLIB_CONST  // input that zlib only reads
#include <zlib.h>
#include <zstd.h>

#include <algorithm>

#include "capture/source/zstd_reader.h"
#include "tests/capture/capture_bytes.h"

namespace orvo::test {
namespace {

using testing::HasSubstr;

Buffer Gzip(const Buffer& plain) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
  Buffer packed(deflateBound(&stream, plain.size()));
  stream.next_in = plain.data();
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = packed.data();
  stream.avail_out = static_cast<uInt>(packed.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

Buffer Zstd(const Buffer& plain) {
  ZSTD_CCtx* context = ZSTD_createCCtx();
  ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
  Buffer packed(ZSTD_compressBound(plain.size()));
  ZSTD_inBuffer in{plain.data(), plain.size(), 0};
  ZSTD_outBuffer out{packed.data(), packed.size(), 0};
  EXPECT_EQ(ZSTD_compressStream2(context, &out, &in, ZSTD_e_end), 0U);
  ZSTD_freeCCtx(context);
  packed.resize(out.pos);
  return packed;
}

Buffer Skippable(const Buffer& bytes) {
  return Le32(0x184D2A53) + Le32(static_cast<std::uint32_t>(bytes.size())) + bytes;
}

/// Packets with changing contents, 1000 bytes each.
Buffer SomeCapture(std::size_t packets) {
  const CaptureBytes file;
  Buffer bytes = file.PcapHeader();
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < packets; ++i) {
    Buffer frame(1000);
    for (std::uint8_t& byte : frame) byte = static_cast<std::uint8_t>((random = random * 1664525 + 1013904223) >> 29);
    const Buffer record = file.PcapRecord(static_cast<std::uint32_t>(i), 0, frame);
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  return bytes;
}

Buffer First(const Buffer& bytes, std::size_t count) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}
Buffer Behind(const Buffer& bytes, std::size_t count) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end()};
}

using Compress = Buffer (*)(const Buffer&);
constexpr Compress kCompressors[] = {Gzip, Zstd};

TEST(CompressedFileTest, GivesWhatThePlainFileGives) {
  const CaptureFolder folder;
  const Buffer plain = SomeCapture(5000);  // several blocks of reading
  const ReadCapture expected(folder.Write(plain));
  ASSERT_EQ(expected.packets.size(), 5000U);
  for (Compress compress : kCompressors) {
    const Buffer whole = compress(plain);
    const Buffer parts = compress(First(plain, 20)) + compress({}) + compress(Behind(plain, 20));
    for (const Buffer& packed : {whole, parts}) {
      const ReadCapture read(folder.Write(packed));
      ASSERT_EQ(read.packets.size(), 5000U) << read.error.message << read.warning.message;
      for (std::size_t i = 0; i < 5000; ++i) ASSERT_EQ(read.packets[i].bytes, expected.packets[i].bytes) << i;
      EXPECT_EQ(read.warning.message, "");
      EXPECT_EQ(read.progress.bytes_total, packed.size()) << "progress is the packed file's";
      EXPECT_EQ(read.progress.bytes_read, packed.size());
    }
  }
  const Buffer skipped = Skippable(Zeros(7)) + Zstd(plain) + Skippable({}) + Skippable(Zeros(3));
  const ReadCapture read(folder.Write(skipped));
  EXPECT_EQ(read.packets.size(), 5000U) << read.error.message;
  EXPECT_EQ(read.warning.message, "");
}

TEST(CompressedFileTest, DamageKeepsWhatCouldBeRead) {
  const CaptureFolder folder;
  const Buffer plain = SomeCapture(1000);
  for (Compress compress : kCompressors) {
    const Buffer packed = compress(plain);
    Buffer wrong_checksum = packed;
    wrong_checksum[wrong_checksum.size() - (compress == Gzip ? 8 : 4)] ^= 1;
    Buffer flipped = packed;
    for (std::size_t i = flipped.size() / 2; i < flipped.size() / 2 + 16; ++i) flipped[i] ^= 0x5A;
    struct {
      const char* what;
      Buffer bytes;
      std::size_t least, most;
      const char* warning;
    } const cases[] = {
        {"cut off", First(packed, packed.size() * 3 / 4), 500, 800, "its compressed data is cut off"},
        {"cut off in the checksum", First(packed, packed.size() - 1), 1000, 1000, "its compressed data is cut off"},
        {"a wrong checksum", wrong_checksum, 1000, 1000, "its compressed data is damaged"},
        {"damaged in the middle", flipped, 300, 1000, "its compressed data is damaged"},
        {"followed by something else", packed + Buffer(50, 'x'), 1000, 1000, "compressed data"},
        {"followed by a single byte", packed + Buffer{0x1F}, 1000, 1000, "compressed data"},
        {"a sound stream of a capture that is cut off", compress(First(plain, plain.size() - 5)), 999, 999,
         "in the middle of a packet"},
    };
    for (const auto& one : cases) {
      const ReadCapture read(folder.Write(one.bytes));
      EXPECT_TRUE(read.opened) << one.what << ": " << read.error.message;
      EXPECT_GE(read.packets.size(), one.least) << one.what << read.warning.message;
      EXPECT_LE(read.packets.size(), one.most) << one.what;
      EXPECT_THAT(read.warning.message, HasSubstr(one.warning)) << one.what;
      EXPECT_TRUE(read.ended) << one.what;
    }
  }
}

TEST(CompressedFileTest, EveryPrefixAndEveryFlippedByteEnds) {
  const CaptureFolder folder;
  const CaptureBytes file;
  const Buffer plain = file.PcapHeader() + file.PcapRecord(1, 2, Zeros(30)) + file.PcapRecord(1, 3, Zeros(40));
  for (Compress compress : kCompressors) {
    const Buffer bytes = compress(First(plain, 30)) + compress(Behind(plain, 30));
    for (std::size_t at = 1; at < bytes.size(); ++at) {
      const ReadCapture prefix(folder.Write(First(bytes, at)));
      EXPECT_LE(prefix.packets.size(), 2U);
      EXPECT_TRUE(!prefix.opened || Failed(prefix.warning.status) || prefix.packets.size() < 2) << at;
      Buffer flipped = bytes;
      flipped[at] ^= 0x81;
      EXPECT_LE(ReadCapture(folder.Write(flipped)).packets.size(), 100U) << at;
    }
  }
}

TEST(CompressedFileTest, RefusesWhatUnpacksToNoCapture) {
  const CaptureFolder folder;
  const Buffer letter(100, 'x');
  for (Compress compress : kCompressors) {
    EXPECT_THAT(ReadCapture(folder.Write(compress(letter))).error.message, HasSubstr("is not a capture file"));
    EXPECT_THAT(ReadCapture(folder.Write(compress({}))).error.message, HasSubstr("is not a capture file"));
    EXPECT_THAT(ReadCapture(folder.Write(First(compress(letter), 12))).error.message, HasSubstr("cut off"));
  }
  // Packed in a way that is not read: said, as its user takes it for a capture.
  const Buffer bzip2 = {'B', 'Z', 'h', '9', '1', 'A'};
  EXPECT_THAT(ReadCapture(folder.Write(bzip2)).error.message, HasSubstr("is packed by bzip2; unpack it first"));
}

TEST(CompressedFileTest, ABombCostsNoMemory) {
  const CaptureFolder folder;
  const CaptureBytes file;
  // One block that nothing uses, of 256 MiB: it is passed over, not kept.
  constexpr std::uint32_t kMebibytes = 256;
  const Buffer head = file.Section() + file.Interface() + file.U32(0x0BAD) + file.U32((kMebibytes << 20) + 8);
  for (Compress compress : kCompressors) {
    Buffer packed = compress(head);
    const Buffer zeros = compress(Zeros(1 << 20));
    for (std::uint32_t i = 0; i < kMebibytes; ++i) packed.insert(packed.end(), zeros.begin(), zeros.end());
    const std::string path = folder.Write(packed);
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    const ReadCapture read(path);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_TRUE(read.opened) << read.error.message;
    EXPECT_EQ(read.warning.message, "");
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 * 1024) << "kibibytes";
  }
}

TEST(CompressedFileTest, WindowsBeyondTheLimitAreRefused) {
  const CaptureFolder folder;
  // A frame's header whose window descriptor asks for 2 to the 28 bytes, and an empty block.
  const Buffer frame = Le32(0xFD2FB528) + Buffer{0, (28 - 10) << 3, 1, 0, 0};
  EXPECT_THAT(ReadCapture(folder.Write(frame)).error.message, HasSubstr("looks back on more than 128 MB"));
  const Buffer allowed = Le32(0xFD2FB528) + Buffer{0, (27 - 10) << 3, 1, 0, 0};
  EXPECT_THAT(ReadCapture(folder.Write(allowed)).error.message, HasSubstr("it begins like none"));
}

TEST(CompressedFileTest, FewFilesHaveLargeWindowsAtOnce) {
  const CaptureFolder folder;
  // A frame with a window of 16 MiB, and a last block as it is (RFC 8878 section 3.1.1.2).
  auto frame = [](const Buffer& content) {
    const auto size = static_cast<std::uint8_t>(content.size() << 3 | 1);
    return Le32(0xFD2FB528) + Buffer{0, (24 - 10) << 3, size, 0, 0} + content;
  };
  const std::string large = folder.Write(frame(CaptureBytes().PcapHeader()), "large");
  const std::string small = folder.Write(Zstd(SomeCapture(3)), "small");
  SourceError error;
  std::vector<std::unique_ptr<PacketSource>> open;
  for (int i = 0; i < kMostLargeWindows; ++i) {
    open.push_back(OpenCaptureFile(large, &error));
    ASSERT_TRUE(open.back()) << i << error.message;
  }
  EXPECT_THAT(ReadCapture(large).error.message, HasSubstr("looks back on more than 8 MB"));
  EXPECT_EQ(ReadCapture(small).packets.size(), 3U);
  Packet packet;
  EXPECT_FALSE(open[0]->Next(&packet));
  EXPECT_TRUE(ReadCapture(large).opened) << "what has been read to its end holds none any more";
  open.pop_back();
  EXPECT_TRUE(ReadCapture(large).opened);
}

}  // namespace
}  // namespace orvo::test
