#pragma once

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/code_page.h"
#include "platform/object.h"
#include "scheduler/skry_stats_output.h"
#include "tests/scheduler/virtual_clock.h"
#include "tests/support/settings_document.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zone.h"

namespace orvo::test {

/// Seconds since 1970 of "2007-11-14 10:23:40", which is UTC.
inline std::int64_t At(const char* text) {
  tm fields{};
  EXPECT_NE(strptime(text, "%Y-%m-%d %H:%M:%S", &fields), nullptr) << text;
  return timegm(&fields);
}

/// A time in the test's time zone.
inline std::string TimeText(std::int64_t time, const char* format) {
  const time_t value = time;
  tm fields{};
  localtime_r(&value, &fields);
  char text[64];
  return {text, strftime(text, sizeof(text), format, &fields)};
}

/// A folder as logs name it: without the path to those below "R:\Reports", and without that and the begin of its name
/// for a set there.
inline std::string ShortName(const std::string& folder, const std::string& reports, std::string_view end) {
  if (folder == reports) return "";
  const std::string set = reports + "Reports-";
  if (!folder.starts_with(set) || !folder.ends_with(end)) return " " + folder;
  return " " + folder.substr(set.size(), folder.size() - end.size() - set.size());
}

/// What the scheduler's surroundings hear and answer. Its folder is "R:".
class Surroundings {
 public:
  explicit Surroundings(std::int64_t start) : clock(start) { AddDrive(u'R', folder.Path()); }
  ~Surroundings() { AddDrive(u'R', {}); }

  /// One line: the time, what happened, and what it was about.
  void Note(const std::string& what) {
    log.push_back((time_format ? TimeText(clock.Seconds(), time_format) + " " : "") + what);
  }

  /// Notes the report sets that have gone from the disk since the last look.
  void LookForDeletions() {
    std::set<std::string> there;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
      if (entry.path().filename().string().find(" - ") != std::string::npos) {
        there.insert(std::filesystem::relative(entry.path(), folder.Path()).string());
      }
    }
    for (const std::string& set : sets_on_disk) {
      if (!there.contains(set)) log.push_back("deleted" + ShortName(set, "Reports/", ""));
    }
    sets_on_disk = std::move(there);
  }

  VirtualClock clock;
  TemporaryFolder folder;
  const char* time_format = "%d %H:%M:%S";
  std::vector<std::string> log;
  std::set<std::string> sets_on_disk;
  /// Called by each output, and tells its status.
  std::function<Status()> on_output = [] { return S_OK; };
  std::function<void()> on_format = [] {};
  std::function<void()> on_notification = [] {};
  Status format_status = S_OK;
  Status interval_status = S_OK;
  Status reset_status = S_OK;
  bool note_format = false;
  bool note_notifications = false;
  /// Years of outputs are counted, not noted.
  bool note_outputs = true;
  int outputs = 0;
};

class NotingMethod final : public Object<IStatsOutputMethod> {
 public:
  explicit NotingMethod(Surroundings* surroundings) : world_(*surroundings) {}

  Status Output(BSTR folder, IStatsContext* context, IGraphCollection*) override {
    EXPECT_NE(context, nullptr);
    ++world_.outputs;
    if (world_.note_outputs) {
      world_.LookForDeletions();
      world_.Note("output" + ShortName(ToUtf8(StringView(folder)), R"(R:\Reports\)", "\\"));
    }
    return world_.on_output();
  }
  Status ResetMark() override {
    world_.Note("mark reset");
    return S_FALSE;
  }
  Status SetFormat(BSTR extension, BSTR separator, IStatsOutputPrefs* preferences, BSTR root) override {
    world_.on_format();
    if (!world_.note_format) return world_.format_status;
    const std::string tab = StringView(separator) == u"\t" ? "tab" : ToUtf8(StringView(separator));
    world_.Note("format | " + ToUtf8(StringView(extension)) + " " + tab + (preferences ? " preferences" : "") +
                (root ? " " + ToUtf8(StringView(root)) : ""));
    return world_.format_status;
  }
  Status OutputLive(IStatsContext*, BSTR, IGraphCollection*) override { return E_NOTIMPL; }
  Status SetInterval(std::uint32_t seconds) override {
    if (world_.note_format) world_.Note("interval | " + std::to_string(seconds));
    return world_.interval_status;
  }

