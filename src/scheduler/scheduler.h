#pragma once

#include <cstdint>

#include "engine/context.h"
#include "engine/graphs.h"
#include "frame/stats_output_method.h"
#include "platform/bstr.h"
#include "platform/unknown.h"
#include "prefs/preferences.h"

namespace orvo {

/// The unit of an interval; every other number means seconds too.
enum IntervalUnit : std::int32_t {
  kUnitSeconds = 1,
  kUnitMinutes = 2,
  kUnitHours = 3,
  kUnitDays = 4,
};

/// What an output method is told to write: text with commas, text with tabs, XML, PDF. Every other number means
/// text with commas too.
enum OutputType : std::int32_t {
  kOutputCsv = 0,
  kOutputTab = 1,
  kOutputXml = 2,
  kOutputPdf = 4,
};

/// Starts and stops what works by itself. One operation at a time holds the object lock.
class IStartable : public IUnknown {
 public:
  static constexpr Guid kIid = "E0E7050D-7A56-4BF5-9444-244014438ED3"_guid;

  /// S_OK and no change when it is started already; else the platform's error when the thread cannot be made.
  virtual Status Start() = 0;
  /// S_OK, at most 30 seconds later; a report that is being written then goes on by itself and is the last one.
  /// Called from within a notification, it does not wait for the call that it came from.
  virtual Status Stop() = 0;
  /// Makes the output method forget when it took its last snapshot; its status, S_OK when there is none.
  virtual Status Reset() = 0;

 protected:
  ~IStartable() = default;
};

/// Writes reports on a schedule: its settings, and what it works with. It also offers IStartable and IPersistXml
/// (element "statsoutput").
///
/// Getters answer E_POINTER for a null out pointer, and E_OUTOFMEMORY for a text that cannot be copied; an out text is
/// the caller's (FreeString), an out object carries a reference of its own. Setters store what they are given and
/// answer S_OK. Switches are 1 and 0; any other value than 0 switches on. All operations may be called at any time from
/// any thread.
///
/// Intervals and alignment, the switches of report sets and both paths are taken over by Start, the paths again
/// whenever a report set begins; output type, preferences and template root by the first output of the object's
/// life; the others by each output.
class ISkryStatsOutput : public IUnknown {
 public:
  static constexpr Guid kIid = "15DCE703-3D83-4AA8-8D84-4EDEC0AF4CFC"_guid;

  /// Kept for the host; nothing else depends on it.
  virtual Status GetEnabled(std::int32_t* enabled) = 0;
  virtual Status SetEnabled(std::int32_t enabled) = 0;
  /// The folder of all reports; SetUserPath gives a text that is not empty the backslash at its end.
  virtual Status GetUserPath(BSTR* path) = 0;
  virtual Status SetUserPath(BSTR path) = 0;
  /// Follows the user path: the folder of reports, or what report sets are named after.
  virtual Status GetReportPath(BSTR* path) = 0;
  virtual Status SetReportPath(BSTR path) = 0;
  /// The time from output to output, at least 5 seconds; the unit is an IntervalUnit.
  virtual Status GetOutputInterval(std::uint32_t* value, std::int32_t* unit) = 0;
  virtual Status SetOutputInterval(std::uint32_t value, std::int32_t unit) = 0;
  /// Whether each output is notified.
  virtual Status GetNotify(std::int32_t* notify) = 0;
  virtual Status SetNotify(std::int32_t notify) = 0;
  /// Who is notified, and the identifier it is given with each notification. No reference is kept: whoever sets it
  /// sets null before it goes.
  virtual Status GetNotifySink(INotificationSink** sink, Guid* context) = 0;
  virtual Status SetNotifySink(INotificationSink* sink, Guid context) = 0;
  /// Whether the first output waits for a whole multiple of the interval on the local clock.
  virtual Status GetAlignOutput(std::int32_t* align) = 0;
  virtual Status SetAlignOutput(std::int32_t align) = 0;
  /// Whether outputs go into dated report sets.
  virtual Status GetNewSetEnabled(std::int32_t* enabled) = 0;
  virtual Status SetNewSetEnabled(std::int32_t enabled) = 0;
  /// The time from report set to report set, at least that from output to output.
  virtual Status GetNewSetInterval(std::uint32_t* value, std::int32_t* unit) = 0;
  virtual Status SetNewSetInterval(std::uint32_t value, std::int32_t unit) = 0;
  /// On: sets follow their own interval. Off: every output begins one.
  virtual Status GetScheduled(std::int32_t* scheduled) = 0;
  virtual Status SetScheduled(std::int32_t scheduled) = 0;
  virtual Status GetAlignNewSet(std::int32_t* align) = 0;
  virtual Status SetAlignNewSet(std::int32_t align) = 0;
  /// How many report sets are kept, and whether older ones are deleted at all.
  virtual Status GetKeep(std::uint32_t* keep) = 0;
  virtual Status SetKeep(std::uint32_t keep) = 0;
  virtual Status GetKeepEnabled(std::int32_t* enabled) = 0;
  virtual Status SetKeepEnabled(std::int32_t enabled) = 0;
  /// Who writes the reports; a reference is kept.
  virtual Status GetOutputMethod(IStatsOutputMethod** method) = 0;
  virtual Status SetOutputMethod(IStatsOutputMethod* method) = 0;
  /// The statistics. No reference is kept: whoever sets the context sets null, while stopped, before it goes.
  virtual Status GetContext(IStatsContext** context) = 0;
  virtual Status SetContext(IStatsContext* context) = 0;
  /// Other than 0: the engine's statistics are reset after each output that succeeded.
  virtual Status GetResetOutput(std::int32_t* reset) = 0;
  virtual Status SetResetOutput(std::int32_t reset) = 0;
  /// What the output method is told of extension and separator: an OutputType.
  virtual Status GetOutputType(std::int32_t* type) = 0;
  virtual Status SetOutputType(std::int32_t type) = 0;
  /// What reports contain; a reference is kept.
  virtual Status GetPrefs(IStatsOutputPrefs** preferences) = 0;
  virtual Status SetPrefs(IStatsOutputPrefs* preferences) = 0;
  /// The engine's graphs, null for none. No reference is kept, as with the context.
  virtual Status GetGraphs(IGraphCollection** graphs) = 0;
  virtual Status SetGraphs(IGraphCollection* graphs) = 0;
  /// The folder whose folder "Reports" holds the parts of HTML reports; a null text makes it absent, and is answered
  /// while it is. SetTemplateRoot answers E_OUTOFMEMORY and leaves it absent when it cannot be copied.
  virtual Status GetTemplateRoot(BSTR* folder) = 0;
  virtual Status SetTemplateRoot(BSTR folder) = 0;

 protected:
  ~ISkryStatsOutput() = default;
};

inline constexpr Guid kSkryStatsOutputClass = "A92E6246-96A6-4214-8580-141412642D3D"_guid;

}  // namespace orvo
