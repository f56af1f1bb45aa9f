#pragma once

#include <atomic>
#include <cstdint>

#include "platform/xml_interfaces.h"
#include "scheduler/calendar.h"
#include "scheduler/guarded.h"
#include "scheduler/report_sets.h"
#include "scheduler/scheduler.h"

namespace orvo {

/// What a scheduler is told to do, with the values of a new one. Every value is read and written by itself, at any time
/// and from any thread.
struct SchedulerSettings {
  std::atomic<bool> enabled{false};
  std::atomic<bool> notify{true};
  Guarded<ReportPaths> paths;
  std::atomic<Interval> output_interval{{1, kUnitHours}};
  std::atomic<bool> align_output{true};
  std::atomic<bool> new_set_enabled{true};
  std::atomic<Interval> new_set_interval{{1, kUnitDays}};
  std::atomic<bool> align_new_set{true};
  std::atomic<bool> scheduled{false};
  std::atomic<bool> keep_enabled{true};
  std::atomic<std::uint32_t> keep{7};
  std::atomic<std::int32_t> reset_output{0};
  std::atomic<std::int32_t> output_type{kOutputCsv};

  static_assert(std::atomic<Interval>::is_always_lock_free);
};

/// Takes the settings from the element "statsoutput" below the node: S_FALSE and no change when it is absent. Absent
/// attributes leave their settings as they are. A value that is no number of its kind raises the conversion's status;
/// what was read before it stays.
Status LoadSettings(IXmlNode* node, SchedulerSettings* settings);

/// Appends the element with all settings below the node. Raises the status of what failed; nothing is appended then.
void SaveSettings(const SchedulerSettings& settings, IXmlDocument* document, IXmlNode* node);

}  // namespace orvo