 private:
  Surroundings& world_;
};

class NotingContext final : public Object<IStatsContext> {
 public:
  explicit NotingContext(Surroundings* surroundings) : world_(*surroundings) {}

  Status ResetStatistics() override {
    world_.Note("statistics reset");
    return world_.reset_status;
  }
  Status GetCategory(const Guid&, const Guid&, void**) override { return E_NOTIMPL; }
  Status GetMediumType(std::uint32_t*) override { return E_NOTIMPL; }
  Status GetMediumSubtype(std::uint32_t*) override { return E_NOTIMPL; }
  Status GetAddressTable(IAddressTable**) override { return E_NOTIMPL; }
  Status GetConversationIndex(IConversationIndex**) override { return E_NOTIMPL; }
  Status GetStartTime(std::uint64_t*) override { return E_NOTIMPL; }
  Status GetDuration(std::uint64_t*) override { return E_NOTIMPL; }
  Status GetTotalPackets(std::uint64_t*) override { return E_NOTIMPL; }
  Status GetTotalBytes(std::uint64_t*) override { return E_NOTIMPL; }
  Status IsAvailable() override { return S_OK; }

 private:
  Surroundings& world_;
};

constexpr Guid kTestNotification = "01020304-0506-0708-090A-0B0C0D0E0F10"_guid;

class NotingSink final : public Object<INotificationSink> {
 public:
  explicit NotingSink(Surroundings* surroundings) : world_(*surroundings) {}

  Status Notify(const Guid& context, const Guid& source_class, std::uint32_t first, std::uint32_t second,
                std::uint32_t third, std::uint32_t severity, const char16_t* text, std::uint32_t last) override {
    EXPECT_TRUE(context == kTestNotification && source_class == kSkryStatsOutputClass);
    EXPECT_EQ(first + second + third + last, 0U);
    if (world_.note_notifications) world_.Note("told " + std::to_string(severity) + " | " + ToUtf8(text));
    world_.on_notification();
    return E_FAIL;  // of no consequence
  }

 private:
  Surroundings& world_;
};

/// A scheduler among surroundings that take notes. Reports go to "R:\", sets are named after "Reports".
class Schedule : public Surroundings {
 public:
  /// Begins at `start` (UTC) with the attributes of a "statsoutput" element.
  explicit Schedule(const char* start, const std::string& attributes = {},
                    Status (*create)(const Guid& iid, void** out) = CreateSkryStatsOutput)
      : Surroundings(At(start)) {
    EXPECT_EQ(create(ISkryStatsOutput::kIid, scheduler.OutVoid()), S_OK);
    EXPECT_EQ(Query(scheduler.get(), &startable), S_OK);
    scheduler->SetUserPath(Bstr(u"R:\\").get());
    scheduler->SetReportPath(Bstr(u"Reports").get());
    scheduler->SetOutputMethod(method.get());
    scheduler->SetContext(context.get());
    scheduler->SetNotifySink(sink.get(), kTestNotification);
    EXPECT_EQ(Set(attributes), S_OK);
  }

  Status Set(const std::string& attributes) const {
    return SettingsDocument("<statsoutput " + attributes + "/>").LoadInto(scheduler);
  }

  /// Starts when stopped, and goes on to a time (UTC); gives what was noted since the last call.
  std::vector<std::string> RunTo(const char* time) {
    EXPECT_EQ(startable->Start(), S_OK);
    clock.RunTo(At(time));
    if (note_outputs) LookForDeletions();
    return std::exchange(log, {});
  }

  ComPtr<NotingMethod> method = MakeObject<NotingMethod>(this);
  ComPtr<NotingContext> context = MakeObject<NotingContext>(this);
  ComPtr<NotingSink> sink = MakeObject<NotingSink>(this);
  ComPtr<ISkryStatsOutput> scheduler;
  ComPtr<IStartable> startable;  // the last reference: releasing it stops the worker
};

}  // namespace orvo::test
