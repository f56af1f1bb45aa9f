// The scheduler among threads: starting, stopping, hanging workers, and releases at bad moments.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <future>

#include "platform/class_factory.h"
#include "prefs/stats_output_prefs.h"
#include "tests/scheduler/schedule_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What one thread waits for and another opens.
class Gate {
 public:
  void Open() { promise_.set_value(); }
  void Wait() { future_.wait(); }

 private:
  std::promise<void> promise_;
  std::shared_future<void> future_ = promise_.get_future().share();
};

/// Waits until the module holds no more than `count` objects and workers, that is until a worker that was given up
/// has gone.
void WaitForModuleCount(std::uint32_t count) {
  while (ModuleReference::Count() > count) std::this_thread::yield();
}

TEST(SchedulerThread, StartsAndStopsOnce) {
  Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0'");
  EXPECT_EQ(schedule.startable->Stop(), S_OK);
  EXPECT_EQ(schedule.startable->Start(), S_OK);
  EXPECT_EQ(schedule.startable->Start(), S_OK);
  EXPECT_THAT(schedule.RunTo("2007-11-14 11:00:00"), ElementsAre("14 11:00:00 output"));
  EXPECT_EQ(schedule.startable->Stop(), S_OK);
  EXPECT_EQ(schedule.startable->Stop(), S_OK);
  EXPECT_EQ(schedule.clock.Seconds(), At("2007-11-14 11:00:00")) << "nobody has waited";
}

TEST(SchedulerThread, TellsWhyItCannotStart) {
  Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0'");
  schedule.clock.event_status = StatusFromError(kErrorTooManyOpenFiles);
  EXPECT_EQ(schedule.startable->Start(), StatusFromError(kErrorTooManyOpenFiles));
  schedule.clock.event_status = S_OK;
  const std::uint32_t objects = ModuleReference::Count();
  FailNextThread(StatusFromError(kErrorAccessDenied));
  EXPECT_EQ(schedule.startable->Start(), StatusFromError(kErrorAccessDenied));
  EXPECT_EQ(ModuleReference::Count(), objects);
  EXPECT_THAT(schedule.RunTo("2007-11-14 11:00:00"), testing::SizeIs(1)) << "and starts at the next attempt";
}

TEST(SchedulerThread, KeepsTheModuleWhileItWorks) {
  Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0'");
  const std::uint32_t objects = ModuleReference::Count();
  schedule.startable->Start();
  EXPECT_GT(ModuleReference::Count(), objects);
  schedule.startable->Stop();
  EXPECT_EQ(ModuleReference::Count(), objects);
}

TEST(SchedulerThread, ResetReachesTheMethod) {
  Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0'");
  schedule.time_format = nullptr;
  EXPECT_EQ(schedule.startable->Reset(), S_FALSE) << "the method's own status";
  EXPECT_THAT(schedule.log, ElementsAre("mark reset"));
  schedule.log.clear();
  schedule.scheduler->SetOutputMethod(nullptr);
  EXPECT_EQ(schedule.startable->Reset(), S_OK);
  schedule.scheduler->SetOutputMethod(schedule.method.get());
  // A method that is writing is not disturbed: it forgets its mark when it has written.
  schedule.note_notifications = true;
  schedule.on_output = [&] {
    std::thread([&] { EXPECT_EQ(schedule.startable->Reset(), S_OK); }).join();
    EXPECT_EQ(schedule.startable->Reset(), S_OK);
    return S_OK;
  };
  EXPECT_THAT(schedule.RunTo("2007-11-14 11:00:00"),
              ElementsAre("output", "mark reset", R"(told 0 | Statistics output to R:\Reports\)"));
}

// A scheduler whose first output hangs until it is let go on.
class HangingSchedulerThread : public testing::Test {
 protected:
  HangingSchedulerThread() {
    schedule_.note_notifications = true;
    schedule_.on_output = [&] {
      if (schedule_.outputs > 1) return S_OK;
      hanging_.Open();
      go_on_.Wait();
      return S_OK;
    };
    EXPECT_EQ(schedule_.startable->Start(), S_OK);
    schedule_.clock.PassTo(At("2007-11-14 11:00:00"));
    hanging_.Wait();
  }

