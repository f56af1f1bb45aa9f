#include "capture/tables/level_range.h"

#include <algorithm>

namespace orvo {

void AddLevel(const RadioLevel& level, bool* measured, WirelessStrength* strength) {
  if (!level.known()) return;
  const auto percent = static_cast<std::uint8_t>(level.percent);
  strength->min_percent = *measured ? std::min(strength->min_percent, percent) : percent;
  strength->max_percent = std::max(strength->max_percent, percent);
  strength->current_percent = percent;
  *measured = true;
  if (level.dbm == kNoDbm) return;
  strength->min_dbm = strength->min_dbm == kNoDbm ? level.dbm : std::min(strength->min_dbm, level.dbm);
  strength->max_dbm = std::max(strength->max_dbm, level.dbm);
  strength->current_dbm = level.dbm;
}

}  // namespace orvo
