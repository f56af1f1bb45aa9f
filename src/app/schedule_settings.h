#pragma once

#include <span>
#include <string_view>

#include "platform/variant.h"

namespace orvo::app {

/// A setting of the scheduler: the attribute of its element, and what it means.
struct ScheduleSetting {
  std::string_view name;
  VariantType type;  ///< what the scheduler reads the attribute as
  std::string_view explanation;
};

/// All of them, in the order of the element's attributes.
std::span<const ScheduleSetting> ScheduleSettings();

}  // namespace orvo::app
