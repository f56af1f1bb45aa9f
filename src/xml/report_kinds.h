#pragma once

#include <cstdint>
#include <span>

#include "xml/menu_pages.h"
#include "xml/report_assets.h"
#include "xml/xml_report.h"

namespace orvo {

/// When a step of a report is taken.
enum class StepTime {
  kAlways,
  kWithGraphs,      ///< a graph collection was given
  kLiveWithGraphs,  ///< and the report is one of the live statistics
  kAfterWireless,   ///< the wireless nodes were written
};

/// One writer of a report, and what its answer is kept in; null when it is not kept.
struct ReportStep {
  bool (*write)(XmlReport& report);
  bool WrittenSections::*written;
  StepTime time = StepTime::kAlways;
};

/// A kind of report: what it changes in the preferences, for good, and what it writes in which order.
struct ReportKind {
  bool is_special;         ///< every kind but the full report
  bool restarts_index;     ///< forgets that an index was kept
  bool has_one_node_type;  ///< the one that suits the medium
  std::span<const std::uint32_t> switched_off;
  std::span<const ReportStep> steps;
  const ReportAssets* assets;
  MenuSet menus;
};

/// The kind that the switches ask for. Raises the status of a switch that cannot be read.
const ReportKind& ChooseKind(IStatsOutputPrefs& preferences);

/// Makes the kind's changes to the preferences, takes its steps, and adds what shows the report in a browser. Raises
/// what ends the report; a writer that fails ends alone.
void WriteKind(XmlReport& report, const ReportKind& kind);

}  // namespace orvo
