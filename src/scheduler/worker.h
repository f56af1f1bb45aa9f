#pragma once

#include <cstdint>
#include <memory>

#include "scheduler/scheduler_state.h"

namespace orvo {

/// What goes on in a worker's thread: it waits for the time of the next output or report set, does what is due, and
/// finds out how long to wait again, until it is told to stop. Every time that was missed is made up for, one after
/// the other.
class Worker {
 public:
  Worker(std::shared_ptr<SchedulerState> state, std::shared_ptr<WorkerControl> control);

  /// The status of the last step that failed by itself, which is not that of an output: those are notified.
  Status Run();

 private:
  /// Takes over the settings and finds the first times; names the first report set, or the folder without sets.
  void Begin();
  void BeginSets(std::int64_t now);
  void BeginWithoutSets();
  Status Loop();
  /// kTimeOut after the whole time, however long; anything else when it is time to leave.
  WaitResult WaitFor(std::int64_t milliseconds);
  void DoWhatIsDue();
  void FindWaits();

  void OutputStep();
  void NewSetStep();
  /// The set of one interval from `begin` on. Does nothing without an output method.
  void NameSet(std::int64_t begin);
  void AdvanceBoth();

  void MakeOutput();
  /// Raises what makes the output a failed one.
  void WriteReport(const std::u16string& folder, IStatsOutputMethod* method, IStatsContext* context);
  void SetFormat(IStatsOutputMethod* method);
  void Notify(Status status, const std::u16string& folder);
  void DeleteOldSets();

  bool Coincide() const { return sets_enabled_ && next_output_ == next_set_; }
  bool IsLeaving() const { return control_->parting != Parting::kNone; }
  bool IsGivenUp() const { return control_->parting == Parting::kAtOnce; }

  std::shared_ptr<SchedulerState> state_;
  std::shared_ptr<WorkerControl> control_;

  bool sets_enabled_ = false;
  std::uint32_t output_interval_ = 0;  // seconds, as all below
  std::uint32_t set_interval_ = 0;
  std::int64_t next_output_ = 0;  // since 1970
  std::int64_t next_set_ = 0;
  std::int64_t output_wait_ = 0;
  std::int64_t set_wait_ = 0;
  /// A set was named at a time that is also an output's, and neither time has moved on yet.
  bool set_pending_ = false;
};

}  // namespace orvo
