#include "xml/report_kinds.h"

#include <iterator>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "xml/category_documents.h"
#include "xml/graph_documents.h"

namespace orvo {
namespace {

/// The nodes, and with them the documents that belong to them. A switch that cannot be read ends the report.
bool WriteNodeGroup(XmlReport& report) {
  WrittenSections& written = report.memory.written;
  if (!report.IsOn(kSwitchOutputNodeStats)) {
    written.hierarchy = false;
    written.nodes = false;
    return false;
  }
  const bool has_nodes = WriteNodeDocument(report);
  written.hierarchy = has_nodes && WriteHierarchyDocument(report);
  written.node_conversations = has_nodes && WriteConversationDocument(report);
  return has_nodes;
}

/// The nodes where conversations are a section of their own.
bool WriteNodesBesideConversations(XmlReport& report) {
  const bool has_nodes = WriteNodeGroup(report);
  report.memory.written.node_conversations = false;
  return has_nodes;
}

constexpr ReportStep kNodes{WriteNodeGroup, &WrittenSections::nodes};
constexpr ReportStep kNodesUnmarked{WriteNodeGroup, nullptr};
constexpr ReportStep kNodesBesideConversations{WriteNodesBesideConversations, &WrittenSections::nodes};
constexpr ReportStep kProtocols{WriteProtocolDocument, &WrittenSections::protocols};
constexpr ReportStep kConversations{WriteConversationDocument, &WrittenSections::conversations};

constexpr ReportStep kExpert{WriteExpertDocuments, &WrittenSections::expert};
constexpr ReportStep kExpertUnmarked{WriteExpertDocuments, nullptr};
constexpr ReportStep kMedia{WriteMediaDocument, &WrittenSections::media};
constexpr ReportStep kWireless{WriteWirelessNodeDocument, &WrittenSections::wireless};
constexpr ReportStep kChannels{WriteWirelessChannelDocument, &WrittenSections::channels, StepTime::kAfterWireless};

constexpr ReportStep kGraphs{WriteGraphCollection, &WrittenSections::graphs, StepTime::kWithGraphs};
constexpr ReportStep kLiveGraphs{WriteGraphCollection, &WrittenSections::graphs, StepTime::kLiveWithGraphs};

constexpr ReportStep kConversationsOnlySteps[] = {kConversations, kLiveGraphs};
constexpr ReportStep kAdditionalNodeSteps[] = {kNodesUnmarked, kConversations, kExpertUnmarked, kLiveGraphs};
constexpr ReportStep kExpertSummarySteps[] = {kExpert, kGraphs};
constexpr ReportStep kExecutiveSummarySteps[] = {
    kNodesBesideConversations, kConversations, kProtocols, kExpert, kWireless, kChannels, kGraphs};
constexpr ReportStep kFullSteps[] = {kNodes, kProtocols, kExpert, kMedia, kWireless, kChannels, kGraphs};

/// The switch of no report, which preferences may nevertheless be asked for.
constexpr std::uint32_t kSwitchWithoutMeaning = 123;

constexpr std::uint32_t kAdditionalNodeOff[] = {kSwitchExpertApplications, kSwitchOutputNodeHierarchy,
                                                kSwitchOutputVoIPOnly};
constexpr std::uint32_t kExpertSummaryOff[] = {kSwitchOutputNodeStats, kSwitchOutputProtocolStats,
                                               kSwitchOutputWLANStats, kSwitchOutputVoIPOnly, kSwitchWithoutMeaning};
constexpr std::uint32_t kExecutiveSummaryOff[] = {kSwitchOutputNodeHierarchy, kSwitchOutputVoIPOnly};

constexpr ReportKind kFull{.is_special = false,
                           .restarts_index = false,
                           .has_one_node_type = false,
                           .switched_off = {},
                           .steps = kFullSteps,
                           .assets = &kFullAssets,
                           .menus = MenuSet::kGeneral};
constexpr ReportKind kConversationsOnly{.is_special = true,
                                        .restarts_index = true,
                                        .has_one_node_type = false,
                                        .switched_off = {},
                                        .steps = kConversationsOnlySteps,
                                        .assets = &kConversationsOnlyAssets,
                                        .menus = MenuSet::kConversations};
constexpr ReportKind kAdditionalNode{.is_special = true,
                                     .restarts_index = true,
                                     .has_one_node_type = true,
                                     .switched_off = kAdditionalNodeOff,
                                     .steps = kAdditionalNodeSteps,
                                     .assets = &kAdditionalNodeAssets,
                                     .menus = MenuSet::kAdditionalNode};
constexpr ReportKind kExpertSummary{.is_special = true,
                                    .restarts_index = false,
                                    .has_one_node_type = false,
                                    .switched_off = kExpertSummaryOff,
                                    .steps = kExpertSummarySteps,
                                    .assets = &kExpertSummaryAssets,
                                    .menus = MenuSet::kGeneral};
constexpr ReportKind kExecutiveSummary{.is_special = true,
                                       .restarts_index = false,
                                       .has_one_node_type = true,
                                       .switched_off = kExecutiveSummaryOff,
                                       .steps = kExecutiveSummarySteps,
                                       .assets = &kExecutiveSummaryAssets,
                                       .menus = MenuSet::kGeneral};

/// The switches of the kinds in the order in which they are read, and how much each counts against the others.
struct KindSwitch {
  std::uint32_t identifier;
  int rank;  ///< the lowest wins
  const ReportKind& kind;
};

constexpr KindSwitch kKindSwitches[] = {
    {kSwitchOutputAdditionalNode, 2, kAdditionalNode},
    {kSwitchOutputConversationsOnly, 1, kConversationsOnly},
    {kSwitchOutputExecutiveSummary, 4, kExecutiveSummary},
    {kSwitchOutputExpertSummary, 3, kExpertSummary},
};

/// Leaves the one type of node that says most about the medium.
void SelectNodeType(XmlReport& report) {
  std::uint32_t subtype = kSubtypeWired;
  Check(report.job.live->GetMediumSubtype(&subtype));
  const bool wireless = IsWirelessSubtype(subtype);
  Check(report.preferences.SetPreference(kSwitchNodeTypePhysical, wireless ? 1 : 0));
  Check(report.preferences.SetPreference(kSwitchNodeTypeIP, wireless ? 0 : 1));
  for (std::uint32_t other : {kSwitchNodeTypeIPv6, kSwitchNodeTypeDEC, kSwitchNodeTypeApple, kSwitchNodeTypeIPX}) {
    Check(report.preferences.SetPreference(other, 0));
  }
}

bool IsDue(const XmlReport& report, StepTime time) {
  switch (time) {
    case StepTime::kAlways: return true;
    case StepTime::kWithGraphs: return report.job.graphs != nullptr;
    case StepTime::kLiveWithGraphs: return report.job.graphs != nullptr && report.job.from_live;
    case StepTime::kAfterWireless: return report.memory.written.wireless;
  }
  return false;
}

}  // namespace

const ReportKind& ChooseKind(IStatsOutputPrefs& preferences) {
  const KindSwitch* chosen = nullptr;
  for (const KindSwitch& one : kKindSwitches) {
    if (IsOn(preferences, one.identifier) && (!chosen || one.rank < chosen->rank)) chosen = &one;
  }
  return chosen ? chosen->kind : kFull;
}

void WriteKind(XmlReport& report, const ReportKind& kind) {
  if (kind.restarts_index) report.memory.index_kept = false;
  for (std::uint32_t identifier : kind.switched_off) Check(report.preferences.SetPreference(identifier, 0));
  if (kind.has_one_node_type) SelectNodeType(report);
  for (const ReportStep& step : kind.steps) {
    if (!IsDue(report, step.time)) continue;
    const bool written = step.write(report);
    if (step.written) report.memory.written.*step.written = written;
  }
  // A full report that goes on from an earlier one finds the files there.
  if (kind.is_special || report.job.from_live || !report.memory.index_kept) CopyAssets(report, *kind.assets);
  WriteMenuPages(report, kind.menus);
}

}  // namespace orvo
