#include "pdf/section_table.h"
#include "pdf/sections.h"
#include "prefs/switch_ids.h"
#include "statistics/obtain.h"
#include "statistics/protocol_path.h"

namespace orvo {
namespace {

constexpr std::u16string_view kSeparator = u"//";

/// What percentages are taken of.
struct Totals {
  std::uint64_t bytes = 0;
  std::uint64_t packets = 0;
};

struct ProtocolRow {
  std::u16string name;
  const ProtocolEntry& protocol;
  const Totals& totals;
};

template <std::uint64_t ProtocolEntry::*count>
Value Count(const ProtocolRow& row) {
  return Value::Unsigned(row.protocol.*count);
}

template <std::uint64_t ProtocolEntry::*count, std::uint64_t Totals::*whole>
void ShowPercentage(PdfReport& /*report*/, const ProtocolRow& row, SectionCell* cell) {
  WordPercentage(row.protocol.*count, row.totals.*whole, &cell->text);
}

constexpr SectionColumn<ProtocolRow> kColumns[] = {
    {"Name", "", 50, ShowText<&ProtocolRow::name>, 26},
    {"Bytes", "", 225, Show<Count<&ProtocolEntry::bytes>>},
    {"Pct of", "Bytes", 325, ShowPercentage<&ProtocolEntry::bytes, &Totals::bytes>},
    {"Packets", "", 395, Show<Count<&ProtocolEntry::packets>>},
    {"Pct of", "Packets", 495, ShowPercentage<&ProtocolEntry::packets, &Totals::packets>},
};

/// The name of the protocol with an address, which is replaced; false for what is no protocol, cannot be named, or has
/// a gap among the names above it.
bool FindName(PdfReport& report, std::uint32_t address, std::u16string* name) {
  const AddressRecord* record = nullptr;
  if (Failed(report.addresses->GetRecord(address, &record)) || !record || record->type != kAddressProtocol) {
    return false;
  }
  if (Failed(Guard([&] { report.util.FormatAddress(*record, true, name); }))) return false;
  return !HasGap(ProtocolChain(report.protocol_names, ProtocolNumber(*record), kSeparator).value_or(*name), kSeparator);
}

}  // namespace

void PrintProtocols(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputProtocolStats)) return;
  const ComPtr<IProtocolStats> protocols = Obtain(*report.job.statistics, kProtocolCategory);
  if (!protocols || !report.addresses) return;
  Totals totals;
  Check(report.job.statistics->GetTotalBytes(&totals.bytes));
  Check(report.job.statistics->GetTotalPackets(&totals.packets));
  std::uint32_t count = 0;
  Check(protocols->GetCount(&count));

  SectionTable<ProtocolRow> table(
      report, parent, {.bookmark = u"Protocols", .page_title = u"Protocol Statistics: Reported "}, kColumns);
  std::u16string name;
  for (std::uint32_t index = 0; index < count; ++index) {
    const ProtocolEntry* protocol = nullptr;
    if (Failed(protocols->GetEntry(index, &protocol)) || !protocol) continue;
    if (FindName(report, protocol->key, &name)) {
      table.AddRow({.name = name, .protocol = *protocol, .totals = totals});
    }
  }
}

}  // namespace orvo
