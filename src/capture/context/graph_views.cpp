#include "capture/context/graph_views.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "capture/classify/protocol_tree.h"
#include "platform/clock.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {
namespace {

constexpr std::size_t kMostProtocolSeries = 8;

double Quotient(double dividend, std::uint64_t divisor) {
  return divisor == 0 ? 0 : dividend / static_cast<double>(divisor);
}

/// Something counted, per second.
template <Measure measure, unsigned factor = 1>
double Rate(const MeasureSample& sample, std::uint32_t seconds) {
  return Quotient(static_cast<double>(sample[measure]) * factor, seconds);
}

/// Bytes of a transport as a part of all, in percent.
template <Measure measure>
double Share(const MeasureSample& sample, std::uint32_t) {
  return Quotient(static_cast<double>(sample[measure]) * 100, sample[kMeasureBytes]);
}
double OtherShare(const MeasureSample& sample, std::uint32_t) {
  const std::uint64_t other = sample[kMeasureBytes] - sample[kMeasureTcpBytes] - sample[kMeasureUdpBytes];
  return Quotient(static_cast<double>(other) * 100, sample[kMeasureBytes]);
}

double MeanSize(const MeasureSample& sample, std::uint32_t) {
  return Quotient(static_cast<double>(sample[kMeasureBytes]), sample[kMeasurePackets]);
}

struct SeriesRow {
  std::u16string_view name;
  double (*value)(const MeasureSample& sample, std::uint32_t seconds) = nullptr;
};

struct GraphRow {
  std::u16string_view name;
  std::u16string_view title;
  std::array<SeriesRow, 3> series{};  ///< up to the first without a name; none for the protocols' own
};

constexpr std::array kGraphs{
    GraphRow{u"Utilization", u"Utilization (Bits per Second)", {{{u"Bits per Second", Rate<kMeasureBytes, 8>}}}},
    GraphRow{u"Packets per Second", u"Packets per Second", {{{u"Packets per Second", Rate<kMeasurePackets>}}}},
    GraphRow{u"Packet Size", u"Mean Packet Size (Bytes)", {{{u"Mean Packet Size", MeanSize}}}},
    GraphRow{
        u"Transport Shares",
        u"Transport Shares (Percent of Bytes)",
        {{{u"TCP", Share<kMeasureTcpBytes>}, {u"UDP", Share<kMeasureUdpBytes>}, {u"Other", OtherShare}}},
    },
    GraphRow{
        u"Broadcast and Multicast",
        u"Broadcast and Multicast (Packets per Second)",
        {{{u"Broadcast", Rate<kMeasureBroadcasts>}, {u"Multicast", Rate<kMeasureMulticasts>}}},
    },
    GraphRow{
        u"Errors",
        u"Errors (Packets per Second)",
        {{{u"Malformed Packets", Rate<kMeasureMalformed>},
          {u"ICMP Errors", Rate<kMeasureIcmpErrors>},
          {u"Retransmissions", Rate<kMeasureRetransmissions>}}},
    },
    GraphRow{u"Top Protocols", u"Top Protocols (Bits per Second)", {}},
};

/// The protocols with the most bytes: a protocol that was met in several places of the tree is one series.
struct ProtocolSeries {
  std::string_view name;
  std::uint64_t bytes = 0;
  std::vector<std::size_t> rows;
};

std::vector<ProtocolSeries> TopProtocols(const FrozenTables& tables) {
  std::map<std::string_view, ProtocolSeries> by_name;
  const std::size_t rows = std::min(tables.graphs.protocols.size(), tables.protocols.size());
  for (std::size_t row = 0; row < rows; ++row) {
    const ProtocolEntry& entry = tables.protocols[row];
    std::string_view name = ProtocolTree::Get().name(ProtocolNumber(tables.addresses.records[entry.key]));
    ProtocolSeries& series = by_name[name];
    series.name = name;
    series.bytes += entry.bytes;
    series.rows.push_back(row);
  }
  std::vector<ProtocolSeries> top;
  top.reserve(by_name.size());
  for (auto& [name, series] : by_name) top.push_back(std::move(series));
  std::stable_sort(top.begin(), top.end(), [](const auto& a, const auto& b) { return a.bytes > b.bytes; });
  top.resize(std::min(top.size(), kMostProtocolSeries));
  return top;
}

class GraphView final : public Object<IGraph, IGraphSeries> {
 public:
  GraphView(EpochPtr epoch, std::uint32_t index)
      : epoch_(std::move(epoch)), graphs_(epoch_->tables->graphs), row_(kGraphs[index]) {
    if (!row_.series[0].value) protocols_ = TopProtocols(*epoch_->tables);
    while (named_ < row_.series.size() && row_.series[named_].value) ++named_;
  }

