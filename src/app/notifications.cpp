#include "app/notifications.h"

#include <string_view>
#include <utility>

#include "app/component.h"
#include "platform/clock.h"
#include "platform/code_page.h"
#include "platform/error.h"

namespace orvo::app {
namespace {

/// What the scheduler says of a report that was written, in front of its folder.
constexpr std::u16string_view kWritten = u"Statistics output to ";

std::string ReadableText(std::u16string_view text) {
  if (!text.starts_with(kWritten)) return ToUtf8(text);
  return ToUtf8(kWritten) + SystemPath(text.substr(kWritten.size()));
}

}  // namespace

Status Notifications::Notify(const Guid&, const Guid&, std::uint32_t, std::uint32_t, std::uint32_t,
                             std::uint32_t severity, const char16_t* text, std::uint32_t) {
  return Guard([&] {
    Notification notification{
        .time = ProcessClock().Now(), .severity = severity, .text = ReadableText(text ? text : u"")};
    {
      const std::lock_guard lock(mutex_);
      kept_.push_back(std::move(notification));
    }
    on_new_();
  });
}

void Notifications::EndReport() {
  const std::vector<std::string> problems = files_->Problems();
  files_->Forget();
  const std::lock_guard lock(mutex_);
  problems_.insert(problems_.end(), problems.begin(), problems.end());
}

std::vector<Notification> Notifications::Take() {
  const std::lock_guard lock(mutex_);
  return std::exchange(kept_, {});
}

std::vector<std::string> Notifications::TakeProblems() {
  const std::lock_guard lock(mutex_);
  return std::exchange(problems_, {});
}

}  // namespace orvo::app
