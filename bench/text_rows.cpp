// Writing the node file of a million nodes, beside a bare loop that formats the same bytes and writes them.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "bench/support/ratio_reporter.h"
#include "platform/clock.h"
#include "platform/path.h"
#include "prefs/stats_output_prefs.h"
#include "tests/support/scripted_engine.h"
#include "text/csv_stats_output.h"

namespace orvo::bench {
namespace {

constexpr std::uint32_t kNodes = 1'000'000;
constexpr std::int64_t kStart = 1'700'000'000;  // seconds since 1970
constexpr const char* kFileName = "Node Statistics-IP.csv";

std::uint64_t At(std::int64_t seconds) {
  return TimeFromUnix(seconds * 1'000'000'000);
}

test::Script ManyNodes(std::uint32_t count) {
  test::Script script;
  for (std::uint32_t i = 0; i < count; ++i) {
    NodeEntry node;
    node.address = script.AddIp(10, static_cast<std::uint8_t>(i >> 16), static_cast<std::uint8_t>(i >> 8),
                                static_cast<std::uint8_t>(i));
    node.first_time_sent = At(kStart + i % 3600);
    node.last_time_sent = At(kStart + 3600 + i % 3600);
    node.first_time_received = At(kStart + 10 + i % 3600);
    node.last_time_received = At(kStart + 4000 + i % 3600);
    node.packets_sent = i % 5000;
    node.bytes_sent = std::uint64_t{i} * 1500;
    node.packets_received = i % 7000;
    node.bytes_received = std::uint64_t{i} * 700;
    node.broadcast_packets = i % 10;
    node.broadcast_bytes = i % 1000;
    node.min_size_sent = 60;
    node.max_size_sent = 1514;
    node.min_size_received = 64;
    node.max_size_received = 1514;
    script.nodes.push_back(node);
  }
  return script;
}

/// A folder that is gone with the program.
const std::string& Folder() {
  static const struct Temporary {
    std::string path = (std::filesystem::temp_directory_path() / "orvo-bench-XXXXXX").string();
    Temporary() {
      if (!mkdtemp(path.data())) std::abort();
    }
    ~Temporary() { std::filesystem::remove_all(path); }
  } folder;
  return folder.path;
}

/// The engine, the method and its switches: only the IP node file, with all its columns.
struct Writer {
  test::ScriptedEngine engine;
  ComPtr<IStatsContext> context;
  ComPtr<IStatsOutputMethod> method;

  explicit Writer(std::uint32_t nodes) {
    engine.live = ManyNodes(nodes);
    engine.at_snapshot = test::Script();
    engine.fixed = true;
    engine.snapshot_time = At(kStart + 10'000);
    context = engine.Context();
    if (Failed(CreateCsvStatsOutput(IStatsOutputMethod::kIid, method.OutVoid()))) std::abort();
    ComPtr<IStatsOutputPrefs> switches;
    if (Failed(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, switches.OutVoid()))) std::abort();
    for (SwitchId off : {kSwitchOutputNodeHierarchy, kSwitchNodeTypeIPv6, kSwitchNodeTypeDEC, kSwitchNodeTypeApple,
                         kSwitchNodeTypeIPX, kSwitchNodeTypePhysical}) {
      switches->SetPreference(off, 0);
    }
    method->SetFormat(Bstr(u".csv").get(), Bstr(u",").get(), switches.get(), nullptr);
  }

  /// What the engine makes once, so that it is not counted as the writer's.
  void MakeTables() {
    ComPtr<IAddressTable> table;
    if (context->GetAddressTable(table.Out()) != S_OK) std::abort();
  }

  void Write() {
    unlink((Folder() + "/" + kFileName).c_str());
    Bstr folder(PathFromSystem(Folder() + "/"));
    if (method->Output(folder.get(), context.get(), nullptr) != S_OK) std::abort();
  }
};

Writer& MillionNodes() {
  static Writer writer(kNodes);
  return writer;
}

/// The bare loop: the same fields by the shortest way that knows the file's form beforehand.
class BareLoop {
 public:
  explicit BareLoop(const test::Script& script) : script_(script), block_(new char[kBlock + 4096]) {
    std::time_t now = kStart;
    offset_ = localtime(&now)->tm_gmtoff;
  }

  void Write() {
    const std::string path = Folder() + "/floor.csv";
    unlink(path.c_str());
    int file = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
    at_ = block_.get();
    Text(
        "Time Saved,Address,First Time Sent,Last Time Sent,First Time Received,Last Time Received,Packets Sent,"
        "Bytes Sent,Packets Received,Bytes Received,Broadcast Packets,Broadcast Bytes,Multicast Packets,"
        "Multicast Bytes,Min Size Sent,Max Size Sent,Min Size Received,Max Size Received\n");
    for (const NodeEntry& node : script_.nodes) {
      Row(node, script_.addresses[node.address]);
      if (at_ - block_.get() >= kBlock) Flush(file);
    }
    Flush(file);
    close(file);
  }

 private:
  static constexpr std::ptrdiff_t kBlock = 1 << 18;

  void Text(std::string_view text) { at_ = std::copy(text.begin(), text.end(), at_); }
  void Number(std::uint64_t value) { at_ = std::to_chars(at_, at_ + 20, value).ptr; }
  void Two(std::int64_t value) {
    *at_++ = static_cast<char>('0' + value / 10);
    *at_++ = static_cast<char>('0' + value % 10);
  }

  void Time(std::uint64_t time) {
    std::int64_t local = UnixFromTime(time) / 1'000'000'000 + offset_;
    std::int64_t day = local / 86'400;
    if (day != day_) {
      day_ = day;
      std::time_t seconds = day * 86'400;
      const std::tm* date = gmtime(&seconds);
      date_ = std::to_string(date->tm_mon + 1) + "/" + std::to_string(date->tm_mday) + "/" +
              std::to_string(date->tm_year + 1900) + " ";
    }
    Text(date_);
    Two(local % 86'400 / 3600);
    *at_++ = ':';
    Two(local % 3600 / 60);
    *at_++ = ':';
    Two(local % 60);
  }

  void Row(const NodeEntry& node, const AddressRecord& address) {
    Time(At(kStart + 10'000));
    for (int i = 0; i < 4; ++i) {
      *at_++ = i == 0 ? ',' : '.';
      Number(address.bytes[static_cast<std::size_t>(i)]);
    }
    for (std::uint64_t time :
         {node.first_time_sent, node.last_time_sent, node.first_time_received, node.last_time_received}) {
      *at_++ = ',';
      Time(time);
    }
    for (std::uint64_t count :
         {node.packets_sent, node.bytes_sent, node.packets_received, node.bytes_received, node.broadcast_packets,
          node.broadcast_bytes, node.multicast_packets, node.multicast_bytes, std::uint64_t{node.min_size_sent},
          std::uint64_t{node.max_size_sent}, std::uint64_t{node.min_size_received},
          std::uint64_t{node.max_size_received}}) {
      *at_++ = ',';
      Number(count);
    }
    *at_++ = '\n';
  }

  void Flush(int file) {
    if (write(file, block_.get(), static_cast<std::size_t>(at_ - block_.get())) < 0) std::abort();
    at_ = block_.get();
  }

  const test::Script& script_;
  std::unique_ptr<char[]> block_;
  char* at_ = nullptr;
  std::int64_t offset_ = 0;
  std::int64_t day_ = -1;
  std::string date_;
};

std::string FileBytes(const std::string& name) {
  std::ifstream file(Folder() + "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void NodeRows(benchmark::State& state) {
  for (auto _ : state) MillionNodes().Write();
  state.SetItemsProcessed(state.iterations() * kNodes);
}

void NodeRowsFloor(benchmark::State& state) {
  BareLoop bare(MillionNodes().engine.live);
  for (auto _ : state) bare.Write();
  state.SetItemsProcessed(state.iterations() * kNodes);
}

BENCHMARK(NodeRows)->Name("node_rows")->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(9);
BENCHMARK(NodeRowsFloor)->Name("node_rows/floor")->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(9);

long PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

/// The writer keeps nothing of a row once it is written: a million of them must not raise the peak.
void PrintWriterMemory() {
  const std::uint64_t nodes = MillionNodes().engine.live.nodes.size();
  MillionNodes().MakeTables();
  const long before = PeakKilobytes();
  MillionNodes().Write();
  std::printf("peak memory after writing %llu rows: %ld KiB more than before\n", static_cast<unsigned long long>(nodes),
              PeakKilobytes() - before);
}

/// The comparison means something only when both write the same.
bool SameBytes() {
  MillionNodes().Write();
  BareLoop(MillionNodes().engine.live).Write();
  if (FileBytes(kFileName) == FileBytes("floor.csv")) return true;
  std::fprintf(stderr, "text_rows: the bare loop wrote other bytes than the report\n");
  return false;
}

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
  orvo::bench::PrintWriterMemory();
  if (!orvo::bench::SameBytes()) return 1;
  return orvo::bench::RunWithRatios(argc, argv);
}