  Status GetName(std::u16string* name) override { return GiveText(row_.name, name); }
  Status GetTitle(std::u16string* title) override { return GiveText(row_.title, title); }
  Status GetInterval(std::uint32_t* seconds) override {
    if (!seconds) return E_POINTER;
    *seconds = graphs_.interval;
    return S_OK;
  }
  Status GetSampleCount(std::uint32_t* count) override {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(graphs_.measures.size());
    return S_OK;
  }
  Status GetSeries(IGraphSeries** series) override {
    if (!series) return E_POINTER;
    AddRef();
    *series = this;
    return S_OK;
  }

  Status GetCount(std::uint32_t* count) override {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(named_ + protocols_.size());
    return S_OK;
  }
  Status GetName(std::uint32_t series, std::u16string* name) override {
    if (!name) return E_POINTER;
    if (series >= named_ + protocols_.size()) return E_INVALIDARG;
    if (series < named_) return GiveText(row_.series[series].name, name);
    std::string_view text = protocols_[series - named_].name;
    return Guard([&] { name->assign(text.begin(), text.end()); });
  }
  Status GetSamples(std::uint32_t series, std::uint64_t start, std::uint32_t step, std::uint32_t* count, double* values,
                    std::uint64_t* times) override {
    if (!count) return E_POINTER;
    const std::uint32_t room = std::exchange(*count, 0);
    if (series >= named_ + protocols_.size()) return E_INVALIDARG;
    const std::uint64_t length = graphs_.interval * kNanosecondsPerSecond;
    const std::uint64_t since = start > graphs_.start ? start - graphs_.start : 0;
    const std::size_t group = std::max<std::uint32_t>(step, 1);
    std::size_t sample = since / length + (since % length != 0);
    for (; *count < room && sample < graphs_.measures.size(); sample += group, ++*count) {
      if (values) values[*count] = Mean(series, sample, std::min(group, graphs_.measures.size() - sample));
      if (times) times[*count] = graphs_.start + sample * length;
    }
    return S_OK;
  }

 private:
  static Status GiveText(std::u16string_view text, std::u16string* out) {
    if (!out) return E_POINTER;
    return Guard([&] { out->assign(text); });
  }

  double Mean(std::size_t series, std::size_t first, std::size_t count) const {
    double sum = 0;
    for (std::size_t i = first; i < first + count; ++i) sum += Value(series, i);
    return sum / static_cast<double>(count);
  }

  double Value(std::size_t series, std::size_t sample) const {
    if (series < named_) return row_.series[series].value(graphs_.measures[sample], graphs_.interval);
    std::uint64_t bytes = 0;
    for (std::size_t row : protocols_[series - named_].rows) {
      const FrozenTable<std::uint64_t>& samples = graphs_.protocols[row];
      if (sample < samples.size()) bytes += samples[sample];
    }
    return Quotient(static_cast<double>(bytes) * 8, graphs_.interval);
  }

  EpochPtr epoch_;
  const FrozenGraphs& graphs_;
  const GraphRow& row_;
  std::size_t named_ = 0;
  std::vector<ProtocolSeries> protocols_;
};

}  // namespace

std::uint32_t GraphCount() {
  return static_cast<std::uint32_t>(kGraphs.size());
}

ComPtr<IGraph> MakeGraph(const EpochPtr& epoch, std::uint32_t index) {
  return ComPtr<IGraph>(MakeObject<GraphView>(epoch, index).get());
}

}  // namespace orvo
