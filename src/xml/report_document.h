#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "xml/xml_report.h"

namespace orvo {

/// The level of the elements in a document's root.
inline constexpr std::size_t kPartDepth = 1;

/// Tells the observer how many rows this report wrote into a document of its folder, which is there now.
void ReportSaved(XmlReport& report, std::u16string_view file, std::uint64_t rows);

/// A category's element of the index, in the place of the one that an earlier report left there: that goes at once, the
/// new one counts only once it is kept.
class IndexEntry {
 public:
  IndexEntry(XmlReport& report, std::string_view name, std::u16string_view version);

  XmlWriter element() const { return element_; }
  /// Nothing can be added any more.
  void Keep(std::uint64_t rows);

 private:
  XmlReport& report_;
  XmlStream stream_;
  XmlWriter element_;
};

/// Adds one entry to a history document: `fill` is given the new element, and answers how many rows it wrote there, or
/// nothing when the statistics lack the category, and then no entry is added. The document is saved either way; one
/// that is missing, that cannot be read, is not well formed or has another root begins anew.
void AddHistory(XmlReport& report, std::u16string_view file, std::string_view root, std::string_view entry,
                const std::function<std::optional<std::uint64_t>(XmlWriter)>& fill);

/// Adds such an entry, "History", whose content are the "Summary" and the "Stats" of an element that was taken from the
/// index.
void MoveToHistory(XmlReport& report, std::u16string_view file, std::string_view root, const XmlParts::Part& old);

}  // namespace orvo
