#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "capture/analysis/expert/expert_notes.h"
#include "capture/names/name_directory.h"
#include "capture/tables/counters.h"
#include "capture/tables/packet_note.h"

namespace orvo {

/// Notes of packets that follow each other, and what had become of flows by the last of them.
struct NoteBatch {
  static constexpr std::size_t kMost = 64;

  std::span<PacketNote> packets() { return {notes.data(), size}; }

  /// For the note at that place, which is there, when its packet is wireless.
  void AddWireless(std::size_t place, const PacketFacts& facts) {
    if (!wireless) wireless = std::make_unique<std::array<WirelessNote, kMost>>();
    PacketNote& note = notes[place];
    (*wireless)[place] = {note.time, note.bytes, facts.eap_method, facts.wireless};
    note.wireless = &(*wireless)[place];
  }

  std::size_t size = 0;
  FlowCounts flows;
  std::array<PacketNote, kMost> notes;
  std::vector<KnownName> heard;                               ///< names that the packets tell, in their order
  ExpertNotes expert;                                         ///< as many, if there is an expert analysis
  std::unique_ptr<std::array<WirelessNote, kMost>> wireless;  ///< made with the first wireless packet
};

/// Hands batches to a thread of its own, which counts them in the order in which they came. One thread fills; any
/// thread may drain. At most kBatches wait, so that a filler that is faster is held up.
class NoteQueue {
 public:
  /// `count` runs on the queue's thread. What it raises reaches the next Fill or Drain, once; the rest of its batch is
  /// lost, later batches are counted.
  explicit NoteQueue(std::function<void(NoteBatch&)> count) : count_(std::move(count)) {}
  NoteQueue(const NoteQueue&) = delete;
  NoteQueue& operator=(const NoteQueue&) = delete;
  /// What waits is still counted.
  ~NoteQueue();

  /// Starts the thread, unless it runs. False on a machine with one processor, or when the system gives none: then
  /// nothing may be filled.
  bool Start();
  /// The batch to be filled next; waits for room.
  NoteBatch& Fill();
  /// Hands over the batch that Fill gave. It may wait for others, until Flush or Drain.
  void Publish();
  /// Nothing more will come for now: what was published is begun upon.
  void Flush() { published_some_.notify_one(); }
  /// Waits until everything that was published before is counted.
  void Drain();

 private:
  static constexpr std::size_t kBatches = 32;
  /// How many are worth waking the thread for.
  static constexpr std::size_t kSome = 16;

  void Run();
  void RaiseProblem();

  const std::function<void(NoteBatch&)> count_;
  std::unique_ptr<std::array<NoteBatch, kBatches>> batches_;  // made with the thread
  std::mutex mutex_;                                          // guards what follows
  std::condition_variable published_some_;
  std::condition_variable counted_one_;
  std::condition_variable half_empty_;
  std::uint64_t published_ = 0;
  std::uint64_t counted_ = 0;
  bool ending_ = false;
  std::exception_ptr problem_;
  std::thread thread_;
};

}  // namespace orvo
