#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capture/names/trust_file.h"
#include "capture/source/packet.h"
#include "engine/context.h"
#include "engine/graphs.h"

namespace orvo {

struct EngineOptions {
  /// A capture is running: contexts have a site, and a snapshot's moment is the present instead of the last packet's.
  bool live = false;
  /// Texts of addresses are always the addresses themselves: no name is learnt or looked up.
  bool plain_addresses = false;
  /// Where the registries of physical addresses lie (oui.csv, mam.csv, oui36.csv, iab.csv as the IEEE publishes them);
  /// empty for no vendors in texts. They are read when the first physical address is worded.
  std::string vendor_folder;
  /// Rows that the tables take, as a bound on memory (roughly 250 bytes an address and 100 a row of the other two).
  /// Packets beyond a limit still count everywhere else, and the summary says how many there were.
  std::size_t max_addresses = 2'000'000;
  std::size_t max_hierarchy_rows = 4'000'000;
  std::size_t max_conversations = 4'000'000;
  /// Whether flows are looked into for the application that they carry; else ports alone tell.
  bool detect_applications = true;
  /// Flows under way that are known at once, about 250 bytes each; the one that is idle for longest makes room.
  std::size_t max_flows = 1'000'000;
  /// Flows that are looked into at once, about 1 KB each; the one that was silent for longest is judged by its ports.
  std::size_t max_undecided_flows = 50'000;
  /// Calls (SIP) and streams of voice and video (RTP) that are listed, about 1 KB and 500 bytes each. The summary
  /// counts the messages and packets of others.
  std::size_t max_calls = 100'000;
  std::size_t max_media_streams = 100'000;
  /// Names that are kept: about 150 bytes for one of usual length, 600 for the longest. The summary counts the others.
  std::size_t max_names = 1'000'000;
  /// Whether flows and the network are watched for what is slow and what goes wrong. Without, the tables of that are
  /// empty.
  bool expert_analysis = true;
  /// Flows that are over and still listed, about 170 bytes each; the one that is over for longest makes room. Its
  /// figures stay in those of its application. Flows under way take about 280 bytes more than max_flows says.
  std::size_t max_expert_flows = 1'000'000;
  /// Events in the log, about 100 bytes each; the oldest makes room. All are counted.
  std::size_t max_expert_events = 100'000;
  /// Nanoseconds within which an answer satisfies (the target T of the Apdex Alliance, version 1.1).
  std::uint64_t apdex_target = 500'000'000;
  /// Nodes and network names of a wireless medium, about 300 bytes each, and its channels. Packets beyond count
  /// everywhere else, and the summary says how many there were.
  std::size_t max_wireless_nodes = 100'000;
  std::size_t max_wireless_channels = 1'000;
  /// What is said of physical addresses of a wireless medium; of several about one address the last counts.
  std::vector<TrustedAddress> trusted_addresses{};
  /// Summaries stored by name; storing one more drops the oldest.
  std::size_t max_stored_summaries = 100;
};

/// The bundled capture engine: packets in, statistics out.
///
/// One thread feeds; when it feeds many packets at once, a thread of the engine's helps to count them. Contexts and
/// everything that they hand out may be used from any thread, also after the engine is gone. Feeding never waits for a
/// reader longer than it takes to share a few pointers, and readers see everything that was fed before they asked. What
/// is not marked otherwise raises std::bad_alloc when memory runs out, feeding also for packets that were fed before; a
/// few dozen packets in work may then be counted in part.
class CaptureEngine {
 public:
  explicit CaptureEngine(const EngineOptions& options = {});
  CaptureEngine(const CaptureEngine&) = delete;
  CaptureEngine& operator=(const CaptureEngine&) = delete;
  /// Takes back the classes that are still registered.
  ~CaptureEngine();

  /// Counts one packet. Its bytes are not kept.
  void Feed(const Packet& packet) { Feed(std::span(&packet, 1)); }
  /// Counts packets in their order. Many at once, as PacketSource::NextBatch gives them, go several times faster.
  void Feed(std::span<const Packet> packets);
  /// How many packets the source has lost so far.
  void SetDropped(std::uint64_t packets);
  std::uint64_t packets() const;

  /// A context of its own for each caller: what one holds does not change when another begins a report. It answers
  /// IStatsContext, IStatsSnapshotSource and IObjectWithSite, and IReportObserver while an observer is set.
  ComPtr<IStatsContext> Context();
  /// The engine's own graphs over the time of the capture; samples end with the last packet. Whoever asks for their
  /// number gets graphs of the moment that a context began last (IsAvailable), so that graphs and tables of a report
  /// agree; what was handed out does not change.
  ComPtr<IGraphCollection> Graphs();

  /// The observer that contexts pass their reports' files on to; null for none. A reference is held.
  void SetObserver(IReportObserver* observer);

  /// Offers the name services and the snapshot class to this process, until RevokeClasses. Statuses are those of
  /// RegisterClassObject; after a failure none is registered.
  Status RegisterClasses();
  void RevokeClasses();

  /// Keeps the present summary under a name, which reports show beside the current one.
  void StoreSummary(std::u16string_view name);
  /// Gives an address a name to be shown in its place, before any that is heard in the capture. Control characters
  /// become question marks. False for an empty name, beyond max_names, and when texts are plain addresses.
  bool LearnName(const AddressRecord& address, std::u16string_view name);
  /// Does that for a file of the form of /etc/hosts: an address, its name, and further names, which are passed over.
  /// The first line about an address counts, and of several files the one read last. A path of the system; the status
  /// of opening and reading it, S_FALSE when it names nothing or texts are plain addresses.
  Status LearnHosts(const std::string& path);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace orvo
