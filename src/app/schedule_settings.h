#pragma once

#include <span>
#include <string_view>

namespace orvo::app {

/// A setting of the scheduler: the attribute of its element, and what it means.
struct ScheduleSetting {
  std::string_view name;
  bool is_text;  ///< else a whole number
  std::string_view explanation;
};

/// All of them, in the order of the element's attributes.
std::span<const ScheduleSetting> ScheduleSettings();

}  // namespace orvo::app
