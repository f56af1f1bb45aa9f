#include "text/hierarchy_file.h"

#include "platform/error.h"
#include "text/columns.h"
#include "text/section_file.h"

namespace orvo {
namespace {

/// What a row of the file is made of: the entry, and the totals of the capture.
struct HierarchyRow {
  const HierarchyEntry* entry;
  std::uint64_t total_packets;
  std::uint64_t total_bytes;
};

constexpr Column<HierarchyRow> kColumns[] = {
    {kStrTotalPackets, kAlways, [](const HierarchyRow& row) { return Value::Unsigned(row.total_packets); }},
    {kStrTotalBytes, kAlways, [](const HierarchyRow& row) { return Value::Unsigned(row.total_bytes); }},
    {kStrTotalPackets, kAlways,
     [](const HierarchyRow& row) { return Value::Unsigned(row.entry->packets_sent + row.entry->packets_received); }},
    {kStrTotalBytes, kAlways,
     [](const HierarchyRow& row) { return Value::Unsigned(row.entry->bytes_sent + row.entry->bytes_received); }},
    {kStrPacketsReceived, kAlways,
     [](const HierarchyRow& row) { return Value::Unsigned(row.entry->packets_received); }},
    {kStrBytesReceived, kAlways, [](const HierarchyRow& row) { return Value::Unsigned(row.entry->bytes_received); }},
    {kStrPacketsSent, kAlways, [](const HierarchyRow& row) { return Value::Unsigned(row.entry->packets_sent); }},
    {kStrBytesSent, kAlways, [](const HierarchyRow& row) { return Value::Unsigned(row.entry->bytes_sent); }},
};

/// The header ends with a separator; the rows do not.
std::string Header(const TextReport& report, const ColumnSet<HierarchyRow>& columns) {
  TextBuffer line(256);
  line.Append("Time Saved");
  for (StringId title : {kStrPhysicalAddress, kStrLogicalAddress}) {
    line.Append(report.separator);
    line.Append(AsciiTextOf(title));
  }
  columns.AppendTitles(report.separator, &line);
  line.Append(report.separator);
  line.Append('\n');
  return std::string(line.view());
}

void AppendAddressField(TextReport& report, std::uint32_t address, TextBuffer* row) {
  const AddressRecord* record = nullptr;
  Check(report.addresses->GetRecord(address, &record));
  row->Append(report.separator);
  AppendAddress(report, record, row);
}

void WriteRows(TextReport& report, IHierarchyStats& hierarchy, const ColumnSet<HierarchyRow>& columns,
               SectionFile& file) {
  const std::string time_saved = TimeSaved(report);
  HierarchyRow values{};
  Check(report.job.live->GetTotalPackets(&values.total_packets));
  Check(report.job.live->GetTotalBytes(&values.total_bytes));
  std::uint32_t count = 0;
  Check(hierarchy.GetCount(&count));
  TextBuffer& row = file.row();
  for (std::uint32_t index = 0; index < count; ++index) {
    Check(hierarchy.GetEntry(index, &values.entry));
    if (values.entry->parent == kNoAddress) continue;
    row.Append(time_saved);
    AppendAddressField(report, values.entry->address, &row);
    AppendAddressField(report, values.entry->parent, &row);
    columns.AppendValues(report, values, &row);
    file.EndRow();
  }
}

}  // namespace

void WriteHierarchyFile(TextReport& report) {
  ComPtr<IHierarchyStats> hierarchy;
  if (Failed(GetCategory(report.job.live, kHierarchyCategory, &hierarchy)) || !hierarchy || !report.addresses) return;
  ColumnSet<HierarchyRow> columns(report, kColumns);
  WriteSectionFile(report, FilePath(report, kStrNodeStatistics, kStrHierarchy), Header(report, columns),
                   [&](SectionFile& file) { WriteRows(report, *hierarchy, columns, file); });
}

}  // namespace orvo
