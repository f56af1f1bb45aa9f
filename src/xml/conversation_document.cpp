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

/// A conversation as it is shown. Ends that are no nodes are null, and their shares unknown.
struct ConversationRow {
  const ConversationEntry& entry;
  std::u16string source;
  std::u16string destination;
  std::u16string protocol;
  const NodeEntry* source_node;
  const NodeEntry* destination_node;
  std::uint64_t protocol_bytes;
};

using Row = ConversationRow;
using Column = RowColumn<Row>;

template <std::uint64_t ConversationEntry::*count>
bool Count(const Row& row, std::string_view name, XmlWriter element) {
  AddNumber(element, name, row.entry.*count);
  return true;
}

template <std::u16string Row::*text>
bool Address(const Row& row, std::string_view name, XmlWriter element) {
  element.AddElement(name, row.*text);
  return true;
}

template <const NodeEntry* Row::*node, std::uint64_t NodeEntry::*bytes>
bool ShareOfNode(const Row& row, std::string_view name, XmlWriter element) {
  if (!(row.*node)) return false;
  AddRatio(name, row.entry.bytes, row.*node->*bytes, element);
  return true;
}

bool ShareOfProtocol(const Row& row, std::string_view name, XmlWriter element) {
  AddRatio(name, row.entry.bytes, row.protocol_bytes, element);
  return true;
}

constexpr Column kBytes{"Bytes", Count<&ConversationEntry::bytes>};
constexpr Column kPackets{"Packets", Count<&ConversationEntry::packets>};
constexpr Column kSource{"SourceAddress", Address<&Row::source>};
constexpr Column kShareSent{"PctBytesSent", ShareOfNode<&Row::source_node, &NodeEntry::bytes_sent>};
constexpr Column kDestination{"DestinationAddress", Address<&Row::destination>};
constexpr Column kShareReceived{"PctBytesReceived", ShareOfNode<&Row::destination_node, &NodeEntry::bytes_received>};
constexpr Column kProtocol{"Protocol", Address<&Row::protocol>};
constexpr Column kShareOfProtocol{"PctBytesProtocol", ShareOfProtocol};

constexpr Column kFlat[] = {kBytes,       kPackets,       kSource,   kShareSent,
                            kDestination, kShareReceived, kProtocol, kShareOfProtocol};
constexpr Column kGrouped[] = {kBytes, kPackets, kShareSent, kDestination, kShareReceived, kProtocol, kShareOfProtocol};

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

const NodeEntry* NodeOf(const Tables& tables, std::uint32_t address) {
  const NodeEntry* node = nullptr;
  Check(tables.nodes->FindByAddress(address, &node));
  return node;
}

std::uint64_t BytesOfProtocol(const Tables& tables, std::uint32_t key) {
  const ProtocolEntry* protocol = nullptr;
  Check(tables.protocols->FindByKey(key, &protocol));
  return protocol ? protocol->bytes : 0;
}

/// Calls visit(entry, ends, source) for every conversation whose source is of that type.
template <class Visit>
void ForEachConversation(const Tables& tables, std::uint8_t type, Visit&& visit) {
  std::uint64_t key = 0;
  for (Status status = Check(tables.index->FirstOfType(type, &key)); status == S_OK;
       status = Check(tables.index->NextOfType(key, &key))) {
    const ConversationEntry* entry = nullptr;
    Check(tables.conversations->FindByKey(key, &entry));
    if (!entry) continue;
    ConversationEndpoints ends;
    Check(tables.index->Resolve(entry->key, &ends));
    if (ends.source == kNoAddress) continue;
    const AddressRecord* source = nullptr;
    Check(tables.addresses->GetRecord(ends.source, &source));
    if (source && source->type == type) visit(*entry, ends, *source);
  }
}

std::uint64_t CountRows(const XmlReport& report, const Tables& tables) {
  std::uint64_t rows = 0;
  for (const XmlNodeFamily& family : kXmlNodeFamilies) {
    if (report.IsOn(family.gate)) ForEachConversation(tables, family.type, [&](const auto&...) { ++rows; });
  }
  return rows;
}

/// Adds the conversations of one type.
void WriteType(XmlReport& report, const Tables& tables, std::uint8_t type, bool is_grouped, XmlWriter element) {
  RowGroups groups(element, "SourceAddress", "Name");
  ForEachConversation(
      tables, type,
      [&](const ConversationEntry& entry, const ConversationEndpoints& ends, const AddressRecord& source) {
        const Row row{.entry = entry,
                      .source = AddressText(report, &source),
                      .destination = TextOfAddress(report, tables, ends.destination),
                      .protocol = TextOfAddress(report, tables, ends.protocol),
                      .source_node = NodeOf(tables, ends.source),
                      .destination_node = NodeOf(tables, ends.destination),
                      .protocol_bytes = BytesOfProtocol(tables, ends.protocol)};
        if (!is_grouped) return AddValues<Row>(kFlat, row, element.AddElement("ConversationStat"));
        RowGroups::Group& group = groups.Of(row.source);
        group.bytes += entry.bytes;
        AddAllValues<Row>(kGrouped, row, group.element.AddElement("ConversationStat"));
      });
  groups.Finish(
      [&](RowGroups::Group& group) { AddRatio("TotalPctBytesSent", group.bytes, tables.total_bytes, group.element); });
}

bool WriteDocument(XmlReport& report) {
  if (!IsWanted(report)) return false;
  Tables tables;
  Status nodes_status = E_FAIL;
  if (!ObtainTables(report, &tables, &nodes_status)) return false;
  std::uint32_t count = 0;
  Check(tables.conversations->GetCount(&count));
  const bool is_grouped = count <= kMostGrouped;

  XmlFile document(report.job.folder + std::u16string(kFile));
  const XmlWriter root = document.Add("ConversationStatistics");
  root.SetAttribute("Version", is_grouped ? u"1.0" : u"1.1");
  const XmlWriter summary = AddSummary(report, root, *report.job.live);
  Check(tables.nodes->GetCount(&count));
  AddNumber(summary, "NodeCount", count);
  const std::uint64_t rows = CountRows(report, tables);
  AddNumber(summary, "ConvoCount", rows);
  ForEachFamily(report, root.AddElement("Stats"), [&](const XmlNodeFamily& family, XmlWriter type) {
    WriteType(report, tables, family.type, is_grouped, type);
  });
  document.Commit();
  ReportSaved(report, kFile, rows);
  return nodes_status == S_OK;
}

}  // namespace

bool WriteConversationDocument(XmlReport& report) {
  return Contain(report, kFile, [&] { return WriteDocument(report); });
}

}  // namespace orvo
