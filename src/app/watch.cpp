#include "app/watch.h"

#include <fmt/core.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <limits>
#include <utility>

#include "app/component.h"
#include "app/report_folder.h"
#include "app/report_kinds.h"
#include "platform/locale.h"

namespace orvo::app {
namespace {

constexpr const char* kScheduler = "the scheduler";
constexpr std::uint32_t kWritten = 0;  // the severity of a report that was written
constexpr std::uint64_t kNotReported = std::numeric_limits<std::uint64_t>::max();
constexpr int kBetweenStatusLines = 500;  // milliseconds
constexpr std::chrono::seconds kPatienceWithPrograms(10);
constexpr std::chrono::milliseconds kOneWish(500);  // signals to end so close to each other mean the same

/// "2026-11-23 04:00:05", in local time.
std::string TimeText(std::uint64_t time) {
  CalendarTime local;
  if (Failed(ToLocalTime(time, &local))) return "-";
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", local.year, local.month, local.day, local.hour,
                     local.minute, local.second);
}

}  // namespace

/// What an output method is told before its first report, and never again.
struct Watch::ToldOnce {
  explicit ToldOnce(ISkryStatsOutput& scheduler) : seconds(OutputSeconds(scheduler)) {
    Require(scheduler.GetOutputType(&type), kScheduler);
  }

  std::int32_t type = 0;
  std::uint64_t seconds;
};

Watch::Watch(const WatchParts& parts)
    : parts_(parts),
      notifications_(MakeObject<Notifications>([this] { parts_.wakeup.Wake(); })),
      feeder_(parts.source, parts.waiting, parts.engine, [this] { parts_.wakeup.Wake(); }),
      clock_(
          ProcessClock(),
          [this] {
            notifications_->EndReport();
            parts_.wakeup.Wake();
          },
          [this] {
            reported_ = feeder_.packets();
            has_reported_ = true;
          }),
      status_(!parts.options.no_progress),
      context_(parts.engine.Context()),
      graphs_(parts.engine.Graphs()) {
  WarnOfUnknownNames(parts_.options.settings);
  preferences_ = LoadPreferences(parts_.options.settings);
  ChooseReport(parts_.options.report, *preferences_);
  scheduler_ = MakeScheduler();
  ApplySchedule(parts_.options.settings.file, parts_.choice, *scheduler_);
  SetUp();
  SetProcessClock(&clock_);
}

Watch::~Watch() {
  if (startable_) startable_->Stop();
  feeder_.Stop();
  // What it does not hold itself goes before it may go.
  scheduler_->SetNotifySink(nullptr, {});
  scheduler_->SetContext(nullptr);
  scheduler_->SetGraphs(nullptr);
  startable_.Reset();
  scheduler_.Reset();
  SetProcessClock(nullptr);
  parts_.engine.SetObserver(nullptr);
}

void Watch::SetUp() {
  std::int32_t type = 0;
  Require(scheduler_->GetOutputType(&type), kScheduler);
  const Format& format = FormatOfType(type);
  const auto method =
      CreateComponent<IStatsOutputMethod>(format.method, fmt::format("the report library ({})", format.name));
  Require(Query(scheduler_.get(), &startable_), kScheduler);
  Require(scheduler_->SetOutputMethod(method.get()), kScheduler);
  Require(scheduler_->SetPrefs(preferences_.get()), kScheduler);
  Require(scheduler_->SetContext(context_.get()), kScheduler);
  Require(scheduler_->SetGraphs(graphs_.get()), kScheduler);
  Require(scheduler_->SetNotifySink(notifications_.get(), {}), kScheduler);
  if (format.type == kOutputXml) WarnOfMissingPages(parts_.options);
  if (const std::u16string templates = TemplateFolder(parts_.options); !templates.empty()) {
    Require(scheduler_->SetTemplateRoot(Bstr(templates).get()), kScheduler);
  }
  parts_.engine.SetObserver(notifications_->observer());
  HearOfReports();
}

void Watch::HearOfReports() {
  std::int32_t notify = 0;
  Require(scheduler_->GetNotify(&notify), kScheduler);
  tells_ = notify != 0;
  Require(scheduler_->SetNotify(1), kScheduler);
}

bool Watch::Run() {
  Require(startable_->Start(), kScheduler);
  feeder_.Start();
  while (!finished_) {
    ShowStatus();
    parts_.wakeup.Wait(status_.wanted() ? kBetweenStatusLines : -1, parts_.link.descriptor());
    TakeSignals();
    Tell();
    TellOfLink();
    parts_.programs.Tend();
    Advance();
  }
  Require(startable_->Stop(), kScheduler);
  Tell();
  FinishPrograms();
  return ended_well_ && reported_well_;
}

void Watch::TakeSignals() {
  while (const std::optional<int> signal = parts_.wakeup.NextSignal()) {
    if (*signal == SIGHUP) reload_ = true;
    if (*signal != SIGINT && *signal != SIGTERM) continue;
    const auto now = std::chrono::steady_clock::now();
    if (!asked_to_end_) asked_to_end_ = now;
    // Whoever is in a hurry sends a second one; some programs send each signal twice.
    if (now - *asked_to_end_ > kOneWish) Wakeup::EndBy(*signal);
    ending_ = true;
  }
}

