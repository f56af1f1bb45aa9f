#include "statistics/summary_figures.h"

#include <bit>

#include "platform/error.h"
#include "util/date_time.h"
#include "util/duration.h"
#include "util/formatting.h"
#include "util/string_table.h"

namespace orvo {

SummaryFigures FiguresOf(const SummaryValue& value) {
  SummaryFigures figures;
  switch (value.kind) {
    case kSummaryDate: Check(FormatDate(value.first, &figures.text)); break;
    case kSummaryTime: Check(FormatTimeOfDay(value.first, kNoFraction, &figures.text)); break;
    case kSummaryDuration:
      Check(
          FormatDuration(static_cast<std::int64_t>(value.first), kNoFraction, TextOf(kStrDaysAndTime), &figures.text));
      break;
    case kSummaryPackets: figures.packets = value.first; break;
    case kSummaryBytes: figures.bytes = value.first; break;
    case kSummaryPacketsAndBytes:
      figures.packets = value.first;
      figures.bytes = value.second;
      break;
    case kSummaryInteger: figures.integer = value.first; break;
    case kSummaryReal: figures.real = std::bit_cast<double>(value.first); break;
    default: break;
  }
  return figures;
}

}  // namespace orvo
