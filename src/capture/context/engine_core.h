#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "capture/analysis/expert/expert_analysis.h"
#include "capture/analysis/expert/expert_reader.h"
#include "capture/analysis/voice_analysis.h"
#include "capture/classify/application_detector.h"
#include "capture/classify/protocol_tree.h"
#include "capture/context/capture_engine.h"
#include "capture/context/category_views.h"
#include "capture/context/feed_gate.h"
#include "capture/context/note_queue.h"
#include "capture/decode/protocol_registry.h"
#include "capture/names/name_directory.h"

namespace orvo {

/// What an engine and its contexts share, and what lives on while any of them does.
class EngineCore {
 public:
  explicit EngineCore(const EngineOptions& options);

  EngineCore(const EngineCore&) = delete;
  EngineCore& operator=(const EngineCore&) = delete;

  /// Called by the feeding thread alone.
  void Feed(std::span<const Packet> packets);
  void SetDropped(std::uint64_t packets);
  void Reset();
  void StoreSummary(std::u16string_view name);
  std::uint64_t packets();

  /// The statistics as of now; the same object again while nothing has changed and somebody still holds it.
  EpochPtr Freeze();
  /// What Freeze gave last, as long as somebody holds it; the statistics as of now otherwise.
  EpochPtr Latest();

  /// Null when texts are to be plain addresses.
  const std::shared_ptr<NameDirectory>& names() const { return names_; }

  void SetObserver(IReportObserver* observer);
  ComPtr<IReportObserver> observer() const;

  const EngineOptions& options() const { return options_; }

 private:
  /// Spans of fewer packets are counted by the feeding thread, as waking another costs more.
  static constexpr std::size_t kWorthHandingOver = 16;
  /// Names that wait in one batch, besides those of the last packet that was read.
  static constexpr std::size_t kMostHeard = 256;

  void Decode(std::span<const Packet> packets, NoteBatch* batch);
  void Count(NoteBatch* batch);
  void Listen(const PacketFacts& facts, NoteBatch* batch);
  void Learn(std::vector<KnownName>* heard);

  const EngineOptions options_;
  const std::shared_ptr<NameDirectory> names_;
  FeedGate gate_;
  // The feeding thread's, within a pass of the gate:
  std::array<PacketFacts, NoteBatch::kMost> facts_;
  NoteBatch batch_;  // of packets that it counts itself
  ApplicationDetector detector_;
  ExpertReader expert_reader_;
  VoiceAnalysis voice_;

  mutable std::mutex mutex_;  // guards what follows; held for one batch, or while pages are shared
  ExpertAnalysis expert_;
  StatisticsTables tables_;
  std::deque<std::shared_ptr<const SummaryRecord>> stored_;
  std::uint64_t changes_ = 0;
  std::weak_ptr<const Epoch> latest_;
  std::uint64_t latest_changes_ = 0;
  ComPtr<IReportObserver> observer_;

  NoteQueue queue_;  // the last, as its thread uses what stands before; its own lock is never held with the other
};

}  // namespace orvo
