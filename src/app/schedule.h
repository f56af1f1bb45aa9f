#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/formats.h"
#include "scheduler/scheduler.h"

namespace orvo::app {

struct Interval {
  std::uint32_t value;
  IntervalUnit unit;
};

/// The time of an option such as "30s", "15m", "1h" or "7d". Ends the command (wrong usage) for what is none, for less
/// than five seconds, and for more than a scheduler can wait (49 days).
Interval ParseInterval(std::string_view option, std::string_view text);

/// What the options say of the schedule; what is absent is left to the settings.
struct ScheduleChoice {
  std::string out;  ///< the folder of all reports, in full
  std::optional<Interval> every;
  std::optional<Interval> new_set;
  bool no_sets = false;
  std::optional<std::uint32_t> keep;
  bool keep_all = false;
  const Format* format = nullptr;
};

/// A scheduler with the defaults of the command: a report every hour, a report set every day, seven of them kept.
ComPtr<ISkryStatsOutput> MakeScheduler();

/// Changes a scheduler: first by the settings file (none when empty), then by the options. Ends the command for
/// settings that cannot be used, intervals that a scheduler cannot wait among them.
void ApplySchedule(const std::string& settings_file, const ScheduleChoice& choice, ISkryStatsOutput& scheduler);

/// The time between its reports.
std::uint64_t OutputSeconds(ISkryStatsOutput& scheduler);

/// Gives a scheduler the settings of another.
void CopySchedule(ISkryStatsOutput& from, ISkryStatsOutput& to);

}  // namespace orvo::app
