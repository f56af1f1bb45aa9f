#include <optional>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/protocol_path.h"
#include "xml/category_documents.h"
#include "xml/report_document.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

constexpr std::u16string_view kHistoryFile = u"ProtocolStatistics.xml";
constexpr std::string_view kElement = "ProtocolStatistics";
constexpr std::u16string_view kSeparator = u"\\";

struct ProtocolRow {
  const ProtocolEntry& protocol;
  std::uint64_t total_bytes;
};

constexpr XmlColumn<ProtocolRow> kColumns[] = {
    {"Packets", kSwitchProtoPackets, [](const ProtocolRow& row) { return Value::Unsigned(row.protocol.packets); }},
    {"Bytes", kNoSwitch, [](const ProtocolRow& row) { return Value::Unsigned(row.protocol.bytes); }},
    {"PctBytes", kNoSwitch, [](const ProtocolRow& row) { return Ratio(row.protocol.bytes, row.total_bytes); },
     RealForm::kRatio},
};

struct ProtocolTexts {
  std::u16string name;
  std::u16string path;
};

/// How a protocol is shown; nothing for one whose path cannot be told or has a gap. What is no protocol of the tree has
/// no path.
std::optional<ProtocolTexts> TextsOf(XmlReport& report, const AddressRecord& record) {
  ProtocolTexts texts;
  if (record.type != kAddressProtocol) {
    report.util.FormatAddress(record, false, &texts.name);
    return texts;
  }
  const std::uint16_t number = ProtocolNumber(record);
  Check(report.protocol_names.AppendName(number, &texts.name));
  if (report.protocol_names.IsTopLevel(number) == S_OK) {
    report.util.FormatAddress(record, false, &texts.path);
    if (HasGap(texts.path, kSeparator)) return {};
    return texts;
  }
  std::optional<std::u16string> path = ProtocolPath(report.protocol_names, number, kSeparator);
  if (!path) return {};
  texts.path = *std::move(path);
  return texts;
}

/// The name behind a dot and a blank for every level above it.
std::u16string Indented(const ProtocolTexts& texts) {
  std::u16string text;
  for (char16_t unit : texts.path) {
    if (unit == u'\\') text += u". ";
  }
  return text + texts.name;
}

/// Fills an entry of the index or of the history; nothing when the statistics have no protocols.
std::optional<std::uint64_t> FillEntry(XmlReport& report, IStatsContext& statistics, IAddressTable& addresses,
                                       XmlWriter entry) {
  const ComPtr<IProtocolStats> protocols = Obtain(statistics, kProtocolCategory);
  if (!protocols) return {};
  std::uint32_t count = 0;
  Check(protocols->GetCount(&count));
  AddNumber(AddSummary(report, entry, statistics), "ProtocolCount", count);
  std::uint64_t total_bytes = 0;
  Check(statistics.GetTotalBytes(&total_bytes));

  const XmlColumns<ProtocolRow> columns(report, kColumns);
  const XmlWriter stats = entry.AddElement("Stats");
  std::uint64_t rows = 0;
  for (std::uint32_t index = 0; index < count; ++index) {
    const ProtocolEntry* protocol = nullptr;
    Check(protocols->GetEntry(index, &protocol));
    const AddressRecord* record = nullptr;
    if (Failed(addresses.GetRecord(protocol->key, &record)) || !record) continue;
    const std::optional<ProtocolTexts> texts = TextsOf(report, *record);
    if (!texts) continue;
    const XmlWriter row = stats.AddElement("ProtoStat");
    row.SetAttribute("Protocol", Indented(*texts));
    row.AddElement("Name", texts->name);
    row.AddElement("Path", texts->path);
    columns.AddTo(report, {.protocol = *protocol, .total_bytes = total_bytes}, row);
    ++rows;
  }
  return rows;
}

}  // namespace

bool WriteProtocolDocument(XmlReport& report) {
  std::u16string_view file = kIndexFile;
  return Contain(report, file, [&] {
    if (!report.IsOn(kSwitchOutputProtocolStats)) return false;
    const ComPtr<IAddressTable> addresses = Addresses(report);
    if (!addresses) return false;
    IndexEntry entry(report, kElement, u"2.0");
    const std::optional<std::uint64_t> rows = FillEntry(report, *report.job.live, *addresses, entry.element());
    if (!rows) return false;
    entry.Keep(*rows);
    if (report.memory.extends_history()) {
      file = kHistoryFile;
      AddHistory(report, kHistoryFile, kElement, "History",
                 [&](XmlWriter history) { return FillEntry(report, *report.job.statistics, *addresses, history); });
    }
    return true;
  });
}

}  // namespace orvo