  /// Stops the scheduler, and tells how long that takes.
  std::int64_t SecondsToStop() {
    const std::int64_t before = schedule_.clock.Seconds();
    schedule_.clock.LetPass(30);
    schedule_.startable->Stop();
    schedule_.clock.LetPass(0);
    return schedule_.clock.Seconds() - before;
  }

  const std::uint32_t objects_ = ModuleReference::Count();
  Gate hanging_, go_on_;
  Schedule schedule_{"2007-11-14 10:10:00", "ResetOutput='1' keep='0' scheduled='1'"};
};

const std::string kSet = "2007-11-14 00.00.00 - 2007-11-15 00.00.00";

TEST_F(HangingSchedulerThread, IsGivenUpAfterThirtySeconds) {
  EXPECT_EQ(SecondsToStop(), 30);
  EXPECT_THAT(schedule_.log, ElementsAre("14 11:00:00 output " + kSet));
  schedule_.log.clear();
  const std::uint32_t objects = ModuleReference::Count();
  go_on_.Open();
  WaitForModuleCount(objects - 1);
  EXPECT_THAT(schedule_.log, IsEmpty()) << "no reset, no notification, no deletion";
}

TEST(SchedulerThread, IsGivenUpWhileItTellsTheFormat) {
  Gate hanging, go_on;
  Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0' outputType='2'");
  schedule.note_format = true;
  schedule.on_format = [&] {
    hanging.Open();
    go_on.Wait();
  };
  schedule.startable->Start();
  schedule.clock.PassTo(At("2007-11-14 11:00:00"));
  hanging.Wait();
  schedule.clock.LetPass(30);
  schedule.startable->Stop();
  schedule.clock.LetPass(0);
  const std::uint32_t objects = ModuleReference::Count();
  go_on.Open();
  WaitForModuleCount(objects - 1);
  EXPECT_THAT(schedule.log, ElementsAre("14 11:00:30 format | .xml ,")) << "no interval, no output";
}

TEST_F(HangingSchedulerThread, HoldsWhatItUsesWhenAllElseHasGone) {
  SecondsToStop();
  schedule_.scheduler->SetContext(nullptr);
  schedule_.scheduler->SetNotifySink(nullptr, {});
  const std::uint32_t objects = ModuleReference::Count();
  schedule_.startable.Reset();
  schedule_.scheduler.Reset();
  EXPECT_EQ(ModuleReference::Count(), objects - 1) << "the worker still needs the module";
  // Only the worker holds these now.
  schedule_.context->AddRef();
  EXPECT_EQ(schedule_.context->Release(), 2U);
  schedule_.context.Reset();
  schedule_.method.Reset();
  schedule_.sink.Reset();
  go_on_.Open();
  WaitForModuleCount(objects_);
}

TEST_F(HangingSchedulerThread, DoesNotMeetTheNextWorkerInTheMethod) {
  SecondsToStop();
  // The next worker has its output due at 12:00 while the first one is still in the method, and can be stopped there.
  EXPECT_EQ(schedule_.startable->Start(), S_OK);
  schedule_.clock.PassTo(At("2007-11-14 12:00:00"));
  EXPECT_EQ(schedule_.startable->Stop(), S_OK);
  EXPECT_EQ(schedule_.outputs, 1);
  // A third one writes when the first has gone.
  EXPECT_EQ(schedule_.startable->Start(), S_OK);
  schedule_.log.clear();
  go_on_.Open();
  EXPECT_THAT(schedule_.RunTo("2007-11-14 13:00:00"),
              ElementsAre("14 13:00:00 output " + kSet, "14 13:00:00 statistics reset",
                          R"(14 13:00:00 told 0 | Statistics output to R:\Reports\Reports-)" + kSet + "\\",
                          testing::StartsWith("deleted 2007-11-14 ")));
}

