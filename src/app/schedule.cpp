#include "app/schedule.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>

#include "app/component.h"
#include "app/messages.h"
#include "app/settings.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "util/persist_xml.h"

namespace orvo::app {
namespace {

constexpr const char* kSubject = "the scheduler";
/// The scheduler counts its waits in milliseconds of 32 bits.
constexpr std::uint64_t kTooLong = 4'294'967;
constexpr std::uint64_t kShortest = 5;

struct Unit {
  char letter;
  IntervalUnit unit;
  std::uint64_t seconds;
};
constexpr Unit kUnits[] = {
    {'s', kUnitSeconds, 1}, {'m', kUnitMinutes, 60}, {'h', kUnitHours, 3'600}, {'d', kUnitDays, 86'400}};

std::uint64_t SecondsOf(std::uint32_t value, std::int32_t unit) {
  const auto* found = std::ranges::find_if(kUnits, [unit](const Unit& one) { return one.unit == unit; });
  return value * (found == std::end(kUnits) ? 1 : found->seconds);
}

/// An interval that the scheduler has been given by its settings.
struct Setting {
  const char* name;
  Status (ISkryStatsOutput::*get)(std::uint32_t*, std::int32_t*);
};
constexpr Setting kOutputInterval{"outputInterval", &ISkryStatsOutput::GetOutputInterval};
constexpr Setting kNewSetInterval{"newSetInterval", &ISkryStatsOutput::GetNewSetInterval};

void CheckInterval(const std::string& file, const Setting& setting, ISkryStatsOutput& scheduler) {
  std::uint32_t value = 0;
  std::int32_t unit = 0;
  Require((scheduler.*setting.get)(&value, &unit), kSubject);
  if (value == 0) throw CommandError(kFailed, fmt::format("{}: {}=\"0\" must be 1 or more", file, setting.name));
  if (const std::uint64_t seconds = SecondsOf(value, unit); seconds >= kTooLong) {
    throw CommandError(kFailed, fmt::format("{}: {}=\"{}\" with {}Unit=\"{}\" is {} seconds, too long to wait for; "
                                            "the longest is {} (49 days)",
                                            file, setting.name, value, setting.name, unit, seconds, kTooLong - 1));
  }
}

/// Every report would fail below a path that the system cannot have.
void CheckReportPath(const std::string& file, ISkryStatsOutput& scheduler) {
  Bstr user;
  Bstr report;
  Require(scheduler.GetUserPath(user.Out()), kSubject);
  Require(scheduler.GetReportPath(report.Out()), kSubject);
  std::string system;
  const bool names_drive = report.view().find(u":\\") != std::u16string_view::npos;
  if (!names_drive && Succeeded(PathToSystem(std::u16string(user.view()).append(report.view()), &system))) return;
  throw CommandError(kFailed, fmt::format("{}: reportPath=\"{}\" cannot be made below the folder of --out; separate "
                                          "folders by backslashes, and name no drive",
                                          file, ToUtf8(report.view())));
}

bool IsOn(Status (ISkryStatsOutput::*get)(std::int32_t*), ISkryStatsOutput& scheduler) {
  std::int32_t value = 0;
  Require((scheduler.*get)(&value), kSubject);
  return value != 0;
}

void ApplyChoice(const ScheduleChoice& choice, ISkryStatsOutput& scheduler) {
  const Bstr folder(PathFromSystem(choice.out));
  Require(scheduler.SetUserPath(folder.get()), kSubject);
  if (choice.every) Require(scheduler.SetOutputInterval(choice.every->value, choice.every->unit), kSubject);
  if (choice.new_set) {
    Require(scheduler.SetNewSetEnabled(1), kSubject);
    Require(scheduler.SetScheduled(1), kSubject);
    Require(scheduler.SetNewSetInterval(choice.new_set->value, choice.new_set->unit), kSubject);
  }
  if (choice.no_sets) Require(scheduler.SetNewSetEnabled(0), kSubject);
  if (choice.keep) {
    Require(scheduler.SetKeepEnabled(1), kSubject);
    Require(scheduler.SetKeep(*choice.keep), kSubject);
  }
  if (choice.keep_all) Require(scheduler.SetKeepEnabled(0), kSubject);
  if (choice.format) Require(scheduler.SetOutputType(choice.format->type), kSubject);
}

}  // namespace

Interval ParseInterval(std::string_view option, std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const std::string_view letters(end, text.data() + text.size());
  const auto* unit =
      std::ranges::find_if(kUnits, [letters](const Unit& one) { return letters == std::string_view(&one.letter, 1); });
  if (error == std::errc::invalid_argument || unit == std::end(kUnits)) {
    throw CommandError(
        kUsage, fmt::format("{} {}: must be a whole number and its unit, s, m, h or d, such as 15m", option, text));
  }
  if (error == std::errc::result_out_of_range || value * unit->seconds >= kTooLong) {
    throw CommandError(kUsage, fmt::format("{} {}: is too long to wait for; the longest is 49d", option, text));
  }
  if (value * unit->seconds < kShortest) {
    throw CommandError(kUsage, fmt::format("{} {}: is too short; the shortest is {}s", option, text, kShortest));
  }
  return {value, unit->unit};
}

ComPtr<ISkryStatsOutput> MakeScheduler() {
  auto scheduler = CreateComponent<ISkryStatsOutput>(kSkryStatsOutputClass, "the report library (scheduler)");
  Require(scheduler->SetScheduled(1), kSubject);
  return scheduler;
}

void ApplySchedule(const std::string& settings_file, const ScheduleChoice& choice, ISkryStatsOutput& scheduler) {
  if (!settings_file.empty()) SettingsFile(settings_file).LoadInto(scheduler);
  ApplyChoice(choice, scheduler);
  // Those of the options were looked at when they were read; what is wrong now comes from the file.
  CheckReportPath(settings_file, scheduler);
  CheckInterval(settings_file, kOutputInterval, scheduler);
  if (IsOn(&ISkryStatsOutput::GetNewSetEnabled, scheduler) && IsOn(&ISkryStatsOutput::GetScheduled, scheduler)) {
    CheckInterval(settings_file, kNewSetInterval, scheduler);
  }
}

std::uint64_t OutputSeconds(ISkryStatsOutput& scheduler) {
  std::uint32_t value = 0;
  std::int32_t unit = 0;
  Require(scheduler.GetOutputInterval(&value, &unit), kSubject);
  return std::max(SecondsOf(value, unit), kShortest);
}

void CopySchedule(ISkryStatsOutput& from, ISkryStatsOutput& to) {
  ComPtr<IXmlDocument> document;
  ComPtr<IXmlElement> root;
  ComPtr<IPersistXml> source;
  ComPtr<IPersistXml> target;
  Require(CreateXmlDocument(document.Out()), kSubject);
  Require(document->CreateElement(u"Settings", root.Out()), kSubject);
  Require(document->AppendChild(root.get()), kSubject);
  Require(Query(&from, &source), kSubject);
  Require(Query(&to, &target), kSubject);
  Require(source->Save(document.get(), root.get()), kSubject);
  Require(target->Load(document.get(), root.get()), kSubject);
}

}  // namespace orvo::app
