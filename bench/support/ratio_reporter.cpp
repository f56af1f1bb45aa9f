#include "bench/support/ratio_reporter.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace orvo::bench {
namespace {

double Median(std::vector<double> values) {
  auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred || run.iterations == 0) continue;
    times_[run.run_name.function_name].push_back(run.real_accumulated_time / static_cast<double>(run.iterations));
  }
}

void RatioReporter::Finalize() {
  ConsoleReporter::Finalize();
  for (const auto& [name, times] : times_) {
    auto floor = times_.find(name + "/floor");
    if (floor == times_.end()) continue;
    double measured = Median(times);
    double bare = Median(floor->second);
    std::printf("%-40s %8.1f ms, floor %8.1f ms, ratio %.2f\n", name.c_str(), measured * 1e3, bare * 1e3,
                measured / bare);
  }
}

int RunWithRatios(int argc, char** argv) {
  // The machine's speed drifts, so a benchmark and its floor take turns.
  std::vector<char*> arguments(argv, argv + argc);
  std::string take_turns = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, take_turns.data());
  argc = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  argv = arguments.data();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}

}  // namespace orvo::bench
