#include "capture/analysis/expert/expert_reader.h"

#include <memory>

namespace orvo {

void ExpertReader::Read(std::span<const Packet> packets, std::span<const PacketFacts> facts, ExpertNotes* notes) {
  notes->packets.resize(packets.size());
  notes->events.clear();
  for (std::size_t i = 0; i < packets.size(); ++i) {
    ExpertNotes::Entry& entry = notes->packets[i];
    if (facts[i].flow.serial != 0) std::construct_at(&entry.flow, packets[i], facts[i]);
    network_.Inspect(packets[i], facts[i], &notes->events);
    wireless_.Inspect(packets[i], facts[i], &notes->events);
    entry.events_so_far = notes->events.size();
  }
}

}  // namespace orvo
