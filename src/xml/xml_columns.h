#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "statistics/value.h"
#include "xml/xml_report.h"

namespace orvo {

/// How a real number is worded.
enum class RealForm {
  kThreeDecimals,  ///< in the locale's form
  kRatio,          ///< a quotient of two counts, with six decimals behind a full stop
};

/// One child element of a row: its name, the switch that turns it on, and where its value comes from.
template <class Record>
struct XmlColumn {
  std::string_view name;
  int gate;
  Value (*value)(const Record&);
  RealForm form = RealForm::kThreeDecimals;
};

/// part / whole in single precision; 0 for a whole of 0. For columns of the form kRatio.
constexpr Value Ratio(std::uint64_t part, std::uint64_t whole) {
  return Value::Real(whole == 0 ? 0 : static_cast<float>(part) / static_cast<float>(whole));
}

/// Adds a value as an element of its own. Raises the failure of a conversion.
void AddValue(XmlReport& report, std::string_view name, const Value& value, RealForm form, XmlWriter row);

/// A value as XML documents word it: empty for nothing, for a time of 0, and for a real number that is not finite, as a
/// rate over no time is. Raises the failure of a conversion.
std::u16string ValueText(XmlReport& report, const Value& value, RealForm form = RealForm::kThreeDecimals);

/// Adds such a ratio as an element of its own.
void AddRatio(std::string_view name, std::uint64_t part, std::uint64_t whole, XmlWriter row);

/// The columns of a table that are switched on.
template <class Record>
class XmlColumns {
 public:
  /// Reads each column's switch once; raises a failing read.
  XmlColumns(const XmlReport& report, std::span<const XmlColumn<Record>> columns) {
    for (const XmlColumn<Record>& column : columns) {
      if (report.IsOn(column.gate)) enabled_.push_back(column);
    }
  }

  /// Adds the record's values as children of its row.
  void AddTo(XmlReport& report, const Record& record, XmlWriter row) const {
    for (const XmlColumn<Record>& column : enabled_) {
      AddValue(report, column.name, column.value(record), column.form, row);
    }
  }

 private:
  std::vector<XmlColumn<Record>> enabled_;
};

}  // namespace orvo
