#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "xml/xml_report.h"

namespace orvo {

/// Opens a document of the report's folder that grows from report to report, and gives its root. One that is missing,
/// that cannot be read, is not well formed or has another root begins anew.
XmlElement OpenGrowingDocument(const XmlReport& report, std::u16string_view file, std::string_view root,
                               XmlTree* document);

/// Puts a document into the report's folder in place of the one that has that name, and tells the observer how many
/// rows this report wrote. Raises the failure of writing, and then the old file is unchanged.
void SaveDocument(XmlReport& report, std::u16string_view file, const XmlTree& document, std::uint64_t rows);

/// A category's element of the index, in the place of the one that an earlier report left there: that goes at once, the
/// new one counts only once it is kept.
class IndexEntry {
 public:
  IndexEntry(XmlReport& report, std::string_view name, std::u16string_view version);
  ~IndexEntry();
  IndexEntry(const IndexEntry&) = delete;
  IndexEntry& operator=(const IndexEntry&) = delete;

  XmlElement element() const { return element_; }
  void Keep(std::uint64_t rows);

 private:
  XmlReport& report_;
  XmlElement element_;
  bool kept_ = false;
};

/// Adds one entry to a history document: `fill` is given the new element, and answers how many rows it wrote there, or
/// nothing when the statistics lack the category, and then no entry is added. The document is saved either way.
void AddHistory(XmlReport& report, std::u16string_view file, std::string_view root, std::string_view entry,
                const std::function<std::optional<std::uint64_t>(XmlElement)>& fill);

}  // namespace orvo
