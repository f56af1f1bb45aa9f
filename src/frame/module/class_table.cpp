#include "frame/module/class_table.h"

#include <algorithm>
#include <iterator>

#include "frame/stats_output_method.h"
#include "pdf/pdf_stats_output.h"
#include "prefs/stats_output_prefs.h"
#include "scheduler/skry_stats_output.h"
#include "text/csv_stats_output.h"
#include "xml/xml_stats_output.h"

namespace orvo {
namespace {

constexpr ModuleClass kClasses[] = {
    // The text method carries the bare name of the project.
    {kCsvStatsOutputClass, "OrvoReports.1", "OrvoReports", "CSVStatsOutput Class", 102, CreateCsvStatsOutput},
    {kSkryStatsOutputClass, "OrvoReports.StatsOutput.1", "OrvoReports.StatsOutput", "StatsOutput Class", 103,
     CreateSkryStatsOutput},
    {kStatsOutputPrefsClass, "OrvoReports.StatsOutputPrefs.1", "OrvoReports.StatsOutputPrefs", "StatsOutputPrefs Class",
     104, CreateStatsOutputPrefs},
    {kXmlStatsOutputClass, "OrvoReports.XMLStatsOutput.1", "OrvoReports.XMLStatsOutput", "XMLStatsOutput Class", 105,
     CreateXmlStatsOutput},
    {kPdfStatsOutputClass, "OrvoReports.PDFStatsOutput.1", "OrvoReports.PDFStatsOutput", "PDFStatsOutput Class", 106,
     CreatePdfStatsOutput},
};
static_assert(std::ranges::is_sorted(kClasses, {}, &ModuleClass::script));

}  // namespace

std::span<const ModuleClass> ModuleClasses() {
  return kClasses;
}

const ModuleClass* FindModuleClass(const Guid& class_id) {
  const auto* found = std::ranges::find(kClasses, class_id, &ModuleClass::class_id);
  return found == std::end(kClasses) ? nullptr : found;
}

}  // namespace orvo
