#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/categories.h"
#include "frame/output_method.h"
#include "statistics/statistic_map.h"
#include "statistics/value.h"
#include "text/address_texts.h"
#include "text/text_buffer.h"
#include "util/string_table.h"

namespace orvo {

/// Stands for the switch of what is always there.
inline constexpr int kAlways = -1;

/// What the sections of one text report share. It lives for the length of that report.
struct TextReport {
  const ReportJob& job;
  IStatsOutputPrefs& preferences;
  ReportUtil& util;
  IProtocolNameService& protocol_names;
  StatisticMap& statistic_map;
  std::u16string_view extension;
  std::string_view separator;  ///< in the code page of text files
  std::uint64_t time_mark;
  ComPtr<IAddressTable> addresses{};
  AddressTexts address_texts{};
  ComPtr<IReportObserver> observer{};  ///< null when nobody wants to know
  std::u16string scratch{};            ///< for one text at a time

  /// True for kAlways; raises the failing status of a switch that cannot be read.
  bool IsOn(int gate) const { return gate == kAlways || orvo::IsOn(preferences, static_cast<std::uint32_t>(gate)); }
};

/// The path of a section's file: "Node Statistics-IP.csv" in the report's folder. Without a second title the hyphen is
/// left out.
std::u16string FilePath(const TextReport& report, StringId title);
std::u16string FilePath(const TextReport& report, StringId title, StringId second_title);

/// Appends the address text of a record behind its kind's label; nothing for a null record. A report words an address
/// once and the same everywhere, as long as there is room to keep the text.
void AppendAddress(TextReport& report, const AddressRecord* record, TextBuffer* out);

/// Appends a value as text files word it: nothing for nothing and for a time of 0, three decimals for a real number,
/// microseconds for a duration, and digits for a name that is not printable. Raises the failure of a conversion.
void AppendValue(TextReport& report, const Value& value, TextBuffer* out);

}  // namespace orvo
