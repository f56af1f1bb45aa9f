#include "xml/xml_stats_output.h"

#include "platform/error.h"
#include "xml/category_documents.h"
#include "xml/graph_documents.h"
#include "xml/report_document.h"
#include "xml/report_kinds.h"

namespace orvo {
namespace {

constexpr MethodTraits kTraits{.class_id = kXmlStatsOutputClass, .settings_element = u"xmlstatsoutput"};

/// Opens the index: an earlier one is extended by a full report, and begun anew by one of another kind.
void OpenIndex(XmlReport& report) {
  const bool loaded = report.index.Load(report.job.folder + std::u16string(kIndexFile));
  if (loaded && report.memory.special_kind) {
    report.index.Clear();
  } else {
    report.memory.index_kept = loaded;
  }
}

}  // namespace

XMLStatsOutput::XMLStatsOutput() : OutputMethod(kTraits) {}

void XMLStatsOutput::KeepFormat(std::u16string_view /*extension*/, std::u16string_view /*separator*/,
                                std::u16string_view template_root) {
  template_root_ = template_root;
}

void XMLStatsOutput::WriteReport(const ReportJob& job) {
  if (job.from_live) {
    memory_.history_enabled = false;
    memory_.index_kept = false;
    memory_.no_rates = ReportUtil::LacksSite(job.live);
  }
  const ReportKind& kind = ChooseKind(preferences());
  if (kind.is_special) {
    memory_.special_kind = true;
    memory_.history_enabled = false;
  }
  // A snapshot may be reported though the engine said no more than "not false"; the live statistics must be there.
  if (job.from_live ? job.availability != S_OK : Failed(job.availability)) return;

  XmlReport report{.job = job,
                   .preferences = preferences(),
                   .util = report_util(),
                   .protocol_names = protocol_names(),
                   .memory = memory_,
                   .template_root = template_root_,
                   .time_mark = time_mark(),
                   .interval = interval()};
  if (Failed(Query(job.live, &report.observer))) report.observer.Reset();
  Insist(report, kIndexFile, [&] { OpenIndex(report); });
  WriteKind(report, kind);
  WriteSummaryDocument(report);
  WriteReportGraphs(report);
  Insist(report, kIndexFile, [&] { report.index.Save(job.folder + std::u16string(kIndexFile)); });
  ReportSaved(report, kIndexFile, report.index.rows());
}

Status CreateXmlStatsOutput(const Guid& iid, void** out) {
  return CreateComponentObject<XMLStatsOutput>(iid, out);
}

}  // namespace orvo
