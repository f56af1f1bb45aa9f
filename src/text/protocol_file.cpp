#include "text/protocol_file.h"

#include <algorithm>
#include <optional>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/protocol_path.h"
#include "text/section_file.h"

namespace orvo {
namespace {

constexpr std::u16string_view kSeparator = u"//";

struct Switches {
  bool path;
  bool packets;
};

/// How a protocol is shown.
struct ProtocolTexts {
  std::u16string name;
  std::u16string path;
};

/// The texts of a protocol; nothing for one that cannot be named, or whose path has a gap.
std::optional<ProtocolTexts> TextsOf(TextReport& report, const AddressRecord& record) {
  ProtocolTexts texts;
  if (Failed(Guard([&] { report.util.FormatAddress(record, false, &texts.name); }))) return {};
  const std::uint16_t number = ProtocolNumber(record);
  if (report.protocol_names.IsTopLevel(number) == S_OK) {
    if (HasGap(texts.name, kSeparator)) return {};
    texts.path = texts.name;
  } else if (std::optional<std::u16string> path = ProtocolPath(report.protocol_names, number, kSeparator)) {
    texts.path = *std::move(path);
  } else {
    return {};
  }
  if (texts.path.empty()) {
    texts.path = texts.name;
  } else {
    std::ranges::replace(texts.path, u',', u'-');
  }
  return texts;
}

std::string Header(const TextReport& report, const Switches& switches) {
  // The first title is these three words without anything between them.
  std::string line = "Report::Time";
  auto add = [&](StringId title) { line.append(report.separator).append(AsciiTextOf(title)); };
  add(kStrId);
  add(kStrName);
  if (switches.path) add(kStrPath);
  if (switches.packets) add(kStrPackets);
  add(kStrBytes);
  return line + '\n';
}

void WriteRow(const TextReport& report, const std::string& time, const ProtocolEntry& entry,
              const AddressRecord& record, const ProtocolTexts& texts, const Switches& switches, SectionFile& file) {
  TextBuffer& row = file.row();
  row.Append(time);
  row.Append(report.separator);
  row.AppendInteger(ProtocolNumber(record));
  row.Append(report.separator);
  row.AppendWide(texts.name);
  if (switches.path) {
    row.Append(report.separator);
    row.AppendWide(texts.path);
  }
  if (switches.packets) {
    row.Append(report.separator);
    row.AppendInteger(entry.packets);
  }
  row.Append(report.separator);
  row.AppendInteger(entry.bytes);
  file.EndRow();
}

void WriteRows(TextReport& report, IProtocolStats& protocols, const Switches& switches, SectionFile& file) {
  const std::string time = TimeSaved(report);
  std::uint32_t count = 0;
  Check(protocols.GetCount(&count));
  for (std::uint32_t index = 0; index < count; ++index) {
    const ProtocolEntry* entry = nullptr;
    Check(protocols.GetEntry(index, &entry));
    const AddressRecord* record = nullptr;
    if (Failed(report.addresses->GetRecord(entry->key, &record)) || !record || record->type != kAddressProtocol)
      continue;
    if (std::optional<ProtocolTexts> texts = TextsOf(report, *record)) {
      WriteRow(report, time, *entry, *record, *texts, switches, file);
    }
  }
}

}  // namespace

void WriteProtocolFile(TextReport& report) {
  ComPtr<IProtocolStats> protocols;
  if (Failed(GetCategory(report.job.statistics, kProtocolCategory, &protocols)) || !protocols || !report.addresses) {
    return;
  }
  const Switches switches{.path = report.IsOn(kSwitchProtoPath), .packets = report.IsOn(kSwitchProtoPackets)};
  WriteSectionFile(report, FilePath(report, kStrProtocolStatistics, kStrInstance), Header(report, switches),
                   [&](SectionFile& file) { WriteRows(report, *protocols, switches, file); });
}

}  // namespace orvo
