#pragma once

#include <cstdint>
#include <string>

#include "platform/unknown.h"

namespace orvo {

/// The analysis tables, by number.
enum TableKind : std::uint32_t {
  kTableFlows = 3,
  kTableEventLog = 6,
  kTableEventCounts = 12,
  kTableApplications = 15,
  kTableMedia = 150,  ///< voice and video
};

/// A table of texts whose columns the engine defines. Column and row numbers count from 0; a number beyond the table is
/// E_INVALIDARG. Every text operation replaces its out value.
class ITable : public IUnknown {
 public:
  static constexpr Guid kIid = "A274177B-A661-4D62-9636-6339E51CD6C4"_guid;

  virtual Status GetColumnCount(std::uint32_t* count) = 0;
  virtual Status GetRowCount(std::uint32_t* count) = 0;
  /// The title that people read.
  virtual Status GetColumnTitle(std::uint32_t column, std::u16string* title) = 0;
  /// The name that programs read: a valid XML element name.
  virtual Status GetColumnIdentifier(std::uint32_t column, std::u16string* identifier) = 0;
  virtual Status GetCell(std::uint32_t row, std::uint32_t column, std::u16string* text) = 0;

 protected:
  ~ITable() = default;
};

class ITableProvider : public IUnknown {
 public:
  static constexpr Guid kIid = "1E42A203-9ACA-461C-8A59-53C693F869A7"_guid;

  /// A table by its kind; `view` is 1. E_INVALIDARG for a kind that the engine does not keep.
  virtual Status GetTable(std::uint32_t kind, std::uint32_t view, ITable** table) = 0;

 protected:
  ~ITableProvider() = default;
};

/// The object of the expert and voice category; it is asked for ITableProvider.
class IExpertStats : public IUnknown {
 public:
  static constexpr Guid kIid = "47791C64-2627-4D8A-8E27-BF2FDB3B461A"_guid;

 protected:
  ~IExpertStats() = default;
};

}  // namespace orvo
