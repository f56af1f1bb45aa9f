#include "capture/analysis/expert/event_log.h"

namespace orvo {

void EventLog::Add(EventRecord record) {
  EventCount& count = counts_[static_cast<std::size_t>(record.event)];
  if (count.count++ == 0) count.first_time = record.time;
  count.last_time = record.time;
  record.number = ++total_;
  if (capacity_ == 0) return;
  if (records_.size() < capacity_) {
    records_.Append(record);
  } else {
    records_.Edit((total_ - 1) % capacity_) = record;
  }
}

}  // namespace orvo
