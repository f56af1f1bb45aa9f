#pragma once

#include "frame/output_method.h"
#include "pdf/pdf_document.h"

namespace orvo {

struct PdfReport;

/// The output method that writes a whole report as one PDF file, "Report.pdf", in place of any that is there.
class PDFStatsOutput final : public OutputMethod {
 public:
  PDFStatsOutput();

 protected:
  void KeepFormat(std::u16string_view extension, std::u16string_view separator,
                  std::u16string_view template_root) override;
  void WriteReport(const ReportJob& job) override;

 private:
  static void DrawSections(PdfReport& report);

  /// No capture runs behind the statistics, as the live report before found.
  bool lacks_site_ = false;
};

/// Creates an object of the class and answers one of its interfaces.
Status CreatePdfStatsOutput(const Guid& iid, void** out);

}  // namespace orvo
