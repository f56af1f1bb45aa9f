#include "capture/context/expert_view.h"

#include <array>
#include <utility>

#include "capture/context/expert_tables.h"
#include "capture/context/media_table.h"
#include "engine/tables.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {
namespace {

constexpr std::uint32_t kOnlyView = 1;

struct TableRow {
  std::uint32_t kind;
  ComPtr<ITable> (*make)(const Epoch& epoch);
};

/// The tables that the engine keeps.
constexpr std::array kTables{
    TableRow{kTableFlows, [](const Epoch& epoch) { return MakeFlowTable(epoch.expert); }},
    TableRow{kTableApplications, [](const Epoch& epoch) { return MakeApplicationTable(epoch.expert); }},
    TableRow{kTableEventCounts, [](const Epoch& epoch) { return MakeEventCountTable(epoch.expert); }},
    TableRow{kTableEventLog, [](const Epoch& epoch) { return MakeEventLogTable(epoch.expert); }},
    TableRow{kTableMedia, [](const Epoch& epoch) { return MakeMediaTable(epoch.voice); }},
};

class ExpertView final : public Object<IExpertStats, ITableProvider> {
 public:
  explicit ExpertView(EpochPtr epoch) : epoch_(std::move(epoch)) {}

  Status GetTable(std::uint32_t kind, std::uint32_t view, ITable** table) override {
    if (!table) return E_POINTER;
    *table = nullptr;
    if (view != kOnlyView) return E_INVALIDARG;
    for (const TableRow& row : kTables) {
      if (row.kind == kind) return Guard([&] { *table = row.make(*epoch_).Detach(); });
    }
    return E_INVALIDARG;
  }

 private:
  EpochPtr epoch_;
};

}  // namespace

ComPtr<IUnknown> MakeExpertStats(const EpochPtr& epoch) {
  return ComPtr<IUnknown>(static_cast<IExpertStats*>(MakeObject<ExpertView>(epoch).get()));
}

}  // namespace orvo