TEST(SchedulerThread, MayBeStoppedByItsOwnNotification) {
  Schedule schedule("2007-11-14 10:10:00", "keep='0'");
  schedule.on_notification = [&] { EXPECT_EQ(schedule.startable->Stop(), S_OK); };
  const std::uint32_t objects = ModuleReference::Count();
  schedule.startable->Start();
  schedule.clock.PassTo(At("2007-11-14 11:00:00"));
  WaitForModuleCount(objects);
  EXPECT_EQ(schedule.outputs, 1);
  EXPECT_TRUE(std::filesystem::is_empty(schedule.folder.Path("Reports"))) << "retention has ended the output";
  // It can be started again from there as well.
  schedule.Set("keep='7'");
  schedule.on_notification = [&] {
    if (schedule.outputs > 2) return;
    schedule.startable->Stop();
    schedule.startable->Start();
  };
  EXPECT_THAT(schedule.RunTo("2007-11-14 14:00:00"),
              ElementsAre("14 11:00:00 output 2007-11-14 10.00.00 - 11.00.00", "deleted 2007-11-14 10.00.00 - 11.00.00",
                          "14 12:00:00 output 2007-11-14 11.00.00 - 12.00.00",
                          "14 13:00:00 output 2007-11-14 12.00.00 - 13.00.00",
                          "14 14:00:00 output 2007-11-14 13.00.00 - 14.00.00"));
  schedule.startable->Stop();
  WaitForModuleCount(objects);
}

TEST(SchedulerThread, MayBeReleasedLastByItsOwnNotification) {
  const std::uint32_t objects = ModuleReference::Count();
  Schedule schedule("2007-11-14 10:10:00");
  schedule.on_notification = [&] {
    schedule.scheduler.Reset();
    schedule.startable.Reset();
  };
  schedule.startable->Start();
  schedule.clock.PassTo(At("2007-11-14 11:00:00"));
  WaitForModuleCount(objects);
  EXPECT_EQ(schedule.outputs, 1);
  EXPECT_FALSE(schedule.startable);
}

TEST(SchedulerThread, MayBeReleasedAtAnyMoment) {
  // On the system's clock, where a worker is anywhere in its start when it is told to stop.
  for (int turn = 0; turn < 200; ++turn) {
    ComPtr<IStartable> startable;
    ASSERT_EQ(CreateSkryStatsOutput(IStartable::kIid, startable.OutVoid()), S_OK);
    ASSERT_EQ(startable->Start(), S_OK);
    if (turn % 2 == 0) {
      ASSERT_EQ(startable->Stop(), S_OK);
    }
  }
}

TEST(SchedulerThread, IsUsedByEightThreadsAtOnce) {
  Schedule schedule("2007-11-14 10:10:00", "outputInterval='1' outputIntervalUnit='1' keep='2'");
  schedule.note_outputs = false;
  schedule.time_format = nullptr;
  schedule.on_output = [&] { return schedule.outputs % 3 == 0 ? E_FAIL : S_OK; };
  ComPtr<IStatsOutputPrefs> preferences;
  ASSERT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
  schedule.clock.LetPass(5);

  std::atomic<int> busy{0};
  const auto thread = [&](int own) {
    ISkryStatsOutput* scheduler = schedule.scheduler.get();
    const SettingsDocument settings;
    // All have begun before the first goes on.
    for (++busy; busy < 8;) std::this_thread::yield();
    const auto number = static_cast<std::uint32_t>(own);
    for (int turn = 0; turn < 60; ++turn) {
      schedule.startable->Start();
      scheduler->SetOutputInterval(number, own);
      std::uint32_t value = 0;
      std::int32_t unit = 0;
      scheduler->GetOutputInterval(&value, &unit);
      EXPECT_EQ(value, static_cast<std::uint32_t>(unit)) << "the halves of two settings";
      scheduler->SetOutputInterval(1, 1);
      Bstr text(own % 2 == 0 ? u"R:\\Even\\" : u"R:\\Odd\\");
      scheduler->SetUserPath(text.get());
      scheduler->SetTemplateRoot(text.get());
      Bstr got;
      scheduler->GetUserPath(got.Out());
      EXPECT_TRUE(got.view() == u"R:\\Even\\" || got.view() == u"R:\\Odd\\" || got.view() == u"R:\\");
      scheduler->GetTemplateRoot(got.Out());
      scheduler->SetReportPath(Bstr(u"Reports").get());
      scheduler->GetReportPath(got.Out());
      scheduler->SetKeep(number % 3);
      scheduler->SetNotify(own % 4);
      scheduler->SetScheduled(own % 2);
      scheduler->SetResetOutput(0);
      scheduler->SetContext(turn % 5 == 0 ? nullptr : schedule.context.get());
      scheduler->SetNotifySink(turn % 7 == 0 ? nullptr : schedule.sink.get(), kTestNotification);
      scheduler->SetOutputMethod(schedule.method.get());
      scheduler->SetPrefs(preferences.get());
      ComPtr<IStatsContext> context;
      ComPtr<INotificationSink> sink;
      ComPtr<IStatsOutputMethod> method;
      Guid identifier;
      scheduler->GetContext(context.Out());
      scheduler->GetNotifySink(sink.Out(), &identifier);
      scheduler->GetOutputMethod(method.Out());
      EXPECT_EQ(settings.SaveFrom(schedule.scheduler), S_OK);
      if (turn % 6 == own % 6) {
        EXPECT_EQ(settings.LoadInto(schedule.scheduler), S_OK);
      }
      if (turn % 4 == own % 4) {
        EXPECT_EQ(schedule.startable->Stop(), S_OK);
      }
    }
  };
  std::array<std::thread, 8> threads;
  for (int own = 0; own < 8; ++own) threads[static_cast<std::size_t>(own)] = std::thread(thread, own);
  for (std::thread& one : threads) one.join();
  EXPECT_EQ(schedule.startable->Stop(), S_OK);
  EXPECT_GT(schedule.outputs, 0);
}

