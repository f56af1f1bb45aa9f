#pragma once

#include <span>

#include "capture/analysis/expert/expert_notes.h"
#include "capture/analysis/expert/network_watch.h"
#include "capture/analysis/expert/wireless_watch.h"

namespace orvo {

/// Reads packets for the expert analysis while their bytes are there, and finds the events that are of no flow.
/// Belongs to one thread.
class ExpertReader {
 public:
  /// Takes packets in their order, and as many facts, with `flow` and `applications` filled in.
  void Read(std::span<const Packet> packets, std::span<const PacketFacts> facts, ExpertNotes* notes);

 private:
  NetworkWatch network_;
  WirelessWatch wireless_;
};

}  // namespace orvo
