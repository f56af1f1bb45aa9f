#include "app/report_kinds.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "app/messages.h"
#include "prefs/switch_ids.h"

namespace orvo::app {
namespace {

/// The switches of all kinds but the full report, which has none of them.
constexpr std::uint32_t kKindSwitches[] = {kSwitchOutputExecutiveSummary, kSwitchOutputExpertSummary,
                                           kSwitchOutputAdditionalNode, kSwitchOutputConversationsOnly};
constexpr std::string_view kNames[] = {"executive-summary", "expert-summary", "additional-node", "conversations"};
static_assert(std::size(kNames) == std::size(kKindSwitches));
constexpr std::string_view kFull = "full";

}  // namespace

std::string ReportNames() {
  std::string names(kFull);
  for (std::string_view name : kNames) names.append(", ").append(name);
  return names;
}

void ChooseReport(const std::string& name, IStatsOutputPrefs& preferences) {
  if (name.empty()) return;
  if (name != kFull && std::ranges::find(kNames, name) == std::end(kNames)) {
    throw CommandError(kUsage, fmt::format("--report {}: there is no such report (known: {})", name, ReportNames()));
  }
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    Require(preferences.SetPreference(kKindSwitches[i], kNames[i] == name ? 1 : 0), "--report");
  }
}

}  // namespace orvo::app
