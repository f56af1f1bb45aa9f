#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "xml/category_documents.h"
#include "xml/node_families.h"
#include "xml/report_document.h"
#include "xml/row_groups.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

constexpr std::u16string_view kFile = u"ConversationStatistics.xml";
constexpr std::uint32_t kMostGrouped = 5000;

/// What conversations are shown against.
struct Tables {
  ComPtr<IAddressTable> addresses;
  ComPtr<IConversationIndex> index;
  ComPtr<IProtocolStats> protocols;
  ComPtr<IConversationStats> conversations;
  ComPtr<INodeStats> nodes;
  std::uint64_t total_bytes = 0;
};

/// A conversation as it is shown. The shares of ends that are no nodes are unknown.
struct ConversationRow {
  const ConversationEntry& entry;
  std::u16string source;
  std::u16string destination;
  std::u16string protocol;
  std::optional<std::u16string> share_sent{};
  std::optional<std::u16string> share_received{};
  std::u16string share_of_protocol{};
};

using Row = ConversationRow;
using Text = std::optional<std::u16string>;

constexpr RowText<Row> kBytes{"Bytes", [](const Row& row) { return Text(NumberText(row.entry.bytes)); }};
constexpr RowText<Row> kPackets{"Packets", [](const Row& row) { return Text(NumberText(row.entry.packets)); }};
constexpr RowText<Row> kSource{"SourceAddress", [](const Row& row) { return Text(row.source); }};
constexpr RowText<Row> kShareSent{"PctBytesSent", [](const Row& row) { return row.share_sent; }};
constexpr RowText<Row> kDestination{"DestinationAddress", [](const Row& row) { return Text(row.destination); }};
constexpr RowText<Row> kShareReceived{"PctBytesReceived", [](const Row& row) { return row.share_received; }};
constexpr RowText<Row> kProtocol{"Protocol", [](const Row& row) { return Text(row.protocol); }};
constexpr RowText<Row> kShareOfProtocol{"PctBytesProtocol", [](const Row& row) { return Text(row.share_of_protocol); }};

constexpr RowText<Row> kFlat[] = {kBytes,       kPackets,       kSource,   kShareSent,
                                  kDestination, kShareReceived, kProtocol, kShareOfProtocol};
constexpr RowText<Row> kGrouped[] = {kBytes,         kPackets,  kShareSent,      kDestination,
                                     kShareReceived, kProtocol, kShareOfProtocol};

/// The switches of the two reports of conversations ask for the document by a bit that they have in common; without
/// one, its own switch counts.
bool IsWanted(const XmlReport& report) {
  const std::int32_t additional_node = ReadSwitch(report, kSwitchOutputAdditionalNode).value;
  const std::int32_t conversations_only = ReadSwitch(report, kSwitchOutputConversationsOnly).value;
  return (additional_node & conversations_only) != 0 || report.IsOn(kSwitchOutputNodeDetails);
}

/// False when one of them is missing.
bool ObtainTables(XmlReport& report, Tables* tables, Status* nodes_status) {
  IStatsContext& live = *report.job.live;
  if (Failed(live.GetAddressTable(tables->addresses.Out())) || !tables->addresses) return false;
  if (Failed(live.GetConversationIndex(tables->index.Out())) || !tables->index) return false;
  tables->protocols = Obtain(live, kProtocolCategory);
  tables->conversations = Obtain(live, kConversationCategory);
  if (!tables->protocols || !tables->conversations) return false;
  *nodes_status = GetCategory(&live, kNodeCategory, &tables->nodes);
  if (Failed(*nodes_status) || !tables->nodes) return false;
  Check(live.GetTotalBytes(&tables->total_bytes));
  return true;
}

std::u16string TextOfAddress(XmlReport& report, const Tables& tables, std::uint32_t address) {
  const AddressRecord* record = nullptr;
  Check(tables.addresses->GetRecord(address, &record));
  return AddressText(report, record);
}

Text ShareOfNode(const Tables& tables, std::uint64_t bytes, std::uint32_t address,
                 std::uint64_t NodeEntry::*direction) {
  const NodeEntry* node = nullptr;
  Check(tables.nodes->FindByAddress(address, &node));
  if (!node) return {};
  return RatioText(bytes, node->*direction);
}

