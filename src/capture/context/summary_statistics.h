#pragma once

#include <memory>
#include <string_view>

#include "capture/context/epoch.h"

namespace orvo {

/// The statistics that this engine keeps.
std::shared_ptr<const SummaryCatalogue> LiveCatalogue();

/// Their values for these counts.
std::shared_ptr<const SummaryRecord> MakeSummary(const Counters& counters, std::u16string_view name);

}  // namespace orvo
