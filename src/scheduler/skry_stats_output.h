#pragma once

#include <memory>

#include "scheduler/scheduler.h"
#include "scheduler/scheduler_state.h"
#include "scheduler/worker_thread.h"
#include "util/component_object.h"
#include "util/persist_xml.h"

namespace orvo {

/// The scheduler. Its settings have locks of their own; Start, Stop, Reset, Load and Save hold the object lock. The
/// worker holds the state and never the object, so that the last reference may be released anywhere, also by what the
/// worker calls.
class SkryStatsOutput final : public ComponentObject<ISkryStatsOutput, IStartable, IPersistXml> {
 public:
  Status GetEnabled(std::int32_t* enabled) override;
  Status SetEnabled(std::int32_t enabled) override;
  Status GetUserPath(BSTR* path) override;
  Status SetUserPath(BSTR path) override;
  Status GetReportPath(BSTR* path) override;
  Status SetReportPath(BSTR path) override;
  Status GetOutputInterval(std::uint32_t* value, std::int32_t* unit) override;
  Status SetOutputInterval(std::uint32_t value, std::int32_t unit) override;
  Status GetNotify(std::int32_t* notify) override;
  Status SetNotify(std::int32_t notify) override;
  Status GetNotifySink(INotificationSink** sink, Guid* context) override;
  Status SetNotifySink(INotificationSink* sink, Guid context) override;
  Status GetAlignOutput(std::int32_t* align) override;
  Status SetAlignOutput(std::int32_t align) override;
  Status GetNewSetEnabled(std::int32_t* enabled) override;
  Status SetNewSetEnabled(std::int32_t enabled) override;
  Status GetNewSetInterval(std::uint32_t* value, std::int32_t* unit) override;
  Status SetNewSetInterval(std::uint32_t value, std::int32_t unit) override;
  Status GetScheduled(std::int32_t* scheduled) override;
  Status SetScheduled(std::int32_t scheduled) override;
  Status GetAlignNewSet(std::int32_t* align) override;
  Status SetAlignNewSet(std::int32_t align) override;
  Status GetKeep(std::uint32_t* keep) override;
  Status SetKeep(std::uint32_t keep) override;
  Status GetKeepEnabled(std::int32_t* enabled) override;
  Status SetKeepEnabled(std::int32_t enabled) override;
  Status GetOutputMethod(IStatsOutputMethod** method) override;
  Status SetOutputMethod(IStatsOutputMethod* method) override;
  Status GetContext(IStatsContext** context) override;
  Status SetContext(IStatsContext* context) override;
  Status GetResetOutput(std::int32_t* reset) override;
  Status SetResetOutput(std::int32_t reset) override;
  Status GetOutputType(std::int32_t* type) override;
  Status SetOutputType(std::int32_t type) override;
  Status GetPrefs(IStatsOutputPrefs** preferences) override;
  Status SetPrefs(IStatsOutputPrefs* preferences) override;
  Status GetGraphs(IGraphCollection** graphs) override;
  Status SetGraphs(IGraphCollection* graphs) override;
  Status GetTemplateRoot(BSTR* folder) override;
  Status SetTemplateRoot(BSTR folder) override;

  Status Start() override;
  Status Stop() override;
  Status Reset() override;

  Status GetClassID(Guid* class_id) override;
  Status Load(IUnknown* document, IUnknown* node) override;
  Status Save(IUnknown* document, IUnknown* node) override;

 private:
  void* FindInterface(const Guid& iid) override;

  std::shared_ptr<SchedulerState> state_ = std::make_shared<SchedulerState>();
  SchedulerSettings& settings_ = state_->settings;
  SchedulerParts& parts_ = state_->parts;
  std::unique_ptr<WorkerThread> worker_;  // stopped when it goes
};

/// The class's creator.
Status CreateSkryStatsOutput(const Guid& iid, void** out);

}  // namespace orvo
