#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

#include "capture/classify/application_detector.h"
#include "capture/classify/protocol_tree.h"
#include "capture/context/capture_engine.h"
#include "capture/context/category_views.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {

/// What an engine and its contexts share, and what lives on while any of them does.
class EngineCore {
 public:
  explicit EngineCore(const EngineOptions& options);

  /// Called by the feeding thread alone.
  void Feed(const Packet& packet);
  void SetDropped(std::uint64_t packets);
  void Reset();
  void StoreSummary(std::u16string_view name);
  std::uint64_t packets() const { return packets_.load(std::memory_order_relaxed); }

  /// The statistics as of now; the same object again while nothing has changed and somebody still holds it.
  EpochPtr Freeze();

  void SetObserver(IReportObserver* observer);
  ComPtr<IReportObserver> observer() const;

  const EngineOptions& options() const { return options_; }

 private:
  const EngineOptions options_;
  // The feeding thread's.
  PacketFacts facts_;
  ApplicationDetector detector_;
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
