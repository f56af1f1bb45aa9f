// Reading captures of 200 MB, beside bare reads of the same bytes, and beside libpcap's reading of the same packets.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <pcap/pcap.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/support/ratio_reporter.h"
#include "capture/source/capture_file.h"
#include "tests/capture/capture_bytes.h"

namespace orvo::bench {
namespace {

constexpr std::size_t kFileSize = 200'000'000;
constexpr std::size_t kBlock = 1 << 20;

/// Frames of the sizes that an ordinary network carries: many small, some full.
std::vector<test::Buffer> Frames() {
  std::vector<test::Buffer> frames;
  for (unsigned size : {60U, 66U, 1514U, 1514U, 78U, 60U, 590U, 1514U, 66U, 128U}) {
    test::Buffer frame = test::Ethernet(test::Mac(2), test::Mac(1), 0x0800, test::Zeros(size - 14));
    frames.push_back(std::move(frame));
  }
  return frames;
}

/// The files, written once and gone with the program.
struct Files {
  const test::CaptureFolder folder;
  std::string classic = folder.Path("classic.pcap");
  std::string blocks = folder.Path("blocks.pcapng");

  Files() {
    using test::operator+;
    const test::CaptureBytes file;
    Write(classic, file.PcapHeader(),
          [&](std::uint32_t i, const test::Buffer& frame) { return file.PcapRecord(i, 0, frame); });
    Write(blocks, file.Section() + file.Interface(), [&](std::uint32_t i, const test::Buffer& frame) {
      return file.Enhanced(0, std::uint64_t{i} * 1'000'000, frame);
    });
  }

  template <class Record>
  static void Write(const std::string& path, test::Buffer bytes, Record record) {
    const std::vector<test::Buffer> frames = Frames();
    std::ofstream file(path, std::ios::binary);
    std::size_t written = 0;
    for (std::uint32_t i = 0; written < kFileSize; ++i) {
      const test::Buffer next = record(i, frames[i % frames.size()]);
      bytes.insert(bytes.end(), next.begin(), next.end());
      if (bytes.size() < kBlock) continue;
      file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
      written += bytes.size();
      bytes.clear();
    }
  }
};

struct Read {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
  bool operator==(const Read&) const = default;
};

Read ReadAll(const std::string& path) {
  SourceError error;
  auto source = OpenCaptureFile(path, &error);
  if (!source) std::abort();
  Read read;
  for (Packet packet; source->Next(&packet); ++read.packets) read.bytes += packet.original_length;
  return read;
}

Read ReadAllByLibpcap(const std::string& path) {
  char why[PCAP_ERRBUF_SIZE];
  pcap_t* handle = pcap_open_offline_with_tstamp_precision(path.c_str(), PCAP_TSTAMP_PRECISION_NANO, why);
  if (!handle) std::abort();
  Read result;
  pcap_pkthdr* header = nullptr;
  const std::uint8_t* frame = nullptr;
  for (; pcap_next_ex(handle, &header, &frame) == 1; ++result.packets) result.bytes += header->len;
  pcap_close(handle);
  return result;
}

Read ReadBare(const std::string& path) {
  static const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(kBlock);
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  Read result;
  for (ssize_t count = 0; (count = read(file, block.get(), kBlock)) > 0;) {
    result.bytes += static_cast<std::uint64_t>(count);
  }
  close(file);
  return result;
}

void Measure(benchmark::State& state, Read (*way)(const std::string&), const std::string& path) {
  std::uint64_t packets = 0;
  while (state.KeepRunning()) packets += way(path).packets;
  if (packets != 0) state.SetItemsProcessed(static_cast<std::int64_t>(packets));
}

/// One way of reading one file, with the floor that it is compared with.
void Register(const std::string& name, Read (*way)(const std::string&), const std::string& path) {
  for (const auto& [suffix, measured] : {std::pair("", way), std::pair("/floor", &ReadBare)}) {
    benchmark::RegisterBenchmark((name + suffix).c_str(), Measure, measured, path)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1)
        ->Repetitions(9);
  }
}

/// The comparison means something only when both give the same packets.
bool SamePackets(const std::string& path) {
  if (ReadAll(path) == ReadAllByLibpcap(path)) return true;
  std::fprintf(stderr, "read_packets: libpcap gives other packets of %s\n", path.c_str());
  return false;
}

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) try {
  using namespace orvo::bench;
  const Files files;
  if (!SamePackets(files.classic) || !SamePackets(files.blocks)) return 1;
  Register("pcap", ReadAll, files.classic);
  Register("pcap_by_libpcap", ReadAllByLibpcap, files.classic);
  Register("pcapng", ReadAll, files.blocks);
  Register("pcapng_by_libpcap", ReadAllByLibpcap, files.blocks);
  return RunWithRatios(argc, argv);
} catch (const std::exception& error) {
  std::fprintf(stderr, "read_packets: %s\n", error.what());
  return 1;
}
