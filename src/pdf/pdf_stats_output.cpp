#include "pdf/pdf_stats_output.h"

#include "pdf/sections.h"

namespace orvo {
namespace {

constexpr MethodTraits kTraits{.class_id = kPdfStatsOutputClass, .settings_element = u"pdfstatsoutput"};

using Section = void (*)(PdfReport& report, PdfOutline* parent);

/// Sections read their own switches; one that fails ends alone.
template <std::size_t count>
void Print(PdfReport& report, PdfOutline* parent, const Section (&sections)[count]) {
  for (Section section : sections) Contain(report, [&] { section(report, parent); });
}

// In the order of their pages, with the entry of the outline that they stand below.
constexpr Section kOpening[] = {DrawDashboard};
constexpr Section kStatistics[] = {PrintSummary, PrintNodes, PrintProtocols};
constexpr Section kAnalyses[] = {PrintExpert, PrintMedia};  // each with an entry of its own
constexpr Section kWireless[] = {PrintWirelessNodes, PrintWirelessChannels};

}  // namespace

PDFStatsOutput::PDFStatsOutput() : OutputMethod(kTraits) {}

void PDFStatsOutput::KeepFormat(std::u16string_view /*extension*/, std::u16string_view /*separator*/,
                                std::u16string_view /*template_root*/) {}

void PDFStatsOutput::DrawSections(PdfReport& report) {
  PdfDocument& document = report.document;
  IStatsContext& live = *report.job.live;
  report.util.FormatTimestamp(report.time_mark, &report.time_text);
  document.SetCompression();
  PdfOutline* root = document.CreateRootOutline(u"Orvo Engine Report");
  Print(report, root, kOpening);
  Check(live.GetAddressTable(report.addresses.Out()));
  Print(report, document.CreateChildOutline(root, u"Statistics"), kStatistics);
  Print(report, root, kAnalyses);
  std::uint32_t medium_subtype = 0;
  Check(live.GetMediumSubtype(&medium_subtype));
  if (IsWirelessSubtype(medium_subtype)) Print(report, document.CreateChildOutline(root, u"Wireless"), kWireless);
  // Graphs are the one section that the report does not do without.
  if (report.job.graphs) DrawGraphPages(report, document.CreateChildOutline(root, u"Graphs"));
}

void PDFStatsOutput::WriteReport(const ReportJob& job) {
  if (job.from_live) lacks_site_ = ReportUtil::LacksSite(job.live);
  if (Failed(job.availability)) return;
  const std::u16string path = job.folder + u"Report.pdf";
  ComPtr<IReportObserver> observer;
  if (Failed(Query(job.live, &observer))) observer.Reset();

  PdfDocument document;
  PdfReport report{.job = job,
                   .preferences = preferences(),
                   .util = report_util(),
                   .protocol_names = protocol_names(),
                   .document = document,
                   .time_mark = time_mark(),
                   .lacks_site = lacks_site_,
                   .observer = observer.get()};
  Status cause = S_OK;
  const Status status = Guard([&] {
    DrawSections(report);
    document.Save(path, &cause);
  });
  if (observer) {
    const Status told = Failed(cause) ? cause : Failed(status) ? status : report.first_failure;
    observer->FileDone(path.c_str(), Failed(status) ? 0 : report.rows, told);
  }
  Check(status);
}

Status CreatePdfStatsOutput(const Guid& iid, void** out) {
  return CreateComponentObject<PDFStatsOutput>(iid, out);
}

}  // namespace orvo
