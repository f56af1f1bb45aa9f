#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "capture/analysis/expert/expert_analysis.h"
#include "capture/analysis/voice_analysis.h"
#include "capture/tables/statistics_tables.h"
#include "engine/context.h"
#include "engine/summary.h"

namespace orvo {

/// Which summary statistics there are, in the order in which they are listed. Immutable once made.
struct SummaryCatalogue {
  struct Group {
    Guid identifier;
    std::u16string name;
  };
  struct Statistic {
    Guid identifier;
    std::uint32_t group = 0;  ///< position in `groups`
    std::u16string name;
  };

  std::vector<Group> groups;
  std::vector<Statistic> statistics;
  std::unordered_map<Guid, std::uint32_t, GuidHash> group_positions;
  std::unordered_map<Guid, std::uint32_t, GuidHash> statistic_positions;

  /// Fills the two maps from the two lists; false when an identifier stands for two things.
  bool Index();
};

/// One state of the summary: a value for each statistic of the catalogue.
struct SummaryRecord {
  std::u16string name;
  std::vector<SummaryValue> values;
};

/// The statistics of one moment, as they are handed out. Immutable once made, and shared by every object that was
/// handed out from it.
struct Epoch {
  std::uint32_t medium_type = kMediumEthernet;
  std::uint32_t medium_subtype = kSubtypeWired;
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
  std::uint64_t start = 0;  ///< nanoseconds since 1601-01-01 UTC, 0 without packets
  std::uint64_t duration = 0;
  std::shared_ptr<const SummaryCatalogue> catalogue;
  std::vector<std::shared_ptr<const SummaryRecord>> summaries;  ///< the present state, then those stored, oldest first
  FrozenTable<ProtocolEntry> protocols;
  std::shared_ptr<const FrozenWireless> wireless;  ///< null for a wired medium
  FrozenExpert expert;                             ///< empty in a loaded snapshot, as the next
  FrozenVoice voice;                               ///< empty in a loaded snapshot
  std::shared_ptr<const FrozenTables> tables;  ///< everything else; null in a loaded snapshot, which does not hold it
};

}  // namespace orvo
