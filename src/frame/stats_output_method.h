#pragma once

#include <cstdint>

#include "engine/context.h"
#include "engine/graphs.h"
#include "platform/bstr.h"
#include "prefs/preferences.h"

namespace orvo {

/// Writes reports of a statistics context in one form (delimited text, XML and HTML, PDF).
class IStatsOutputMethod : public IUnknown {
 public:
  static constexpr Guid kIid = "7BFFD523-A123-4B32-83AB-B8CE63509568"_guid;

  /// Writes one report of a snapshot of the context into the folder (ending with a backslash). `graphs` may be null.
  /// E_FAIL for an empty folder, tested first; E_POINTER for a null context; S_OK and no file when the context has no
  /// statistics; else the status of the first step outside a section that failed.
  virtual Status Output(BSTR folder, IStatsContext* context, IGraphCollection* graphs) = 0;
  /// Brings the snapshot time mark back to 0.
  virtual Status ResetMark() = 0;
  /// `extension` and `separator` are the text method's, `template_root` the others'; null texts count as empty.
  virtual Status SetFormat(BSTR extension, BSTR separator, IStatsOutputPrefs* preferences, BSTR template_root) = 0;
  /// Writes one report straight from the live context, marked with the current time.
  virtual Status OutputLive(IStatsContext* context, BSTR folder, IGraphCollection* graphs) = 0;
  /// The time between outputs in seconds.
  virtual Status SetInterval(std::uint32_t seconds) = 0;

 protected:
  ~IStatsOutputMethod() = default;
};

inline constexpr Guid kCsvStatsOutputClass = "8B1DB8B2-D286-4AEE-92AC-5780C0DCC60E"_guid;
inline constexpr Guid kXmlStatsOutputClass = "8E766CF8-8853-4149-804D-67A4FEDE287C"_guid;
inline constexpr Guid kPdfStatsOutputClass = "817566B7-5C02-47A9-BB64-9049B10977FA"_guid;

}  // namespace orvo
