#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace orvo::bench {

/// Prints the usual table, and below it the ratio of each benchmark "x" to its floor "x/floor": medians of wall time
/// over the repetitions of one run.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  std::map<std::string, std::vector<double>> times_;
};

/// Runs every registered benchmark, its floor in turn with it, and prints the ratios.
int RunWithRatios(int argc, char** argv);

}  // namespace orvo::bench
