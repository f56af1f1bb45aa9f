#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/xml_parts.h"

namespace orvo {

/// The index of a report: one element for every category, those that an earlier report left before those of this one.
class ReportIndex {
 public:
  /// Reads the index of an earlier report. False, and the index is empty, when there is none to be read or it has
  /// another root. Raises E_OUTOFMEMORY.
  bool Load(std::u16string_view path);
  /// Forgets what was read.
  void Clear() { old_.Clear(); }

  /// Removes the element of a category that an earlier report left; gives it.
  XmlParts::Part Take(std::string_view name) { return old_.Take(name); }
  /// The document from which elements were taken.
  const XmlParts& old() const { return old_; }
  /// Adds a category's element with the rows that this report wrote there.
  void Add(std::string lines, std::uint64_t rows);
  /// The rows of this report.
  std::uint64_t rows() const { return rows_; }

  /// Writes the index in place of the file of that name. Raises the failure of writing.
  void Save(std::u16string_view path) const;

 private:
  XmlParts old_;
  std::vector<std::string> added_;
  std::uint64_t rows_ = 0;
};

}  // namespace orvo
