#include "capture/analysis/expert/expert_events.h"

namespace orvo {

std::string_view LayerName(EventLayer layer) {
  static constexpr std::array<std::string_view, 4> kNames{"Data Link", "Network", "Transport", "Application"};
  return kNames[static_cast<std::size_t>(layer)];
}

std::string_view SeverityName(EventSeverity severity) {
  static constexpr std::array<std::string_view, 4> kNames{"Informational", "Minor", "Major", "Severe"};
  return kNames[static_cast<std::size_t>(severity)];
}

}  // namespace orvo
