#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "app/feeder.h"
#include "app/notifications.h"
#include "app/progress.h"
#include "app/report_options.h"
#include "app/report_programs.h"
#include "app/schedule.h"
#include "app/steered_clock.h"
#include "app/wakeup.h"
#include "capture/source/link_state.h"

namespace orvo::app {

/// What a watch works with. All that it refers to outlives it.
struct WatchParts {
  const ReportOptions& options;
  const ScheduleChoice& choice;
  std::string what;  ///< the name of the interface or capture
  PacketSource& source;
  WaitingSource& waiting;  ///< what ends the source
  LinkState& link;         ///< that of the interface
  CaptureEngine& engine;
  Wakeup& wakeup;
  ReportPrograms& programs;
};

/// Reports made by the scheduler while packets are counted, until the source ends or a signal says so.
class Watch {
 public:
  /// Sets everything up. Ends the command when the settings or the report library cannot be used.
  explicit Watch(const WatchParts& parts);
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch();

  /// Gives true when the source was read to its end, or to where a signal ended it, and the last report was written.
  bool Run();

 private:
  struct ToldOnce;

  void SetUp();
  /// Whether reports are told of is decided here from now on: the watch itself always hears of them, for its end.
  void HearOfReports();
  void TakeSignals();
  void Tell();
  /// What is wrong with the folder that reports or their sets go into; a report that failed does not say.
  void TellOfFolder();
  void TellOfLink();
  void Advance();
  void End();
  void Reload();
  /// What of a change takes a restart, for the user; empty when nothing does.
  std::string NeedsRestart(const ToldOnce& before, const ToldOnce& after) const;
  void Announce();
  void ShowStatus();
  void FinishPrograms();

  const WatchParts parts_;
  const ComPtr<Notifications> notifications_;
  Feeder feeder_;
  SteeredClock clock_;
  StatusLine status_;
  const ComPtr<IStatsContext> context_;
  const ComPtr<IGraphCollection> graphs_;
  ComPtr<IStatsOutputPrefs> preferences_;
  ComPtr<ISkryStatsOutput> scheduler_;
  ComPtr<IStartable> startable_;
  /// The packets that were counted when the latest report began; more than there can be when it failed.
  std::atomic<std::uint64_t> reported_ = 0;
  std::optional<std::chrono::steady_clock::time_point> asked_to_end_;  // by a signal
  std::atomic<bool> has_reported_ = false;
  bool tells_ = true;  // of reports
  bool announced_ = false;
  bool reload_ = false;
  bool ending_ = false;
  bool last_report_ = false;  // it was asked for
  bool finished_ = false;
  bool ended_well_ = true;     // of the source
  bool reported_well_ = true;  // of the latest report
};

}  // namespace orvo::app
