#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "xml/category_documents.h"
#include "xml/report_document.h"
#include "xml/row_groups.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

constexpr std::u16string_view kFile = u"HierarchicalNodeStatistics.xml";
constexpr std::uint32_t kMostGrouped = 10000;

struct HierarchyRow {
  const HierarchyEntry& entry;
  std::u16string physical;
  std::u16string logical;
  std::uint64_t total_bytes;
};

using Row = HierarchyRow;
using Text = std::optional<std::u16string>;

constexpr RowText<Row> kPhysical{"PhysicalAddress", [](const Row& row) { return Text(row.physical); }};
constexpr RowText<Row> kLogical{"LogicalAddress", [](const Row& row) { return Text(row.logical); }};
constexpr RowText<Row> kPackets{
    "Packets", [](const Row& row) { return Text(NumberText(row.entry.packets_sent + row.entry.packets_received)); }};
constexpr RowText<Row> kBytes{
    "Bytes", [](const Row& row) { return Text(NumberText(row.entry.bytes_sent + row.entry.bytes_received)); }};
constexpr RowText<Row> kPacketsReceived{"PacketsReceived",
                                        [](const Row& row) { return Text(NumberText(row.entry.packets_received)); }};
constexpr RowText<Row> kBytesReceived{"BytesReceived",
                                      [](const Row& row) { return Text(NumberText(row.entry.bytes_received)); }};
constexpr RowText<Row> kShareReceived{
    "PctBytesReceived", [](const Row& row) { return Text(RatioText(row.entry.bytes_received, row.total_bytes)); }};
constexpr RowText<Row> kPacketsSent{"PacketsSent",
                                    [](const Row& row) { return Text(NumberText(row.entry.packets_sent)); }};
constexpr RowText<Row> kBytesSent{"BytesSent", [](const Row& row) { return Text(NumberText(row.entry.bytes_sent)); }};
constexpr RowText<Row> kShareSent{
    "PctBytesSent", [](const Row& row) { return Text(RatioText(row.entry.bytes_sent, row.total_bytes)); }};

constexpr RowText<Row> kFlat[] = {kPhysical,      kLogical,       kPackets,     kBytes,     kPacketsReceived,
                                  kBytesReceived, kShareReceived, kPacketsSent, kBytesSent, kShareSent};
constexpr RowText<Row> kGrouped[] = {kLogical,       kBytes,     kPackets,   kPacketsReceived, kBytesReceived,
                                     kShareReceived, kShareSent, kBytesSent, kPacketsSent};

std::u16string TextOfAddress(XmlReport& report, IAddressTable& addresses, std::uint32_t address) {
  const AddressRecord* record = nullptr;
  if (Failed(addresses.GetRecord(address, &record))) return {};
  return AddressText(report, record);
}

/// Adds a row for every logical address behind a physical one; gives their number.
std::uint64_t WriteRows(XmlReport& report, IAddressTable& addresses, IHierarchyStats& hierarchy, std::uint32_t count,
                        XmlElement stats) {
  std::uint64_t total_bytes = 0;
  Check(report.job.live->GetTotalBytes(&total_bytes));
  RowGroups groups(stats, "PhysicalAddress", "Address");
  std::uint64_t rows = 0;
  for (std::uint32_t index = 0; index < count; ++index) {
    const HierarchyEntry* entry = nullptr;
    Check(hierarchy.GetEntry(index, &entry));
    if (entry->parent == kNoAddress) continue;
    const Row row{.entry = *entry,
                  .physical = TextOfAddress(report, addresses, entry->address),
                  .logical = TextOfAddress(report, addresses, entry->parent),
                  .total_bytes = total_bytes};
    ++rows;
    if (count > kMostGrouped) {
      AddTexts<Row>(kFlat, row, stats.AddElement("NodeStat"));
    } else {
      AddTexts<Row>(kGrouped, row, groups.Of(row.physical).element.AddElement("NodeStat"));
    }
  }
  return rows;
}

void WriteDocument(XmlReport& report) {
  ComPtr<IAddressTable> addresses;
  if (Failed(report.job.live->GetAddressTable(addresses.Out())) || !addresses) return;
  const ComPtr<IHierarchyStats> hierarchy = Obtain(*report.job.live, kHierarchyCategory);
  if (!hierarchy) return;
  std::uint32_t count = 0;
  Check(hierarchy->GetCount(&count));

  XmlTree document;
  XmlElement root = document.AddRoot("HierarchicalNodeStatistics");
  root.SetAttribute("Version", count > kMostGrouped ? u"2.1" : u"2.0");
  AddSummary(report, root, *report.job.live);
  const std::uint64_t rows = WriteRows(report, *addresses, *hierarchy, count, root.AddElement("Stats"));
  if (rows != 0) SaveDocument(report, kFile, document, rows);
}

}  // namespace

bool WriteHierarchyDocument(XmlReport& report) {
  return Contain(report, kFile, [&] {
    const SwitchReading wanted = ReadSwitch(report, kSwitchOutputNodeHierarchy);
    if (wanted.value == 0) return false;
    WriteDocument(report);
    // Whether there was anything to write makes no difference.
    return wanted.status == S_OK;
  });
}

}  // namespace orvo
