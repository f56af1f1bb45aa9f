// How long feeding is held up by reports: the longest time that one packet took while another thread began and read
// reports without a break, beside the same without reports.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "capture/context/capture_engine.h"
#include "engine/categories.h"
#include "platform/clock.h"

namespace orvo::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kRun{1000};
constexpr std::uint64_t kStart = kUnixEpoch + 1'700'000'000 * kNanosecondsPerSecond;
constexpr std::uint32_t kHosts = 100'000;

/// Frames of many hosts, a millisecond apart: Ethernet, IPv4, UDP between changing addresses.
class Traffic {
 public:
  Packet Next() {
    const auto host = static_cast<std::uint32_t>(number_ * 2'654'435'761U % kHosts);
    for (std::size_t byte = 0; byte < 3; ++byte) {
      const auto part = static_cast<std::uint8_t>(host >> (8 * (2 - byte)));
      frame_[9 + byte] = part;   // the sender's physical address
      frame_[27 + byte] = part;  // and its IP address, 10.x.x.x
    }
    Packet packet;
    packet.time = kStart + number_++ * 1'000'000;
    packet.bytes = frame_;
    packet.original_length = static_cast<std::uint32_t>(frame_.size());
    return packet;
  }

 private:
  std::uint64_t number_ = 0;
  std::array<std::uint8_t, 64> frame_{
      2,    0, 0,    0,  0, 1,  2, 0, 0,  0,  0, 2, 8,  0,                      // Ethernet
      0x45, 0, 0,    50, 0, 1,  0, 0, 64, 17, 0, 0, 10, 0, 0, 0, 192, 0, 2, 1,  // IPv4
      0x10, 0, 0x20, 0,  0, 30, 0, 0,                                           // UDP
  };
};

/// Begins a report and reads all nodes, again and again.
std::uint64_t ReadReports(CaptureEngine& engine, const std::atomic<bool>& done) {
  std::uint64_t reports = 0;
  std::uint64_t sum = 0;
  const ComPtr<IStatsContext> context = engine.Context();
  for (; !done; ++reports) {
    if (Failed(context->IsAvailable())) std::abort();
    ComPtr<INodeStats> nodes;
    if (GetCategory(context.get(), kNodeCategory, &nodes) != S_OK) std::abort();
    std::uint32_t count = 0;
    nodes->GetCount(&count);
    for (std::uint32_t i = 0; i < count; ++i) {
      const NodeEntry* node = nullptr;
      if (nodes->GetEntry(i, &node) != S_OK) std::abort();
      sum += node->traffic();
    }
  }
  if (sum == 0) std::abort();
  return reports;
}

void Measure(bool with_reports) {
  CaptureEngine engine;
  Traffic traffic;
  for (std::uint32_t i = 0; i < 2 * kHosts; ++i) engine.Feed(traffic.Next());

  std::atomic<bool> done = false;
  std::uint64_t reports = 0;
  std::thread reader;
  if (with_reports) reader = std::thread([&] { reports = ReadReports(engine, done); });

  std::vector<double> times;  // microseconds
  times.reserve(10'000'000);
  const Clock::time_point end = Clock::now() + kRun;
  for (Clock::time_point before = Clock::now(); before < end && times.size() < times.capacity();) {
    const Packet packet = traffic.Next();
    engine.Feed(packet);
    const Clock::time_point after = Clock::now();
    times.push_back(std::chrono::duration<double, std::micro>(after - before).count());
    before = after;
  }
  done = true;
  if (reader.joinable()) reader.join();

  std::ranges::sort(times);
  const std::size_t last = times.size() - 1;
  std::printf("%-16s %9zu packets %6llu reports; microseconds a packet: median %7.2f, 99.9 %% %8.2f, longest %9.2f\n",
              with_reports ? "with reports" : "without reports", times.size(), static_cast<unsigned long long>(reports),
              times[last / 2], times[last - last / 1000], times.back());
}

}  // namespace
}  // namespace orvo::bench

int main() {
  orvo::bench::Measure(false);
  orvo::bench::Measure(true);
}
