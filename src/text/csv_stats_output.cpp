#include "text/csv_stats_output.h"

#include "platform/code_page.h"
#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "text/detail_file.h"
#include "text/expert_files.h"
#include "text/node_files.h"
#include "text/protocol_file.h"
#include "text/summary_file.h"
#include "text/text_report.h"
#include "text/wireless_channel_file.h"
#include "text/wireless_node_file.h"

namespace orvo {
namespace {

constexpr MethodTraits kTraits{
    .class_id = kCsvStatsOutputClass, .settings_element = u"csvstatsoutput", .is_text_method = true};

/// The sections in the order in which they are written. A gate that cannot be read ends the report; a section that
/// fails ends alone.
struct Section {
  int gate;
  void (*write)(TextReport& report);
};

constexpr Section kSections[] = {
    {kAlways, WriteSummaryFile},
    {kSwitchOutputNodeStats, WriteNodeFiles},
    {kSwitchOutputProtocolStats, WriteProtocolFile},
    {kSwitchOutputWLANStats, WriteWirelessNodeFile},
    {kSwitchOutputWChannelsStats, WriteWirelessChannelFile},
    {kSwitchOutputNodeDetails, WriteDetailFile},
    {kSwitchOutputExpertStats, WriteExpertFiles},
    {kSwitchOutputVoIPOnly, WriteMediaFile},
};

}  // namespace

CSVStatsOutput::CSVStatsOutput() : OutputMethod(kTraits) {}

void CSVStatsOutput::KeepFormat(std::u16string_view extension, std::u16string_view separator,
                                std::u16string_view /*template_root*/) {
  extension_ = extension;
  narrow_separator_.clear();
  if (Failed(AppendNarrow(separator, &narrow_separator_))) narrow_separator_.clear();
}

void CSVStatsOutput::WriteReport(const ReportJob& job) {
  TextReport report{.job = job,
                    .preferences = preferences(),
                    .util = report_util(),
                    .protocol_names = protocol_names(),
                    .statistic_map = statistic_map_,
                    .extension = extension_,
                    .separator = narrow_separator_,
                    .time_mark = time_mark()};
  Check(job.live->GetAddressTable(report.addresses.Out()));
  if (Failed(job.availability)) return;
  if (Failed(Query(job.live, &report.observer))) report.observer.Reset();

  for (const Section& section : kSections) {
    if (report.IsOn(section.gate)) (void)Guard([&] { section.write(report); });
  }
}

Status CreateCsvStatsOutput(const Guid& iid, void** out) {
  return CreateComponentObject<CSVStatsOutput>(iid, out);
}

}  // namespace orvo
