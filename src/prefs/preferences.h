#pragma once

#include <cstdint>

#include "platform/unknown.h"

namespace orvo {

/// The switches that decide what a report contains, by identifier (see switch_table.h).
class IStatsOutputPrefs : public IUnknown {
 public:
  static constexpr Guid kIid = "DC09F2FF-97E4-4043-942E-A72FCF7B2B8E"_guid;

  /// E_POINTER for a null out pointer; an identifier that does not exist is S_OK and leaves the value as it was.
  virtual Status GetPreference(std::uint32_t identifier, std::int32_t* value) = 0;
  /// Stores the value unchanged: 0 is off, anything else on.
  virtual Status SetPreference(std::uint32_t identifier, std::int32_t value) = 0;
  virtual Status SetDefaults() = 0;

 protected:
  ~IStatsOutputPrefs() = default;
};

inline constexpr Guid kStatsOutputPrefsClass = "C65DBD20-EF17-4BDB-B308-77750038F172"_guid;

}  // namespace orvo
