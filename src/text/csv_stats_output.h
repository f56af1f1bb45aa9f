#pragma once

#include "frame/output_method.h"
#include "statistics/statistic_map.h"

namespace orvo {

/// The output method that writes delimited text: one file per section, to which every report appends its rows.
class CSVStatsOutput final : public OutputMethod {
 public:
  CSVStatsOutput();

 protected:
  void KeepFormat(std::u16string_view extension, std::u16string_view separator,
                  std::u16string_view template_root) override;
  void WriteReport(const ReportJob& job) override;

 private:
  std::u16string extension_;
  std::string narrow_separator_;
  StatisticMap statistic_map_;
};

/// Creates an object of the class and answers one of its interfaces.
Status CreateCsvStatsOutput(const Guid& iid, void** out);

}  // namespace orvo
