#include "frame/output_method.h"

#include <mutex>

#include "frame/method_persistence.h"
#include "frame/snapshot.h"
#include "platform/class_factory.h"
#include "platform/clock.h"
#include "platform/error.h"

namespace orvo {

OutputMethod::OutputMethod(const MethodTraits& traits) : traits_(traits) {
  Check(CreateInstance(kProtocolNameServiceClass, &protocol_names_));
}

Status OutputMethod::Output(BSTR folder, IStatsContext* context, IGraphCollection* graphs) {
  if (StringLength(folder) == 0) return E_FAIL;
  if (!context) return E_POINTER;
  return Guard([&] {
    ReportJob job{.folder = std::u16string(StringView(folder)), .live = context, .graphs = graphs};
    job.availability = context->IsAvailable();
    ComPtr<IStatsContext> snapshot = TakeSnapshot(context, &time_mark_);
    job.statistics = snapshot.get();
    WriteReport(job);
  });
}

Status OutputMethod::OutputLive(IStatsContext* context, BSTR folder, IGraphCollection* graphs) {
  if (traits_.is_text_method && StringLength(folder) == 0) return E_FAIL;
  if (!context) return E_POINTER;
  return Guard([&] {
    time_mark_ = ProcessClock().Now();
    ReportJob job{.folder = std::u16string(StringView(folder)),
                  .live = context,
                  .statistics = context,
                  .graphs = graphs,
                  .from_live = true};
    job.availability = context->IsAvailable();
    WriteReport(job);
  });
}

Status OutputMethod::ResetMark() {
  time_mark_ = 0;
  return S_OK;
}

Status OutputMethod::SetFormat(BSTR extension, BSTR separator, IStatsOutputPrefs* preferences, BSTR template_root) {
  return Guard([&] {
    KeepFormat(StringView(extension), StringView(separator), StringView(template_root));
    if (preferences != preferences_.get()) preferences_ = ComPtr<IStatsOutputPrefs>(preferences);
  });
}

Status OutputMethod::SetInterval(std::uint32_t seconds) {
  interval_ = seconds;
  return S_OK;
}

Status OutputMethod::GetClassID(Guid* class_id) {
  if (!class_id) return E_POINTER;
  *class_id = traits_.class_id;
  return S_OK;
}

Status OutputMethod::Load(IUnknown* document, IUnknown* node) {
  std::scoped_lock hold(lock());
  return LoadMethodElement(document, node, traits_.settings_element, traits_.is_text_method);
}

Status OutputMethod::Save(IUnknown* document, IUnknown* node) {
  std::scoped_lock hold(lock());
  return SaveMethodElement(document, node, traits_.settings_element, traits_.is_text_method);
}

IStatsOutputPrefs& OutputMethod::preferences() const {
  if (!preferences_) Raise(E_UNEXPECTED);
  return *preferences_;
}

bool IsOn(IStatsOutputPrefs& preferences, std::uint32_t identifier) {
  std::int32_t value = 0;
  Check(preferences.GetPreference(identifier, &value));
  return value != 0;
}

}  // namespace orvo
