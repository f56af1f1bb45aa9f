#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "frame/output_method.h"
#include "platform/xml_writer.h"
#include "statistics/obtain.h"
#include "xml/report_index.h"

namespace orvo {

/// Stands for the switch of what is always there.
inline constexpr int kNoSwitch = -1;

inline constexpr std::u16string_view kIndexFile = u"StatsReport.xml";

/// Which sections a report has written. The menu pages show these.
struct WrittenSections {
  bool nodes = false;
  bool node_conversations = false;  ///< conversations as a part of the nodes
  bool hierarchy = false;
  bool node_history = false;
  bool protocols = false;
  bool conversations = false;  ///< conversations as a section of their own
  bool expert = false;
  bool flows = false;
  bool applications = false;
  bool event_log = false;
  bool media = false;
  bool wireless = false;
  bool channels = false;
  bool graphs = false;
};

/// What an output method remembers from one report to the next.
struct XmlMemory {
  /// The index of an earlier report was found in the folder and is being extended.
  bool index_kept = false;
  /// A report of a kind other than the full one has begun. Never taken back.
  bool special_kind = false;
  /// The history documents may be extended. Once gone, gone for good.
  bool history_enabled = true;
  /// No capture runs behind the statistics, so that rates mean nothing.
  bool no_rates = false;
  std::uint32_t collection_number = 1;  ///< tells the pictures of one report from those of the next
  WrittenSections written;

  bool extends_history() const { return history_enabled && !special_kind; }
};

/// What the writers of one report share. It lives for the length of that report.
struct XmlReport {
  const ReportJob& job;
  IStatsOutputPrefs& preferences;
  ReportUtil& util;
  IProtocolNameService& protocol_names;
  XmlMemory& memory;
  std::u16string_view template_root;
  std::uint64_t time_mark;
  std::uint32_t interval;  ///< seconds between two reports, 0 when unknown
  ReportIndex index{};
  ComPtr<IReportObserver> observer{};  ///< null when nobody wants to know

  /// True for kNoSwitch; raises the failing status of a switch that cannot be read.
  bool IsOn(int gate) const { return gate == kNoSwitch || orvo::IsOn(preferences, static_cast<std::uint32_t>(gate)); }
};

/// A switch with the status of its reading, for those writers whose answer that status is. Raises a failing one.
struct SwitchReading {
  Status status = S_OK;
  std::int32_t value = 0;
};
SwitchReading ReadSwitch(const XmlReport& report, std::uint32_t identifier);

/// The boundary of a writer: what is raised inside ends that writer alone, which then answers false. `file` is the
/// document of which the observer is told that it failed.
bool Contain(XmlReport& report, const std::u16string_view& file, const std::function<bool()>& write);
/// The boundary of a document without which there is no report: the observer is told, and the failure raised on.
void Insist(XmlReport& report, std::u16string_view file, const std::function<void()>& write);

/// The address table of the live context, asked for anew by every writer; null when there is none. Raises a failure.
ComPtr<IAddressTable> Addresses(const XmlReport& report);

// Texts. Each raises the failure of a conversion or of a name service.

/// The text of the report's time.
std::u16string TimeSaved(XmlReport& report);
/// The address behind its kind's label; empty for a null record.
std::u16string AddressText(XmlReport& report, const AddressRecord* record);
std::u16string NumberText(std::uint64_t value);

/// Adds the "Summary" that every category begins with: the report's time and the context's totals.
XmlWriter AddSummary(XmlReport& report, XmlWriter category, IStatsContext& totals);
void AddNumber(XmlWriter parent, std::string_view name, std::uint64_t value);

}  // namespace orvo
