#include "scheduler/worker.h"

#include <algorithm>
#include <utility>

#include "platform/class_factory.h"
#include "platform/error.h"
#include "platform/file.h"
#include "platform/message.h"
#include "util/folders.h"

namespace orvo {
namespace {

constexpr std::uint32_t kShortestInterval = 5;      // seconds
constexpr std::int64_t kLongestWait = 0xFFFF'FFFE;  // milliseconds; one more would be without end
constexpr std::int64_t kMillisecondsPerSecond = 1'000;
constexpr std::uint32_t kSeverityDone = 0;
constexpr std::uint32_t kSeverityFailed = 3;

/// What the output method is told for an output type.
struct OutputFormat {
  std::int32_t type;
  std::u16string_view extension;
  std::u16string_view separator;
  bool wants_interval;
};

constexpr OutputFormat kFormats[] = {
    {kOutputTab, u".txt", u"\t", false},
    {kOutputXml, u".xml", u",", true},
    {kOutputPdf, u".pdf", u",", true},
};
constexpr OutputFormat kOtherFormat = {kOutputCsv, u".csv", u",", false};

const OutputFormat& FormatOf(std::int32_t type) {
  const auto* found = std::ranges::find(kFormats, type, &OutputFormat::type);
  return found == std::end(kFormats) ? kOtherFormat : *found;
}

std::u16string NotificationText(Status status, const std::u16string& folder) {
  if (Succeeded(status)) return u"Statistics output to " + folder;
  const std::u16string message = SystemMessage(status);
  return u"Error encountered during statistics output: " + message.substr(0, message.find(u'\r'));
}

}  // namespace

Worker::Worker(std::shared_ptr<SchedulerState> state, std::shared_ptr<WorkerControl> control)
    : state_(std::move(state)), control_(std::move(control)) {}

Status Worker::Run() {
  if (const Status joined = JoinMultithreadedApartment(); Failed(joined)) return joined;
  Status status = Guard([&] { Begin(); });
  if (Succeeded(status)) status = Loop();
  LeaveApartment();
  return status;
}

void Worker::Begin() {
  const SchedulerSettings& settings = state_->settings;
  const Interval interval = settings.output_interval;
  const std::int64_t now = SecondsNow(control_->clock);
  output_interval_ = std::max(LengthOf(interval), kShortestInterval);
  next_output_ = settings.align_output ? AlignedNext(interval, now) : now + output_interval_;
  sets_enabled_ = settings.new_set_enabled;
  state_->sets.Adopt(control_.get());
  if (sets_enabled_) {
    BeginSets(now);
  } else {
    BeginWithoutSets();
  }
  // An aligned time may have passed already, and is then due at once.
  output_wait_ = std::max<std::int64_t>(0, next_output_ - now);
  set_wait_ = std::max<std::int64_t>(0, next_set_ - now);
}

void Worker::BeginSets(std::int64_t now) {
  const SchedulerSettings& settings = state_->settings;
  const Interval interval = settings.new_set_interval;
  set_interval_ = std::max(LengthOf(interval), output_interval_);
  if (!settings.scheduled) {
    next_set_ = next_output_;
    set_interval_ = output_interval_;
  } else if (settings.align_new_set) {
    next_set_ = AlignedNext(interval, now);
  } else {
    next_set_ = now + set_interval_;
  }
  NameSet(next_set_ - set_interval_);
}

void Worker::BeginWithoutSets() {
  const ReportPaths paths = state_->settings.paths.Change([](ReportPaths& changed) {
    SplitWholeReportPath(&changed);
    return changed;
  });
  state_->sets.UseFolder(control_.get(), PlainReportFolder(paths));
}

Status Worker::Loop() {
  Status recorded = S_OK;
  while (!IsLeaving()) {
    const std::int64_t wait = sets_enabled_ ? std::min(output_wait_, set_wait_) : output_wait_;
    if (WaitFor(wait * kMillisecondsPerSecond) != WaitResult::kTimeOut) break;
    // After a failure the waits stay as they were.
    const Status status = Guard([&] {
      DoWhatIsDue();
      if (!IsLeaving()) FindWaits();
    });
    if (Failed(status)) recorded = status;
  }
  return recorded;
}

WaitResult Worker::WaitFor(std::int64_t milliseconds) {
  WaitResult result = WaitResult::kTimeOut;
  do {
    const std::int64_t part = std::min(milliseconds, kLongestWait);
    result = control_->stop->Wait(static_cast<std::uint32_t>(part));
    milliseconds -= part;
  } while (result == WaitResult::kTimeOut && milliseconds > 0);
  return result;
}

void Worker::DoWhatIsDue() {
  // What is due is told by the times alone: the clock may have jumped during the wait.
  if (Coincide()) {
    OutputStep();
    NewSetStep();
  } else if (sets_enabled_ && next_set_ < next_output_) {
    NewSetStep();
  } else {
    OutputStep();
  }
}

void Worker::FindWaits() {
  const std::int64_t now = SecondsNow(control_->clock);
  output_wait_ = std::max<std::int64_t>(0, next_output_ - now);
  set_wait_ = std::max<std::int64_t>(0, next_set_ - now);
}

void Worker::OutputStep() {
  if (Coincide() && set_pending_) {
    NameSet(next_set_);
    AdvanceBoth();
    return;
  }
  MakeOutput();
  if (Coincide()) {
    NameSet(next_set_);
    set_pending_ = true;
  } else {
    next_output_ += output_interval_;
  }
}

void Worker::NewSetStep() {
  if (Coincide()) {
    if (set_pending_) {
      NameSet(next_set_);
      AdvanceBoth();
    } else {
      MakeOutput();
      set_pending_ = true;
    }
    return;
  }
  MakeOutput();  // the last one of the set that ends
  NameSet(next_set_);
  next_set_ += set_interval_;
}

void Worker::AdvanceBoth() {
  next_output_ += output_interval_;
  next_set_ += set_interval_;
  set_pending_ = false;
}

void Worker::NameSet(std::int64_t begin) {
  if (IsLeaving() || !state_->parts.method.Get()) return;
  const ReportPaths paths = state_->settings.paths.Get();
  state_->sets.Begin(control_.get(), ReportSetFolder(paths, begin, begin + set_interval_));
}

void Worker::MakeOutput() {
  if (IsLeaving()) return;
  const std::u16string folder = state_->sets.folder();
  const ComPtr<IStatsContext> context = Hold(state_->parts.context);
  const ComPtr<IStatsOutputMethod> method = state_->parts.method.Get();
  if (folder.empty() || !context || !method) return;
  Status status = S_OK;
  {
    const MethodCall call(state_->calls, method.get(), control_->stopping);
    if (!call.begun()) return;
    status = Guard([&] { WriteReport(folder, method.get(), context.get()); });
  }
  if (IsGivenUp()) return;
  if (Succeeded(status) && state_->settings.reset_output != 0) {
    const Status reset = context->ResetStatistics();
    if (Failed(reset)) status = reset;
    if (IsGivenUp()) return;
  }
  Notify(status, folder);
  DeleteOldSets();
}

void Worker::WriteReport(const std::u16string& folder, IStatsOutputMethod* method, IStatsContext* context) {
  if (!FolderExists(folder)) {
    MakeFolders(folder);
    if (!FolderExists(folder)) Raise(E_FAIL);
  }
  if (state_->format_pending && !IsGivenUp()) SetFormat(method);
  if (IsGivenUp()) return;
  const ComPtr<IGraphCollection> graphs = Hold(state_->parts.graphs);
  Check(method->Output(Bstr(folder).get(), context, graphs.get()));
}

void Worker::SetFormat(IStatsOutputMethod* method) {
  const OutputFormat& format = FormatOf(state_->settings.output_type);
  const ComPtr<IStatsOutputPrefs> preferences = state_->parts.preferences.Get();
  const Bstr template_root = state_->parts.template_root.Read(CopyOf);
  Check(method->SetFormat(Bstr(format.extension).get(), Bstr(format.separator).get(), preferences.get(),
                          template_root.get()));
  if (IsGivenUp()) return;
  if (format.wants_interval) Check(method->SetInterval(output_interval_));
  if (!IsGivenUp()) state_->format_pending = false;
}

void Worker::Notify(Status status, const std::u16string& folder) {
  if (!state_->settings.notify) return;
  Guid context;
  const ComPtr<INotificationSink> sink = state_->parts.receiver.Read([&](const NotificationReceiver& receiver) {
    context = receiver.context;
    return ComPtr<INotificationSink>(receiver.sink);
  });
  if (!sink) return;
  const std::u16string text = NotificationText(status, folder);
  sink->Notify(context, kSkryStatsOutputClass, 0, 0, 0, Failed(status) ? kSeverityFailed : kSeverityDone, text.c_str(),
               0);
}

void Worker::DeleteOldSets() {
  // Both are looked at each time, since they may change while a large set is being deleted.
  while (state_->settings.keep_enabled && !IsGivenUp()) {
    const std::optional<std::u16string> oldest = state_->sets.TakeOldest(state_->settings.keep);
    if (!oldest) return;
    DeleteTree(*oldest);  // what cannot be deleted stays, and is not tried again
  }
}

}  // namespace orvo