Status CreateFromModule(const Guid& iid, void** out) {
  return CreateInstance(kSkryStatsOutputClass, iid, out);
}

// A scheduler of the library as hosts load it.
class SchedulerOfAModule : public testing::Test {
 protected:
  SchedulerOfAModule() {
    setenv("ORVO_REGISTRY", folder_.Path("registry.xml").c_str(), 1);
    EXPECT_EQ(AddLibrary(PathFromSystem(kLibrary)), S_OK);
  }
  ~SchedulerOfAModule() override { unsetenv("ORVO_REGISTRY"); }

  static constexpr char kLibrary[] = ORVO_BINARY_DIR "/lib/OrvoReports.so";

 private:
  TemporaryFolder folder_;
};

// The library in which the worker's code lies stays until the worker has left it, and goes then.
TEST_F(SchedulerOfAModule, LeavesAModuleThatIsUnloaded) {
  for (int turn = 0; turn < 20; ++turn) {
    Schedule schedule("2007-11-14 10:10:00", {}, CreateFromModule);
    const auto release = [&] {
      schedule.scheduler.Reset();
      schedule.startable.Reset();
    };
    schedule.startable->Start();
    if (turn % 2 == 0) {
      schedule.on_notification = release;
      schedule.clock.PassTo(At("2007-11-14 11:00:00"));
    } else {
      schedule.clock.RunTo(At("2007-11-14 11:00:00"));
      release();
    }
    while (void* loaded = dlopen(kLibrary, RTLD_NOW | RTLD_NOLOAD)) {
      dlclose(loaded);
      FreeUnusedLibraries();
      std::this_thread::yield();
    }
    EXPECT_EQ(schedule.outputs, 1);
  }
}

// Whoever unloads a library holds a lock, without which the worker cannot let its own go.
TEST_F(SchedulerOfAModule, MayBeStoppedWhileAnotherIsUnloaded) {
  static IStartable* startable = nullptr;
  static bool stopped = false;
  Schedule schedule("2007-11-14 10:10:00", {}, CreateFromModule);
  startable = schedule.startable.get();
  ASSERT_EQ(startable->Start(), S_OK);
  void* host = dlopen(ORVO_BINARY_DIR "/tests/platform_test_module.so", RTLD_NOW);
  ASSERT_NE(host, nullptr) << dlerror();
  auto* on_unload = static_cast<void (**)()>(dlsym(host, "on_unload"));
  ASSERT_NE(on_unload, nullptr);
  *on_unload = [] { stopped = startable->Stop() == S_OK; };
  dlclose(host);
  EXPECT_TRUE(stopped);
}

}  // namespace
}  // namespace orvo::test
