#include "scheduler/report_sets.h"

#include <algorithm>
#include <utility>

#include "scheduler/calendar.h"
#include "util/folders.h"

namespace orvo {
namespace {

char16_t Lower(char16_t character) {
  return character >= u'A' && character <= u'Z' ? static_cast<char16_t>(character + (u'a' - u'A')) : character;
}

bool SameButForCase(std::u16string_view left, std::u16string_view right) {
  return std::ranges::equal(left, right, {}, Lower, Lower);
}

}  // namespace

void SplitWholeReportPath(ReportPaths* paths) {
  const std::u16string& report = paths->report;
  if (report.find(u"\\\\") == report.npos && report.find(u":\\") == report.npos) return;
  paths->user = report;
  if (!paths->user.ends_with(u'\\')) paths->user += u'\\';
  paths->report = u"Reports";
}

std::u16string PlainReportFolder(const ReportPaths& paths) {
  std::u16string folder = paths.user + paths.report;
  if (!folder.empty() && !folder.ends_with(u'\\')) folder += u'\\';
  return folder;
}

std::u16string ReportSetFolder(const ReportPaths& paths, std::int64_t begin, std::int64_t end) {
  const std::u16string path = paths.user + paths.report;
  std::size_t name_at = path.rfind(u'\\') + 1;
  if (name_at == 0 && path.size() > 1 && path[1] == u':') name_at = 2;  // a bare drive
  std::u16string folder = path.substr(0, name_at);
  if (!FolderExists(folder)) MakeFolders(folder);
  const std::u16string name = path.substr(name_at);
  const std::u16string prefix = name.substr(0, std::min(name.rfind(u'.'), name.find(u'#')));
  if (!prefix.empty()) folder += prefix + u"\\" + prefix + u"-";
  return folder + RangeText(begin, end);
}

void ReportSets::Adopt(const void* owner) {
  std::lock_guard hold(mutex_);
  owner_ = owner;
}

void ReportSets::UseFolder(const void* owner, std::u16string folder) {
  std::lock_guard hold(mutex_);
  if (owner == owner_) folder_ = std::move(folder);
}

void ReportSets::Begin(const void* owner, std::u16string set_folder) {
  std::u16string folder = set_folder + u'\\';
  std::lock_guard hold(mutex_);
  if (owner != owner_) return;
  if (sets_.empty() || !SameButForCase(sets_.front(), set_folder)) sets_.push_front(std::move(set_folder));
  folder_ = std::move(folder);
}

std::u16string ReportSets::folder() const {
  std::lock_guard hold(mutex_);
  return folder_;
}

std::optional<std::u16string> ReportSets::TakeOldest(std::uint32_t keep) {
  std::lock_guard hold(mutex_);
  if (sets_.size() <= keep) return std::nullopt;
  std::u16string oldest = std::move(sets_.back());
  sets_.pop_back();
  return oldest;
}

}  // namespace orvo
