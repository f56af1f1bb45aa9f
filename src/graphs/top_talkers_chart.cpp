#include <set>
#include <string>
#include <utility>

#include "engine/categories.h"
#include "graphs/chart_builder.h"
#include "graphs/report_util.h"
#include "platform/error.h"
#include "statistics/medium.h"
#include "util/string_table.h"

namespace orvo {
namespace {

constexpr std::size_t kNamedTalkers = 9;

/// The nodes of one kind of address with the most bytes, and how many bytes all others have together.
class TalkerRanking {
 public:
  void Add(std::uint64_t traffic, std::uint32_t entry) {
    top_.emplace(traffic, entry);
    found_ = true;
    if (top_.size() <= kNamedTalkers) return;
    others_ += top_.begin()->first;
    top_.erase(top_.begin());
  }

  bool found() const { return found_; }
  /// By bytes and, where these are equal, by entry number.
  const std::set<std::pair<std::uint64_t, std::uint32_t>>& top() const { return top_; }
  std::uint64_t others() const { return others_; }

 private:
  std::set<std::pair<std::uint64_t, std::uint32_t>> top_;
  std::uint64_t others_ = 0;
  bool found_ = false;
};

/// The nodes of a capture, with their addresses.
struct TalkerTable {
  ComPtr<INodeStats> nodes;
  ComPtr<IAddressTable> addresses;

  explicit TalkerTable(IStatsContext* context) {
    Check(GetCategory(context, kTopTalkerCategory, &nodes));
    if (!nodes) Raise(E_FAIL);
    Check(context->GetAddressTable(addresses.Out()));
    if (!addresses) Raise(E_FAIL);
  }

  const NodeEntry* Entry(std::uint32_t number) const {
    const NodeEntry* entry = nullptr;
    Check(nodes->GetEntry(number, &entry));
    return entry;
  }
  /// Null for a node whose address the table lacks.
  const AddressRecord* Address(const NodeEntry& entry) const {
    const AddressRecord* record = nullptr;
    Check(addresses->GetRecord(entry.address, &record));
    return record;
  }

  /// Of a node that had one before, and may have lost it in a live capture.
  const AddressRecord& AddressOf(std::uint32_t number) const {
    const NodeEntry* entry = Entry(number);
    const AddressRecord* record = entry ? Address(*entry) : nullptr;
    if (!record) Raise(E_FAIL);
    return *record;
  }

  TalkerRanking Rank(std::uint8_t address_type) const {
    std::uint32_t count = 0;
    Check(nodes->GetCount(&count));
    TalkerRanking ranking;
    for (std::uint32_t number = 0; number < count; ++number) {
      const NodeEntry* entry = Entry(number);
      if (!entry || entry->activity() == 0) continue;
      const AddressRecord* address = Address(*entry);
      if (address && address->type == address_type) ranking.Add(entry->traffic(), number);
    }
    return ranking;
  }
};

}  // namespace

Status ReportUtil::TopTalkersChart(IStatsContext* context, const char16_t* file, std::int32_t width,
                                   std::int32_t height) {
  if (!context) return E_POINTER;
  return Guard([&] {
    const TalkerTable table(context);
    std::uint32_t medium_type = 0;
    std::uint32_t medium_subtype = 0;
    Check(context->GetMediumType(&medium_type));
    Check(context->GetMediumSubtype(&medium_subtype));

    ChartBuilder chart(kChartSharePie);
    chart.data.SetPointCount(1);
    chart.tool.SetTitle(TextOf(kStrTopTalkersByIpAddress));
    chart.tool.SetShowLegend(true);
    chart.tool.ComputeRange();
    std::uint32_t series = 0;
    auto add = [&](std::u16string_view name, std::uint64_t traffic) {
      chart.data.EnsureSeries(series, name);
      chart.data.SetValue(series++, 0, static_cast<double>(traffic));
    };

    TalkerRanking ranking = table.Rank(kAddressIp);
    if (!ranking.found()) ranking = table.Rank(PhysicalTypeOf(medium_type, medium_subtype));
    std::u16string name;
    for (auto talker = ranking.top().rbegin(); talker != ranking.top().rend(); ++talker) {
      FormatAddress(table.AddressOf(talker->second), true, &name);
      add(name, talker->first);
    }
    if (ranking.others() != 0) add(TextOf(kStrOthers), ranking.others());
    return chart.Render(file, width, height);
  });
}

}  // namespace orvo
