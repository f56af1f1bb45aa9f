#include "xml/xml_report.h"

#include <charconv>

#include "platform/error.h"
#include "util/ascii.h"

namespace orvo {
namespace {

void TellFailure(XmlReport& report, std::u16string_view file, Status status) {
  if (!report.observer) return;
  (void)Guard([&] { report.observer->FileDone((report.job.folder + std::u16string(file)).c_str(), 0, status); });
}

}  // namespace

SwitchReading ReadSwitch(const XmlReport& report, std::uint32_t identifier) {
  SwitchReading reading;
  reading.status = Check(report.preferences.GetPreference(identifier, &reading.value));
  return reading;
}

bool Contain(XmlReport& report, const std::u16string_view& file, const std::function<bool()>& write) {
  bool written = false;
  const Status status = Guard([&] { written = write(); });
  if (Succeeded(status)) return written;
  TellFailure(report, file, status);
  return false;
}

void Insist(XmlReport& report, std::u16string_view file, const std::function<void()>& write) {
  const Status status = Guard(write);
  if (Succeeded(status)) return;
  TellFailure(report, file, status);
  Raise(status);
}

ComPtr<IAddressTable> Addresses(const XmlReport& report) {
  ComPtr<IAddressTable> addresses;
  Check(report.job.live->GetAddressTable(addresses.Out()));
  return addresses;
}

std::u16string TimeSaved(XmlReport& report) {
  std::u16string text;
  report.util.FormatTimestamp(report.time_mark, &text);
  return text;
}

std::u16string AddressText(XmlReport& report, const AddressRecord* record) {
  std::u16string text;
  if (record) report.util.FormatAddress(*record, true, &text);
  return text;
}

std::u16string NumberText(std::uint64_t value) {
  char text[24];
  const auto end = std::to_chars(std::begin(text), std::end(text), value);
  return WidenAscii({text, end.ptr});
}

XmlWriter AddSummary(XmlReport& report, XmlWriter category, IStatsContext& totals) {
  const XmlWriter summary = category.AddElement("Summary");
  summary.AddElement("TimeSaved", TimeSaved(report));
  std::uint64_t total = 0;
  Check(totals.GetTotalPackets(&total));
  AddNumber(summary, "Packets", total);
  Check(totals.GetTotalBytes(&total));
  AddNumber(summary, "Bytes", total);
  return summary;
}

void AddNumber(XmlWriter parent, std::string_view name, std::uint64_t value) {
  char text[24];
  const auto end = std::to_chars(std::begin(text), std::end(text), value);
  parent.AddPlain(name, {text, end.ptr});
}

}  // namespace orvo