void Watch::Tell() {
  for (const Notification& notification : notifications_->Take()) {
    status_.Clear();
    reported_well_ = notification.severity == kWritten;
    if (tells_) {
      PrintOutput(fmt::format("{} {} {}\n", TimeText(notification.time), reported_well_ ? "info" : "error",
                              Printable(notification.text)));
      parts_.programs.Add(notification.severity, notification.text);
    }
    if (reported_well_) continue;
    reported_ = kNotReported;
    TellOfFolder();
  }
  for (const std::string& problem : notifications_->TakeProblems()) {
    status_.Clear();
    reported_well_ = false;
    PrintMessage(problem);
  }
}

void Watch::TellOfFolder() {
  try {
    Bstr user;
    Bstr report;
    std::int32_t sets = 0;
    Require(scheduler_->GetUserPath(user.Out()), kScheduler);
    Require(scheduler_->GetReportPath(report.Out()), kScheduler);
    Require(scheduler_->GetNewSetEnabled(&sets), kScheduler);
    const std::filesystem::path folder = SystemPath(std::u16string(user.view()).append(report.view()));
    MakeFolder(sets != 0 ? folder.parent_path() : folder);
  } catch (const CommandError& error) {
    PrintMessage(error.message());
  }
}

void Watch::TellOfLink() {
  const std::optional<bool> up = parts_.link.Change();
  if (!up) return;
  status_.Clear();
  PrintWarning(
      fmt::format("{}: {}", parts_.what, *up ? "is up again" : "is down; no packets come until it is up again"));
}

void Watch::Advance() {
  if (feeder_.has_ended() && !ending_) {
    ending_ = true;
    status_.Clear();
    if (!feeder_.failure().empty()) {
      PrintMessage(fmt::format("{}: {}", parts_.what, feeder_.failure()));
      ended_well_ = false;
    }
  }
  // Whatever was asked for while a report is written waits for its end.
  if (!clock_.waits_until()) return;
  if (ending_) {
    End();
  } else if (std::exchange(reload_, false)) {
    Reload();
  } else if (!std::exchange(announced_, true)) {
    Announce();
  }
}

void Watch::End() {
  feeder_.Stop();
  if (!std::exchange(last_report_, true) && feeder_.packets() != reported_) {
    clock_.EndWait();
  } else {
    finished_ = true;
  }
}

void Watch::Reload() {
  status_.Clear();
  const std::string& file = parts_.options.settings.file;
  if (file.empty()) {
    PrintWarning("SIGHUP: there are no settings to read again, as --settings was not given");
    return;
  }
  std::string restart;
  try {
    // Settings that are wrong are found before anything is changed.
    const ComPtr<ISkryStatsOutput> trial = MakeScheduler();
    CopySchedule(*scheduler_, *trial);
    ApplySchedule(file, parts_.choice, *trial);
    LoadPreferences(parts_.options.settings);
    WarnOfUnknownNames(parts_.options.settings);

    Require(startable_->Stop(), kScheduler);
    const ToldOnce before(*scheduler_);
    Require(scheduler_->SetNotify(tells_ ? 1 : 0), kScheduler);
    ApplySchedule(file, parts_.choice, *scheduler_);
    HearOfReports();
    const ToldOnce after(*scheduler_);
    // The output method is the one of the old type, and may not have been told its format yet.
    Require(scheduler_->SetOutputType(before.type), kScheduler);
    restart = NeedsRestart(before, after);
    ApplyPreferences(parts_.options.settings, *preferences_);
    ChooseReport(parts_.options.report, *preferences_);
  } catch (const CommandError& error) {
    PrintWarning(fmt::format("SIGHUP: {}; the settings stay as they are", error.message()));
  }
  announced_ = clock_.waits_until().has_value();
  Require(startable_->Start(), kScheduler);
  if (!restart.empty()) PrintWarning(fmt::format("{}: {}", file, restart));
}

std::string Watch::NeedsRestart(const ToldOnce& before, const ToldOnce& after) const {
  if (before.type != after.type) {
    return fmt::format("outputType was changed from {} to {}, which takes a restart", before.type, after.type);
  }
  if (has_reported_ && before.type == kOutputXml && before.seconds != after.seconds) {
    return fmt::format("outputInterval was changed; graphs show the last {} seconds until a restart", before.seconds);
  }
  return {};
}

void Watch::Announce() {
  status_.Clear();
  PrintMessage(fmt::format("{}: the next report comes at {}", parts_.what, TimeText(*clock_.waits_until())));
}

void Watch::ShowStatus() {
  if (!status_.wanted()) return;
  const std::optional<std::uint64_t> next = clock_.waits_until();
  const std::uint64_t now = clock_.Now();
  const std::string what_next =
      next         ? "next report in " + DurationText(*next > now ? (*next - now) / kNanosecondsPerSecond : 0)
      : announced_ ? "writing a report"
                   : "starting";
  status_.Show(
      fmt::format("{} packets, {} dropped, {}: {}", feeder_.packets(), feeder_.dropped(), what_next, parts_.what));
}

void Watch::FinishPrograms() {
  const auto end = std::chrono::steady_clock::now() + kPatienceWithPrograms;
  for (;;) {
    parts_.programs.Tend();
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (parts_.programs.running() == 0 || left.count() <= 0) break;
    parts_.wakeup.Wait(static_cast<int>(left.count()));
    TakeSignals();
  }
  if (parts_.programs.running() == 0) return;
  PrintWarning(fmt::format("--on-report: programs that still run: {}, reports for which none was started: {}",
                           parts_.programs.running(), parts_.programs.waiting()));
}

}  // namespace orvo::app
