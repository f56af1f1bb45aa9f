#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/categories.h"
#include "engine/graphs.h"

namespace orvo::test {

/// One statistic of a scripted summary.
struct ScriptedStat {
  Guid identifier;
  Guid group;
  std::u16string name;
  SummaryValue value;
};

/// One conversation: its traffic, and the ends that the index resolves its key (its place in the list) to.
struct ScriptedConversation {
  ConversationEndpoints ends;
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
};

/// A protocol of the tree: its name, and the number of what it is part of (0 at the top).
struct ScriptedProtocol {
  std::u16string name;
  std::uint16_t parent = 0;
};

/// One graph: series of equally many samples, and the time of the first.
struct ScriptedGraph {
  std::u16string name;
  std::u16string title;
  std::uint32_t interval = 1;
  std::uint64_t start = 0;
  struct Series {
    std::u16string name;
    std::vector<double> samples;
  };
  std::vector<Series> series;
};

/// A wireless medium: nodes, what they are associated with, channels. Traffic by rate stands under the index of a node
/// and under the channel, frequency and band of a channel.
struct ScriptedWireless {
  std::vector<WirelessNodeEntry> nodes;
  std::pair<std::uint32_t, std::uint32_t> excluded{kNoAddress, kNoAddress};
  WirelessCounts counts;
  std::vector<WirelessAssociation> associations;
  std::map<std::uint32_t, std::vector<WirelessRate>> node_rates;
  std::vector<WirelessChannelEntry> channels;
  std::map<std::tuple<std::int32_t, std::uint32_t, std::uint32_t>, std::vector<WirelessRate>> channel_rates;
};

/// A column of an analysis table: its identifier and its title.
struct ScriptedColumn {
  std::u16string identifier;
  std::u16string title;
};

struct ScriptedTable {
  std::vector<ScriptedColumn> columns;
  std::vector<std::vector<std::u16string>> rows;
};

/// The expert and voice category: its tables by kind.
struct ScriptedExpert {
  bool offers_tables = true;
  std::map<std::uint32_t, ScriptedTable> tables;
};

/// What a scripted engine answers, as plain data. Node, hierarchy and protocol entries refer to addresses by index.
struct Script {
  std::vector<AddressRecord> addresses;
  std::vector<NodeEntry> nodes;
  std::vector<HierarchyEntry> hierarchy;
  std::vector<ProtocolEntry> protocols;
  std::vector<ScriptedConversation> conversations;
  std::vector<ScriptedStat> summary;
  std::map<Guid, std::u16string> group_names;
  std::vector<double> history;  ///< bytes per second
  std::uint32_t history_interval = 1;
  std::uint64_t history_start = 0;
  std::uint32_t size_scheme = kSizesEthernet;
  std::vector<std::uint64_t> size_buckets;
  std::vector<ScriptedGraph> graphs;
  /// Categories that are not there unless they are scripted.
  std::optional<ScriptedWireless> wireless;
  std::optional<ScriptedExpert> expert;
  std::uint32_t medium_type = kMediumEthernet;
  std::uint32_t medium_subtype = kSubtypeWired;
  std::uint64_t start_time = 0;
  std::uint64_t duration = 0;
  std::uint64_t total_packets = 0;
  std::uint64_t total_bytes = 0;
  /// Categories that are answered with a failure.
  std::vector<Guid> missing;

  /// Adds an address and gives its index.
  std::uint32_t Add(const AddressRecord& record);
  std::uint32_t AddIp(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d);
  std::uint32_t AddPhysical(std::uint64_t number);
  std::uint32_t AddProtocol(std::uint16_t number);
};

/// A capture engine that answers the contract from a script, fails where it is told to, and remembers what it heard.
/// While it lives, its classes (snapshot, name services) are the process's; there is one at a time. It must outlive all
/// objects that it handed out.
class ScriptedEngine {
 public:
  ScriptedEngine();
  ~ScriptedEngine();
  ScriptedEngine(const ScriptedEngine&) = delete;
  ScriptedEngine& operator=(const ScriptedEngine&) = delete;

  Script live;
  /// What snapshots hold; the live script when absent.
  std::optional<Script> at_snapshot;
  Status availability = S_OK;
  std::uint64_t snapshot_time = 0;
  /// Replaces the text of an address.
  std::map<std::u16string, std::u16string> names;
  std::map<std::uint16_t, ScriptedProtocol> protocol_tree;
  bool offers_snapshots = true;
  /// The script changes no more: a context makes its tables once instead of anew for every report.
  bool fixed = false;

  ComPtr<IStatsContext> Context();
  /// The graphs of the live script as it is now.
  ComPtr<IGraphCollection> Graphs();

  /// Lets the n-th call (from 1) of an operation ("INodeStats::FindByAddress") fail with a status.
  void Fail(std::string_view operation, int nth, Status status);

  struct FileReport {
    std::u16string path;
    std::uint64_t rows;
    Status status;
  };

  /// What the observer heard, and the snapshot marks that were handed in.
  std::vector<FileReport> files;
  std::vector<std::uint64_t> marks;
  int availability_queries = 0;

  /// The status of an operation now called: the scripted failure, else S_OK.
  Status Answer(std::string_view operation) {
    if (failing_.empty() || operation != failing_) return S_OK;
    return --calls_left_ == 0 ? failure_ : S_OK;
  }
  /// The same, with a value when it is S_OK.
  template <class Value, class T>
  Status Give(std::string_view operation, const Value& value, T* out) {
    Status answer = Answer(operation);
    if (answer == S_OK) *out = static_cast<T>(value);
    return answer;
  }

 private:
  std::string failing_;
  int calls_left_ = 0;
  Status failure_ = S_OK;
  std::vector<std::uint32_t> cookies_;
};

}  // namespace orvo::test
