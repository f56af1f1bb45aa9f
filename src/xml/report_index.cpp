#include "xml/report_index.h"

#include <utility>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::string_view kRoot = "StatsReport";

}  // namespace

bool ReportIndex::Load(std::u16string_view path) {
  const Status status = old_.Load(path);
  if (status == E_OUTOFMEMORY) Raise(status);  // nothing wrong with the file
  if (Succeeded(status) && old_.root() == kRoot) return true;
  Clear();
  return false;
}

void ReportIndex::Add(std::string lines, std::uint64_t rows) {
  added_.push_back(std::move(lines));
  rows_ += rows;
}

void ReportIndex::Save(std::u16string_view path) const {
  old_.Save(path, kRoot, added_);
}

}  // namespace orvo
