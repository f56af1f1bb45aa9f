#include "app/limits.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "app/messages.h"

namespace orvo::app {
namespace {

struct Limit {
  std::string_view name;
  std::size_t EngineOptions::*value;
};

constexpr std::array kLimits{
    Limit{"addresses", &EngineOptions::max_addresses},
    Limit{"hierarchy", &EngineOptions::max_hierarchy_rows},
    Limit{"conversations", &EngineOptions::max_conversations},
    Limit{"flows", &EngineOptions::max_flows},
    Limit{"calls", &EngineOptions::max_calls},
    Limit{"media-streams", &EngineOptions::max_media_streams},
    Limit{"names", &EngineOptions::max_names},
    Limit{"expert-flows", &EngineOptions::max_expert_flows},
    Limit{"expert-events", &EngineOptions::max_expert_events},
    Limit{"wireless-nodes", &EngineOptions::max_wireless_nodes},
    Limit{"wireless-channels", &EngineOptions::max_wireless_channels},
};
constexpr std::size_t kLargest = 1'000'000'000;

}  // namespace

std::string LimitNames() {
  std::string names;
  for (const Limit& limit : kLimits) names.append(names.empty() ? "" : ", ").append(limit.name);
  return names;
}

void ApplyLimits(const std::vector<std::string>& assignments, EngineOptions* options) {
  for (const std::string& assignment : assignments) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
      throw CommandError(kUsage, fmt::format("--limit {}: must read NAME=N", assignment));
    }
    const auto* limit = std::ranges::find(kLimits, std::string_view(assignment).substr(0, equals), &Limit::name);
    if (limit == kLimits.end()) {
      throw CommandError(kUsage, fmt::format("--limit {}: there is no such limit (there are: {})",
                                             assignment.substr(0, equals), LimitNames()));
    }
    const std::string_view text = std::string_view(assignment).substr(equals + 1);
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value > kLargest) {
      throw CommandError(kUsage, fmt::format("--limit {}: N must be a whole number up to {}", assignment, kLargest));
    }
    options->*limit->value = value;
  }
}

}  // namespace orvo::app
