#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "capture/analysis/expert/expert_analysis.h"
#include "capture/classify/application_detector.h"
#include "capture/classify/protocol_tree.h"
#include "capture/context/capture_engine.h"
#include "capture/context/category_views.h"
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
  void Feed(const Packet& packet);
  void SetDropped(std::uint64_t packets);
  void Reset();
  void StoreSummary(std::u16string_view name);
  std::uint64_t packets() const { return packets_.load(std::memory_order_relaxed); }

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
  void Listen();

  const EngineOptions options_;
  const std::shared_ptr<NameDirectory> names_;
  PacketFacts facts_;             // the feeding thread's
  std::vector<KnownName> heard_;  // the feeding thread's, of the packet in work
  ApplicationDetector detector_;  // the feeding thread's
  ExpertAnalysis expert_;         // has a lock of its own
  std::atomic<std::uint64_t> packets_ = 0;

  mutable std::mutex mutex_;  // guards what follows; held for one packet, or while pages are shared
  StatisticsTables tables_;
  std::deque<std::shared_ptr<const SummaryRecord>> stored_;
  std::uint64_t changes_ = 0;
  std::weak_ptr<const Epoch> latest_;
  std::uint64_t latest_changes_ = 0;
  ComPtr<IReportObserver> observer_;
};

}  // namespace orvo
