#include "xml/report_index.h"

#include "platform/xml_writer.h"

namespace orvo {
namespace {

constexpr std::string_view kRoot = "StatsReport";

}  // namespace

bool ReportIndex::Load(std::u16string_view path) {
  if (Succeeded(old_.Load(path)) && old_.root() == kRoot) return true;
  Clear();
  return false;
}

void ReportIndex::Add(std::string_view lines, std::uint64_t rows) {
  added_.emplace_back(lines);
  rows_ += rows;
}

void ReportIndex::Save(std::u16string_view path) const {
  XmlFile file(path);
  const XmlWriter root = file.Add(kRoot);
  for (const XmlParts::Part& part : old_.parts()) root.AddLines(part.lines);
  for (const std::string& lines : added_) root.AddLines(lines);
  file.Commit();
}

}  // namespace orvo
