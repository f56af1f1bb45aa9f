// Capture files of both formats, plain and compressed.

#include <zlib.h>
#include <zstd.h>

#include <vector>

#include "capture/source/capture_file.h"
#include "fuzz/support/target.h"

namespace orvo::fuzz {
namespace {

/// No input is to unpack to more.
constexpr std::size_t kMostPackets = 20'000;
constexpr std::uint32_t kLongestFrame = 262'144;

/// What a file gave, in numbers.
struct Outcome {
  bool opened = false;
  std::size_t packets = 0;
  std::uint64_t digest = 14'695'981'039'346'656'037ULL;  // FNV-1a
  bool operator==(const Outcome&) const = default;

  void Add(std::uint64_t value) { digest = (digest ^ value) * 1'099'511'628'211ULL; }
  void Add(const Packet& packet) {
    ++packets;
    Add(packet.time);
    Add(packet.original_length);
    Add(packet.link_type);
    Add(packet.interface_number);
    for (std::uint8_t byte : packet.bytes) Add(byte);
  }
};

Outcome ReadAll(Input content) {
  const MemoryFile file(content);
  Outcome outcome;
  SourceError error;
  std::unique_ptr<PacketSource> source = OpenCaptureFile(file.path(), &error);
  if (!source) {
    Require(Failed(error.status) && !error.message.empty(), "a refusal says why");
    return outcome;
  }
  outcome.opened = true;
  Packet packet;
  while (outcome.packets < kMostPackets && source->Next(&packet)) {
    Require(packet.original_length >= packet.bytes.size(), "no more is captured than was on the wire");
    Require(packet.original_length <= std::max<std::size_t>(kLongestFrame, packet.bytes.size()), "frames are possible");
    outcome.Add(packet);
  }
  const SourceProgress progress = source->progress();
  Require(progress.bytes_read <= progress.bytes_total, "progress stays within the file");
  if (outcome.packets == kMostPackets) return outcome;
  Require(!source->Next(&packet), "the end stays the end");
  const SourceError& warning = source->warning();
  Require((warning.status == S_OK) == warning.message.empty(), "a warning says what is wrong");
  return outcome;
}

std::string Gzip(Input content) {
  z_stream stream{};
  constexpr int kGzipWindow = 15 + 16;
  Require(deflateInit2(&stream, 1, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) == Z_OK, "gzip begins");
  std::string packed(deflateBound(&stream, content.size()), '\0');
  stream.next_in = const_cast<Bytef*>(content.data());
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  Require(deflate(&stream, Z_FINISH) == Z_STREAM_END, "gzip ends");
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::string Zstd(Input content) {
  std::string packed(ZSTD_compressBound(content.size()), '\0');
  packed.resize(ZSTD_compress(packed.data(), packed.size(), content.data(), content.size(), 1));
  return packed;
}

Input AsInput(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

void TestOneInput(Input input) {
  const Outcome plain = ReadAll(input);
  // Unpacked by the same reader, a file that is packed twice is no capture.
  if (!plain.opened || plain.packets == 0 || input[0] == 0x1F || input[0] == 0x28 || input[0] >> 4U == 5) return;
  Require(ReadAll(AsInput(Gzip(input))) == plain, "a file packed by gzip gives the same packets");
  Require(ReadAll(AsInput(Zstd(input))) == plain, "a file packed by Zstandard gives the same packets");
}

/// The beginnings of the samples, plain and packed.
void MakeSeeds(const SeedSink& add) {
  for (const std::string& path : Samples()) {
    for (std::size_t length : {600U, 3000U}) {
      const std::string content = ReadFileBytes(path, length);
      add(content);
      add(Gzip(AsInput(content)));
      add(Zstd(AsInput(content)));
    }
  }
}

}  // namespace orvo::fuzz
