#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "app/report_files.h"
#include "engine/context.h"
#include "platform/object.h"

namespace orvo::app {

/// What a scheduler had to tell.
struct Notification {
  std::uint64_t time = 0;  ///< when it was told
  std::uint32_t severity = 0;
  std::string text;  ///< with folders in the system's form
};

/// Hears the notifications of a scheduler, and of the files of its reports, in the scheduler's thread, and keeps them
/// until they are taken in another.
class Notifications final : public Object<INotificationSink> {
 public:
  /// `on_new` is called, by the scheduler's thread, for each.
  explicit Notifications(std::function<void()> on_new) : on_new_(std::move(on_new)) {}

  Status Notify(const Guid& context, const Guid& source_class, std::uint32_t first, std::uint32_t second,
                std::uint32_t third, std::uint32_t severity, const char16_t* text, std::uint32_t last) override;

  /// To be set as the engine's observer.
  IReportObserver* observer() { return files_.get(); }
  /// Called by the scheduler's thread when it has finished a report.
  void EndReport();
  /// Those that came since the last call, the oldest first.
  std::vector<Notification> Take();
  /// A line for each cause that kept files of finished reports from being written, since the last call.
  std::vector<std::string> TakeProblems();

 private:
  std::function<void()> on_new_;
  const ComPtr<ReportFiles> files_ = MakeObject<ReportFiles>();  // of the report under way; the scheduler's thread's
  std::mutex mutex_;
  std::vector<Notification> kept_;
  std::vector<std::string> problems_;
};

}  // namespace orvo::app
