#include "text/detail_file.h"

#include "platform/error.h"
#include "text/columns.h"
#include "text/section_file.h"

namespace orvo {
namespace {

constexpr std::string_view kTitles[] = {"Time Saved",
                                        "Source Address",
                                        "Percentage Sent",
                                        "Destination Address",
                                        "Percentage Received",
                                        "Protocol",
                                        "Protocol Percentage",
                                        "Bytes",
                                        "Packets"};

/// What a conversation is shown against.
struct Tables {
  ComPtr<IConversationStats> conversations;
  ComPtr<IConversationIndex> index;
  ComPtr<INodeStats> nodes;
  ComPtr<IProtocolStats> protocols;
};

template <class T>
bool Obtain(const TextReport& report, const Category<T>& category, ComPtr<T>* table) {
  return Succeeded(GetCategory(report.job.live, category, table)) && *table;
}

/// 100 * part / whole; nothing for a whole that is absent or 0.
Value Share(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? Value() : Value::Real(100.0 * static_cast<double>(part) / static_cast<double>(whole));
}

std::uint64_t NodeBytes(INodeStats& nodes, std::uint32_t address, std::uint64_t NodeEntry::*direction) {
  const NodeEntry* node = nullptr;
  Check(nodes.FindByAddress(address, &node));
  return node ? node->*direction : 0;
}

std::uint64_t ProtocolBytes(IProtocolStats& protocols, std::uint32_t key) {
  const ProtocolEntry* entry = nullptr;
  Check(protocols.FindByKey(key, &entry));
  return entry ? entry->bytes : 0;
}

/// An end of a conversation, or its protocol, and the conversation's share in what that carried.
void AppendPart(TextReport& report, std::uint32_t address, const Value& share, TextBuffer* row) {
  const AddressRecord* record = nullptr;
  Check(report.addresses->GetRecord(address, &record));
  AppendAddress(report, record, row);
  row->Append(report.separator);
  AppendValue(report, share, row);
  row->Append(report.separator);
}

void AppendRow(TextReport& report, const Tables& tables, const ConversationEntry& entry, TextBuffer* row) {
  ConversationEndpoints ends;
  Check(tables.index->Resolve(entry.key, &ends));
  AppendPart(report, ends.source, Share(entry.bytes, NodeBytes(*tables.nodes, ends.source, &NodeEntry::bytes_sent)),
             row);
  AppendPart(report, ends.destination,
             Share(entry.bytes, NodeBytes(*tables.nodes, ends.destination, &NodeEntry::bytes_received)), row);
  AppendPart(report, ends.protocol, Share(entry.bytes, ProtocolBytes(*tables.protocols, ends.protocol)), row);
  row->AppendInteger(entry.bytes);
  row->Append(report.separator);
  row->AppendInteger(entry.packets);
  row->Append(report.separator);
}

void WriteRows(TextReport& report, const Tables& tables, SectionFile& file) {
  const std::string time_saved = TimeSaved(report);
  std::uint32_t count = 0;
  Check(tables.conversations->GetCount(&count));
  for (std::uint32_t index = 0; index < count; ++index) {
    const ConversationEntry* entry = nullptr;
    Check(tables.conversations->GetEntry(index, &entry));
    file.row().Append(time_saved);
    file.row().Append(report.separator);
    AppendRow(report, tables, *entry, &file.row());
    file.EndRow();
  }
}

}  // namespace

void WriteDetailFile(TextReport& report) {
  Tables tables;
  if (!Obtain(report, kConversationCategory, &tables.conversations) || !Obtain(report, kNodeCategory, &tables.nodes) ||
      !Obtain(report, kProtocolCategory, &tables.protocols) || !report.addresses) {
    return;
  }
  Check(report.job.live->GetConversationIndex(tables.index.Out()));
  WriteSectionFile(report, FilePath(report, kStrNodeProtocolDetailStatistics),
                   HeaderLine(report.separator, kTitles, Layout::kTerminated),
                   [&](SectionFile& file) { WriteRows(report, tables, file); });
}

}  // namespace orvo
