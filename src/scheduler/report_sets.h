#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace orvo {

/// Where reports go: the folder of all, and the name that follows it.
struct ReportPaths {
  std::u16string user;
  std::u16string report;
};

/// A report path that leads somewhere by itself (from a drive or another machine) becomes the user path, and its
/// reports go into "Reports" below that.
void SplitWholeReportPath(ReportPaths* paths);

/// The folder of reports that are in no set, with a backslash at its end; empty when both paths are.
std::u16string PlainReportFolder(const ReportPaths& paths);

/// The folder of the report set from `begin` to `end` (seconds since 1970), without a backslash at its end. What
/// follows a "#" in the report path's name, and its extension, is left out of the set's. Makes the folder that holds
/// all sets.
std::u16string ReportSetFolder(const ReportPaths& paths, std::int64_t begin, std::int64_t end);

/// The report sets of one scheduler, and the folder that reports go to now. Used by any thread. What names sets names
/// itself first, and once another has, nothing of it counts any more: a worker that was given up may come back late.
class ReportSets {
 public:
  /// Whose folders count from now on.
  void Adopt(const void* owner);
  /// The folder of outputs without a set.
  void UseFolder(const void* owner, std::u16string folder);
  /// The folder of outputs from now on. It is listed as the newest set unless it is that already, whatever the case of
  /// its letters.
  void Begin(const void* owner, std::u16string set_folder);

  /// With a backslash at its end; empty when there is none yet.
  std::u16string folder() const;
  /// Takes the oldest set out of the list when it holds more than `keep`.
  std::optional<std::u16string> TakeOldest(std::uint32_t keep);

 private:
  mutable std::mutex mutex_;
  const void* owner_ = nullptr;
  std::u16string folder_;
  std::deque<std::u16string> sets_;  // newest first, without backslash at the end
};

}  // namespace orvo
