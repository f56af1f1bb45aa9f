// The scheduler by itself: a wake-up at which there is nothing to do, and an output with ten thousand report sets to
// keep beside one with ten. Time passes by itself, so that a worker never waits. The folders are made in memory where
// that is possible: file systems on disks have a cost of their own for making many of them.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "bench/support/ratio_reporter.h"
#include "platform/object.h"
#include "platform/path.h"
#include "scheduler/skry_stats_output.h"
#include "scheduler/worker.h"

namespace orvo::bench {
namespace {

/// Every wait ends at once, its time having passed; after so many of them the worker is told to stop.
class RacingClock final : public Clock {
 public:
  RacingClock() { SetProcessClock(this); }
  ~RacingClock() override { SetProcessClock(nullptr); }
  RacingClock(const RacingClock&) = delete;
  RacingClock& operator=(const RacingClock&) = delete;

  std::uint64_t Now() override { return now_; }
  std::unique_ptr<Event> CreateEvent() override { return std::make_unique<RacingEvent>(this); }

  std::int64_t waits = 0;

 private:
  class RacingEvent final : public Event {
   public:
    explicit RacingEvent(RacingClock* clock) : clock_(*clock) {}
    void Set() override {}
    WaitResult Wait(std::uint32_t milliseconds) override {
      if (clock_.waits-- == 0) return WaitResult::kSignalled;
      clock_.now_ += std::uint64_t{milliseconds} * 1'000'000;
      return WaitResult::kTimeOut;
    }

   private:
    RacingClock& clock_;
  };

  std::uint64_t now_ = TimeFromUnix(1'700'000'000'000'000'000);
};

class NoMethod final : public Object<IStatsOutputMethod> {
  Status Output(BSTR, IStatsContext*, IGraphCollection*) override { return S_OK; }
  Status ResetMark() override { return S_OK; }
  Status SetFormat(BSTR, BSTR, IStatsOutputPrefs*, BSTR) override { return S_OK; }
  Status OutputLive(IStatsContext*, BSTR, IGraphCollection*) override { return S_OK; }
  Status SetInterval(std::uint32_t) override { return S_OK; }
};

class NoContext final : public Object<IStatsContext> {
  Status GetCategory(const Guid&, const Guid&, void**) override { return E_NOTIMPL; }
  Status ResetStatistics() override { return S_OK; }
  Status GetMediumType(std::uint32_t*) override { return E_NOTIMPL; }
  Status GetMediumSubtype(std::uint32_t*) override { return E_NOTIMPL; }
  Status GetAddressTable(IAddressTable**) override { return E_NOTIMPL; }
  Status GetConversationIndex(IConversationIndex**) override { return E_NOTIMPL; }
  Status GetStartTime(std::uint64_t*) override { return E_NOTIMPL; }
  Status GetDuration(std::uint64_t*) override { return E_NOTIMPL; }
  Status GetTotalPackets(std::uint64_t*) override { return E_NOTIMPL; }
  Status GetTotalBytes(std::uint64_t*) override { return E_NOTIMPL; }
  Status IsAvailable() override { return S_OK; }
};

/// A worker's surroundings without the thread, in a folder that is gone with them.
class Surroundings {
 public:
  Surroundings() {
    if (!mkdtemp(folder_.data())) std::abort();
    state->settings.paths.Set({PathFromSystem(folder_ + "/"), u"Reports"});
    state->parts.method.Set(ComPtr<IStatsOutputMethod>(method_.get()));
  }
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;
  ~Surroundings() { std::filesystem::remove_all(folder_); }

  /// Lets a worker wake up so often.
  void Run(std::int64_t wake_ups) {
    clock.waits = wake_ups;
    if (Failed(Worker(state, std::make_shared<WorkerControl>()).Run())) std::abort();
  }

  RacingClock clock;
  std::shared_ptr<SchedulerState> state = std::make_shared<SchedulerState>();
  ComPtr<NoContext> context = MakeObject<NoContext>();

 private:
  std::string folder_ = (access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path().string()) +
                        "/orvo-bench-XXXXXX";
  ComPtr<NoMethod> method_ = MakeObject<NoMethod>();
};

void WakeUp(benchmark::State& bench) {
  Surroundings surroundings;
  surroundings.state->settings.new_set_enabled = false;
  constexpr std::int64_t kWakeUps = 100'000;
  for (auto _ : bench) surroundings.Run(kWakeUps);
  bench.SetItemsProcessed(bench.iterations() * kWakeUps);
}

/// Outputs that each begin a set and delete one, with so many kept.
void KeepSets(benchmark::State& bench, std::uint32_t keep) {
  Surroundings surroundings;
  surroundings.state->parts.context.Set(surroundings.context.get());
  surroundings.state->settings.keep = keep;
  surroundings.Run(keep);
  constexpr std::int64_t kOutputs = 2'000;
  for (auto _ : bench) surroundings.Run(kOutputs);
  bench.SetItemsProcessed(bench.iterations() * kOutputs);
}

BENCHMARK(WakeUp)->Name("wake_up_without_work")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(KeepSets, ten_thousand, 10'000)
    ->Name("output_keeping_10000_sets")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(9);
BENCHMARK_CAPTURE(KeepSets, ten, 10)
    ->Name("output_keeping_10000_sets/floor")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(9);

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
  return orvo::bench::RunWithRatios(argc, argv);
}
