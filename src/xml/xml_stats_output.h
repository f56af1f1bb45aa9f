#pragma once

#include "frame/output_method.h"
#include "xml/xml_report.h"

namespace orvo {

/// The output method that writes XML documents: an index, "StatsReport.xml", and documents beside it. A report into a
/// folder that holds an earlier one extends it.
class XMLStatsOutput final : public OutputMethod {
 public:
  XMLStatsOutput();

 protected:
  void KeepFormat(std::u16string_view extension, std::u16string_view separator,
                  std::u16string_view template_root) override;
  void WriteReport(const ReportJob& job) override;

 private:
  std::u16string template_root_;
  XmlMemory memory_;
};

/// Creates an object of the class and answers one of its interfaces.
Status CreateXmlStatsOutput(const Guid& iid, void** out);

}  // namespace orvo