std::u16string ShareOfProtocol(const Tables& tables, std::uint64_t bytes, std::uint32_t key) {
  const ProtocolEntry* protocol = nullptr;
  Check(tables.protocols->FindByKey(key, &protocol));
  return RatioText(bytes, protocol ? protocol->bytes : 0);
}

/// The row of a conversation; nothing when its source is not of that type.
std::optional<Row> MakeRow(XmlReport& report, const Tables& tables, const ConversationEntry& entry, std::uint8_t type) {
  ConversationEndpoints ends;
  Check(tables.index->Resolve(entry.key, &ends));
  if (ends.source == kNoAddress) return {};
  const AddressRecord* source = nullptr;
  Check(tables.addresses->GetRecord(ends.source, &source));
  if (!source || source->type != type) return {};
  return Row{.entry = entry,
             .source = AddressText(report, source),
             .destination = TextOfAddress(report, tables, ends.destination),
             .protocol = TextOfAddress(report, tables, ends.protocol),
             .share_sent = ShareOfNode(tables, entry.bytes, ends.source, &NodeEntry::bytes_sent),
             .share_received = ShareOfNode(tables, entry.bytes, ends.destination, &NodeEntry::bytes_received),
             .share_of_protocol = ShareOfProtocol(tables, entry.bytes, ends.protocol)};
}

/// Calls visit(row) for every conversation whose source is of that type.
template <class Visit>
void ForEachRow(XmlReport& report, const Tables& tables, std::uint8_t type, Visit&& visit) {
  std::uint64_t key = 0;
  for (Status status = Check(tables.index->FirstOfType(type, &key)); status == S_OK;
       status = Check(tables.index->NextOfType(key, &key))) {
    const ConversationEntry* entry = nullptr;
    Check(tables.conversations->FindByKey(key, &entry));
    if (!entry) continue;
    if (const std::optional<Row> row = MakeRow(report, tables, *entry, type)) visit(*row);
  }
}

/// Adds the conversations of one type; gives their number.
std::uint64_t WriteType(XmlReport& report, const Tables& tables, std::uint8_t type, bool is_grouped,
                        XmlElement element) {
  std::uint64_t rows = 0;
  RowGroups groups(element, "SourceAddress", "Name");
  ForEachRow(report, tables, type, [&](const Row& row) {
    ++rows;
    if (!is_grouped) return AddTexts<Row>(kFlat, row, element.AddElement("ConversationStat"));
    RowGroups::Group& group = groups.Of(row.source);
    group.bytes += row.entry.bytes;
    AddAllTexts<Row>(kGrouped, row, group.element.AddElement("ConversationStat"));
  });
  for (const RowGroups::Group& group : groups.all()) {
    XmlElement(group.element).AddElement("TotalPctBytesSent", RatioText(group.bytes, tables.total_bytes));
  }
  return rows;
}

bool WriteDocument(XmlReport& report) {
  if (!IsWanted(report)) return false;
  Tables tables;
  Status nodes_status = E_FAIL;
  if (!ObtainTables(report, &tables, &nodes_status)) return false;
  std::uint32_t count = 0;
  Check(tables.conversations->GetCount(&count));
  const bool is_grouped = count <= kMostGrouped;

  XmlTree document;
  XmlElement root = document.AddRoot("ConversationStatistics");
  root.SetAttribute("Version", is_grouped ? u"1.0" : u"1.1");
  XmlElement summary = AddSummary(report, root, *report.job.live);
  Check(tables.nodes->GetCount(&count));
  AddNumber(summary, "NodeCount", count);
  std::uint64_t rows = 0;
  ForEachFamily(report, root.AddElement("Stats"), [&](const XmlNodeFamily& family, XmlElement type) {
    rows += WriteType(report, tables, family.type, is_grouped, type);
  });
  AddNumber(summary, "ConvoCount", rows);
  SaveDocument(report, kFile, document, rows);
  return nodes_status == S_OK;
}

}  // namespace

bool WriteConversationDocument(XmlReport& report) {
  return Contain(report, kFile, [&] { return WriteDocument(report); });
}

}  // namespace orvo
