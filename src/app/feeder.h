#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "capture/context/capture_engine.h"
#include "capture/source/packet_source.h"

namespace orvo::app {

/// A thread that feeds the packets of a source to the engine until the source ends.
class Feeder {
 public:
  /// Reads from `source`, which `waiting` (it, or what lies below it) can be told to end. All outlive this object.
  /// `on_end` is called by the thread when nothing more comes.
  Feeder(PacketSource& source, WaitingSource& waiting, CaptureEngine& engine, std::function<void()> on_end);
  Feeder(const Feeder&) = delete;
  Feeder& operator=(const Feeder&) = delete;
  ~Feeder() { Stop(); }

  void Start();
  /// Ends the source and waits for the thread.
  void Stop();

  bool has_ended() const { return ended_; }
  std::uint64_t packets() const { return packets_; }
  std::uint64_t dropped() const { return dropped_; }
  /// Why it ended before the source; empty when it did not. To be asked once it has ended.
  const std::string& failure() const { return failure_; }

 private:
  void Run();
  void Feed();
  void LookAtDropped();

  PacketSource& source_;
  WaitingSource& waiting_;
  CaptureEngine& engine_;
  std::function<void()> on_end_;
  std::atomic<std::uint64_t> packets_ = 0;
  std::atomic<std::uint64_t> dropped_ = 0;
  std::atomic<bool> ended_ = false;
  std::string failure_;
  std::thread thread_;
};

}  // namespace orvo::app
