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
using Column = RowColumn<Row>;

template <std::u16string Row::*text>
bool Address(const Row& row, std::string_view name, XmlWriter element) {
  element.AddElement(name, row.*text);
  return true;
}

template <std::uint64_t HierarchyEntry::*... counts>
bool Sum(const Row& row, std::string_view name, XmlWriter element) {
  AddNumber(element, name, ((row.entry.*counts) + ...));
  return true;
}

template <std::uint64_t HierarchyEntry::*bytes>
bool Share(const Row& row, std::string_view name, XmlWriter element) {
  AddRatio(name, row.entry.*bytes, row.total_bytes, element);
  return true;
}

using Entry = HierarchyEntry;
constexpr Column kPhysical{"PhysicalAddress", Address<&Row::physical>};
constexpr Column kLogical{"LogicalAddress", Address<&Row::logical>};
constexpr Column kPackets{"Packets", Sum<&Entry::packets_sent, &Entry::packets_received>};
constexpr Column kBytes{"Bytes", Sum<&Entry::bytes_sent, &Entry::bytes_received>};
constexpr Column kPacketsReceived{"PacketsReceived", Sum<&Entry::packets_received>};
constexpr Column kBytesReceived{"BytesReceived", Sum<&Entry::bytes_received>};
constexpr Column kShareReceived{"PctBytesReceived", Share<&Entry::bytes_received>};
constexpr Column kPacketsSent{"PacketsSent", Sum<&Entry::packets_sent>};
constexpr Column kBytesSent{"BytesSent", Sum<&Entry::bytes_sent>};
constexpr Column kShareSent{"PctBytesSent", Share<&Entry::bytes_sent>};

constexpr Column kFlat[] = {kPhysical,      kLogical,       kPackets,     kBytes,     kPacketsReceived,
                            kBytesReceived, kShareReceived, kPacketsSent, kBytesSent, kShareSent};
constexpr Column kGrouped[] = {kLogical,       kBytes,     kPackets,   kPacketsReceived, kBytesReceived,
                               kShareReceived, kShareSent, kBytesSent, kPacketsSent};

std::u16string TextOfAddress(XmlReport& report, IAddressTable& addresses, std::uint32_t address) {
  const AddressRecord* record = nullptr;
  if (Failed(addresses.GetRecord(address, &record))) return {};
  return AddressText(report, record);
}

/// Adds a row for every logical address behind a physical one; gives their number.
std::uint64_t WriteRows(XmlReport& report, IAddressTable& addresses, IHierarchyStats& hierarchy, std::uint32_t count,
                        XmlWriter stats) {
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
      AddValues<Row>(kFlat, row, stats.AddElement("NodeStat"));
    } else {
      AddValues<Row>(kGrouped, row, groups.Of(row.physical).element.AddElement("NodeStat"));
    }
  }
  groups.Finish([](RowGroups::Group&) {});
  return rows;
}

void WriteDocument(XmlReport& report) {
  ComPtr<IAddressTable> addresses;
  if (Failed(report.job.live->GetAddressTable(addresses.Out())) || !addresses) return;
  const ComPtr<IHierarchyStats> hierarchy = Obtain(*report.job.live, kHierarchyCategory);
  if (!hierarchy) return;
  std::uint32_t count = 0;
  Check(hierarchy->GetCount(&count));

  XmlFile document(report.job.folder + std::u16string(kFile));
  const XmlWriter root = document.Add("HierarchicalNodeStatistics");
  root.SetAttribute("Version", count > kMostGrouped ? u"2.1" : u"2.0");
  AddSummary(report, root, *report.job.live);
  const std::uint64_t rows = WriteRows(report, *addresses, *hierarchy, count, root.AddElement("Stats"));
  if (rows == 0) return;
  document.Commit();
  ReportSaved(report, kFile, rows);
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
