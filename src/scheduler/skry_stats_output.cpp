#include "scheduler/skry_stats_output.h"

#include <atomic>
#include <mutex>
#include <string>
#include <utility>

#include "platform/error.h"
#include "util/persist_xml_arguments.h"

namespace orvo {
namespace {

template <class Setting, class T>
Status GetValue(const std::atomic<Setting>& setting, T* out) {
  if (!out) return E_POINTER;
  *out = setting.load();
  return S_OK;
}

template <class Setting, class T>
Status SetValue(std::atomic<Setting>& setting, T value) {
  setting = static_cast<Setting>(value);
  return S_OK;
}

Status GetInterval(const std::atomic<Interval>& setting, std::uint32_t* value, std::int32_t* unit) {
  if (!value || !unit) return E_POINTER;
  const Interval interval = setting;
  *value = interval.value;
  *unit = interval.unit;
  return S_OK;
}

Status GetPath(const SchedulerSettings& settings, std::u16string ReportPaths::*part, BSTR* out) {
  if (!out) return E_POINTER;
  *out = settings.paths.Read([&](const ReportPaths& paths) { return AllocString(paths.*part); });
  return *out ? S_OK : E_OUTOFMEMORY;
}

Status SetPath(SchedulerSettings& settings, std::u16string ReportPaths::*part, std::u16string path) {
  settings.paths.Change([&](ReportPaths& paths) { std::swap(paths.*part, path); });
  return S_OK;
}

template <class T>
Status GetHeld(const Guarded<ComPtr<T>>& held, T** out) {
  if (!out) return E_POINTER;
  *out = held.Get().Detach();
  return S_OK;
}

template <class T>
Status SetHeld(Guarded<ComPtr<T>>& held, T* object) {
  held.Set(ComPtr<T>(object));
  return S_OK;
}

template <class T>
Status GetBorrowed(const Guarded<T*>& borrowed, T** out) {
  if (!out) return E_POINTER;
  *out = Hold(borrowed).Detach();
  return S_OK;
}

template <class T>
Status SetBorrowed(Guarded<T*>& borrowed, T* object) {
  borrowed.Set(object);
  return S_OK;
}

}  // namespace

Status SkryStatsOutput::GetEnabled(std::int32_t* enabled) {
  return GetValue(settings_.enabled, enabled);
}

Status SkryStatsOutput::SetEnabled(std::int32_t enabled) {
  return SetValue(settings_.enabled, enabled);
}

Status SkryStatsOutput::GetUserPath(BSTR* path) {
  return GetPath(settings_, &ReportPaths::user, path);
}

Status SkryStatsOutput::SetUserPath(BSTR path) {
  return Guard([&] {
    std::u16string user(StringView(path));
    if (!user.empty() && !user.ends_with(u'\\')) user += u'\\';
    return SetPath(settings_, &ReportPaths::user, std::move(user));
  });
}

Status SkryStatsOutput::GetReportPath(BSTR* path) {
  return GetPath(settings_, &ReportPaths::report, path);
}

Status SkryStatsOutput::SetReportPath(BSTR path) {
  return Guard([&] { return SetPath(settings_, &ReportPaths::report, std::u16string(StringView(path))); });
}

Status SkryStatsOutput::GetOutputInterval(std::uint32_t* value, std::int32_t* unit) {
  return GetInterval(settings_.output_interval, value, unit);
}

Status SkryStatsOutput::SetOutputInterval(std::uint32_t value, std::int32_t unit) {
  return SetValue(settings_.output_interval, Interval{value, unit});
}

Status SkryStatsOutput::GetNotify(std::int32_t* notify) {
  return GetValue(settings_.notify, notify);
}

Status SkryStatsOutput::SetNotify(std::int32_t notify) {
  return SetValue(settings_.notify, notify);
}

Status SkryStatsOutput::GetNotifySink(INotificationSink** sink, Guid* context) {
  if (!sink || !context) return E_POINTER;
  *sink = parts_.receiver
              .Read([&](const NotificationReceiver& receiver) {
                *context = receiver.context;
                return ComPtr<INotificationSink>(receiver.sink);
              })
              .Detach();
  return S_OK;
}

Status SkryStatsOutput::SetNotifySink(INotificationSink* sink, Guid context) {
  parts_.receiver.Set({sink, context});
  return S_OK;
}

Status SkryStatsOutput::GetAlignOutput(std::int32_t* align) {
  return GetValue(settings_.align_output, align);
}

Status SkryStatsOutput::SetAlignOutput(std::int32_t align) {
  return SetValue(settings_.align_output, align);
}

Status SkryStatsOutput::GetNewSetEnabled(std::int32_t* enabled) {
  return GetValue(settings_.new_set_enabled, enabled);
}

Status SkryStatsOutput::SetNewSetEnabled(std::int32_t enabled) {
  return SetValue(settings_.new_set_enabled, enabled);
}

Status SkryStatsOutput::GetNewSetInterval(std::uint32_t* value, std::int32_t* unit) {
  return GetInterval(settings_.new_set_interval, value, unit);
}

Status SkryStatsOutput::SetNewSetInterval(std::uint32_t value, std::int32_t unit) {
  return SetValue(settings_.new_set_interval, Interval{value, unit});
}

Status SkryStatsOutput::GetScheduled(std::int32_t* scheduled) {
  return GetValue(settings_.scheduled, scheduled);
}

Status SkryStatsOutput::SetScheduled(std::int32_t scheduled) {
  return SetValue(settings_.scheduled, scheduled);
}

Status SkryStatsOutput::GetAlignNewSet(std::int32_t* align) {
  return GetValue(settings_.align_new_set, align);
}

Status SkryStatsOutput::SetAlignNewSet(std::int32_t align) {
  return SetValue(settings_.align_new_set, align);
}

Status SkryStatsOutput::GetKeep(std::uint32_t* keep) {
  return GetValue(settings_.keep, keep);
}

Status SkryStatsOutput::SetKeep(std::uint32_t keep) {
  return SetValue(settings_.keep, keep);
}

Status SkryStatsOutput::GetKeepEnabled(std::int32_t* enabled) {
  return GetValue(settings_.keep_enabled, enabled);
}

Status SkryStatsOutput::SetKeepEnabled(std::int32_t enabled) {
  return SetValue(settings_.keep_enabled, enabled);
}

Status SkryStatsOutput::GetOutputMethod(IStatsOutputMethod** method) {
  return GetHeld(parts_.method, method);
}

Status SkryStatsOutput::SetOutputMethod(IStatsOutputMethod* method) {
  return SetHeld(parts_.method, method);
}

Status SkryStatsOutput::GetContext(IStatsContext** context) {
  return GetBorrowed(parts_.context, context);
}

Status SkryStatsOutput::SetContext(IStatsContext* context) {
  return SetBorrowed(parts_.context, context);
}

Status SkryStatsOutput::GetResetOutput(std::int32_t* reset) {
  return GetValue(settings_.reset_output, reset);
}

Status SkryStatsOutput::SetResetOutput(std::int32_t reset) {
  return SetValue(settings_.reset_output, reset);
}

Status SkryStatsOutput::GetOutputType(std::int32_t* type) {
  return GetValue(settings_.output_type, type);
}

Status SkryStatsOutput::SetOutputType(std::int32_t type) {
  return SetValue(settings_.output_type, type);
}

Status SkryStatsOutput::GetPrefs(IStatsOutputPrefs** preferences) {
  return GetHeld(parts_.preferences, preferences);
}

Status SkryStatsOutput::SetPrefs(IStatsOutputPrefs* preferences) {
  return SetHeld(parts_.preferences, preferences);
}

Status SkryStatsOutput::GetGraphs(IGraphCollection** graphs) {
  return GetBorrowed(parts_.graphs, graphs);
}

Status SkryStatsOutput::SetGraphs(IGraphCollection* graphs) {
  return SetBorrowed(parts_.graphs, graphs);
}

Status SkryStatsOutput::GetTemplateRoot(BSTR* folder) {
  if (!folder) return E_POINTER;
  *folder = nullptr;
  return Guard([&] { *folder = parts_.template_root.Read(CopyOf).Detach(); });
}

Status SkryStatsOutput::SetTemplateRoot(BSTR folder) {
  Bstr copy;
  const Status status = Guard([&] {
    if (folder) copy = Bstr(StringView(folder));
  });
  parts_.template_root.Set(std::move(copy));
  return status;
}

Status SkryStatsOutput::Start() {
  return Guard([&] {
    std::lock_guard hold(lock());
    if (!worker_) worker_ = std::make_unique<WorkerThread>(state_);
  });
}

Status SkryStatsOutput::Stop() {
  std::lock_guard hold(lock());
  worker_.reset();
  return S_OK;
}

Status SkryStatsOutput::Reset() {
  std::lock_guard hold(lock());
  const ComPtr<IStatsOutputMethod> method = parts_.method.Get();
  return method ? Guard([&] { return state_->calls.Reset(method.get()); }) : S_OK;
}

Status SkryStatsOutput::GetClassID(Guid* class_id) {
  if (!class_id) return E_POINTER;
  *class_id = kSkryStatsOutputClass;
  return S_OK;
}

Status SkryStatsOutput::Load(IUnknown* document, IUnknown* node) {
  return Guard([&] {
    std::lock_guard hold(lock());
    PersistXmlArguments arguments;
    Check(GetPersistXmlArguments(document, node, &arguments));
    return LoadSettings(arguments.node.get(), &settings_);
  });
}

Status SkryStatsOutput::Save(IUnknown* document, IUnknown* node) {
  return Guard([&] {
    std::lock_guard hold(lock());
    PersistXmlArguments arguments;
    Check(GetPersistXmlArguments(document, node, &arguments));
    SaveSettings(settings_, arguments.document.get(), arguments.node.get());
  });
}

void* SkryStatsOutput::FindInterface(const Guid& iid) {
  if (iid == IPersist::kIid) return static_cast<IPersistXml*>(this);
  return ComponentObject::FindInterface(iid);
}

Status CreateSkryStatsOutput(const Guid& iid, void** out) {
  return CreateComponentObject<SkryStatsOutput>(iid, out);
}

}  // namespace orvo
