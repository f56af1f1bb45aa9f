#include "capture/context/category_views.h"

#include <algorithm>
#include <array>
#include <utility>

#include "capture/context/expert_view.h"
#include "capture/context/traffic_views.h"
#include "capture/context/wireless_views.h"
#include "engine/categories.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {
namespace {

/// Stores a result in an out parameter of the caller's.
template <class T>
Status Give(T* out, const T& value) {
  if (!out) return E_POINTER;
  *out = value;
  return S_OK;
}

template <class T>
Status GiveCount(std::uint32_t* count, const FrozenTable<T>& table) {
  return Give(count, static_cast<std::uint32_t>(table.size()));
}

/// The entry at an index; null and the given status beyond the table.
template <class T>
Status GiveEntry(const FrozenTable<T>& table, std::uint64_t index, const T** entry, Status beyond) {
  if (!entry) return E_POINTER;
  *entry = index < table.size() ? &table[index] : nullptr;
  return *entry ? S_OK : beyond;
}

class AddressTableView final : public Object<IAddressTable> {
 public:
  explicit AddressTableView(EpochPtr epoch) : epoch_(std::move(epoch)), addresses_(epoch_->tables->addresses) {}

  Status GetCount(std::uint32_t* count) override { return GiveCount(count, addresses_.records); }
  Status GetRecord(std::uint32_t index, const AddressRecord** record) override {
    return GiveEntry(addresses_.records, index, record, S_FALSE);
  }
  Status FirstOfType(std::uint8_t type, std::uint32_t* index) override {
    return GiveIndex(type < kAddressTypes ? addresses_.first[type] : kNoAddress, index);
  }
  Status NextOfType(std::uint32_t index, std::uint32_t* next) override {
    return GiveIndex(index < addresses_.next.size() ? addresses_.next[index] : kNoAddress, next);
  }

 private:
  static Status GiveIndex(std::uint32_t value, std::uint32_t* out) {
    Status status = Give(out, value);
    return status == S_OK && value == kNoAddress ? S_FALSE : status;
  }

  EpochPtr epoch_;
  const FrozenAddresses& addresses_;
};

class NodeView final : public Object<INodeStats> {
 public:
  explicit NodeView(EpochPtr epoch) : epoch_(std::move(epoch)), tables_(*epoch_->tables) {}

  Status GetCount(std::uint32_t* count) override { return GiveCount(count, tables_.nodes); }
  Status GetEntry(std::uint32_t index, const NodeEntry** entry) override {
    return GiveEntry(tables_.nodes, index, entry, E_INVALIDARG);
  }
  Status FindByAddress(std::uint32_t address, const NodeEntry** entry) override {
    std::uint32_t row = address < tables_.node_rows.size() ? tables_.node_rows[address] : kNoRow;
    return GiveEntry(tables_.nodes, row, entry, S_FALSE);
  }

 private:
  EpochPtr epoch_;
  const FrozenTables& tables_;
};

class HierarchyView final : public Object<IHierarchyStats> {
 public:
  explicit HierarchyView(EpochPtr epoch) : epoch_(std::move(epoch)) {}

  Status GetCount(std::uint32_t* count) override { return GiveCount(count, epoch_->tables->hierarchy); }
  Status GetEntry(std::uint32_t index, const HierarchyEntry** entry) override {
    return GiveEntry(epoch_->tables->hierarchy, index, entry, E_INVALIDARG);
  }

 private:
  EpochPtr epoch_;
};

class ProtocolView final : public Object<IProtocolStats> {
 public:
  explicit ProtocolView(EpochPtr epoch) : epoch_(std::move(epoch)) {
    rows_.reserve(epoch_->protocols.size());
    for (std::uint32_t i = 0; i < epoch_->protocols.size(); ++i) rows_.emplace_back(epoch_->protocols[i].key, i);
    std::sort(rows_.begin(), rows_.end());
  }

  Status GetCount(std::uint32_t* count) override { return GiveCount(count, epoch_->protocols); }
  Status GetEntry(std::uint32_t index, const ProtocolEntry** entry) override {
    return GiveEntry(epoch_->protocols, index, entry, E_INVALIDARG);
  }
  Status FindByKey(std::uint32_t key, const ProtocolEntry** entry) override {
    auto found = std::lower_bound(rows_.begin(), rows_.end(), std::pair{key, std::uint32_t{0}});
    std::uint32_t row = found != rows_.end() && found->first == key ? found->second : kNoRow;
    return GiveEntry(epoch_->protocols, row, entry, S_FALSE);
  }

 private:
  EpochPtr epoch_;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> rows_;  // (key, row), by key
};

class ConversationView final : public Object<IConversationStats, IConversationIndex> {
 public:
  explicit ConversationView(EpochPtr epoch) : epoch_(std::move(epoch)), table_(epoch_->tables->conversations) {}

  Status GetCount(std::uint32_t* count) override { return GiveCount(count, table_.entries); }
  Status GetEntry(std::uint32_t index, const ConversationEntry** entry) override {
    return GiveEntry(table_.entries, index, entry, E_INVALIDARG);
  }
  Status FindByKey(std::uint64_t key, const ConversationEntry** entry) override {
    return GiveEntry(table_.entries, key - 1, entry, S_FALSE);
  }

  Status Resolve(std::uint64_t key, ConversationEndpoints* endpoints) override {
    if (!endpoints) return E_POINTER;
    if (key - 1 >= table_.endpoints.size()) return E_INVALIDARG;
    *endpoints = table_.endpoints[key - 1];
    return S_OK;
  }
  Status FirstOfType(std::uint8_t type, std::uint64_t* key) override {
    return GiveKey(type < kAddressTypes ? table_.first[type] : kNoRow, key);
  }
  Status NextOfType(std::uint64_t key, std::uint64_t* next) override {
    return GiveKey(key - 1 < table_.next.size() ? table_.next[key - 1] : kNoRow, next);
  }

 private:
  static Status GiveKey(std::uint32_t row, std::uint64_t* key) {
    Status status = Give(key, row == kNoRow ? 0 : std::uint64_t{row} + 1);
    return status == S_OK && row == kNoRow ? S_FALSE : status;
  }

  EpochPtr epoch_;
  const FrozenConversations& table_;
};

class SummarySnapshotView final : public Object<ISummarySnapshot> {
 public:
  SummarySnapshotView(std::shared_ptr<const SummaryCatalogue> catalogue, std::shared_ptr<const SummaryRecord> record)
      : catalogue_(std::move(catalogue)), record_(std::move(record)) {}

  Status GetSnapshotName(std::u16string* name) override {
    return Guard([&] { return Give(name, record_->name); });
  }
  Status GetCount(std::uint32_t* count) override {
    return Give(count, static_cast<std::uint32_t>(catalogue_->statistics.size()));
  }
  Status GetIdentifier(std::uint32_t index, Guid* identifier) override {
    bool known = index < catalogue_->statistics.size();
    Status status = Give(identifier, known ? catalogue_->statistics[index].identifier : Guid{});
    return status == S_OK && !known ? S_FALSE : status;
  }
  Status GetValue(const Guid& identifier, SummaryValue* value) override {
    auto found = catalogue_->statistic_positions.find(identifier);
    bool known = found != catalogue_->statistic_positions.end();
    Status status = Give(value, known ? record_->values[found->second] : SummaryValue{});
    return status == S_OK && !known ? S_FALSE : status;
  }
  Status GetName(const Guid& identifier, std::u16string* name) override {
    return Guard([&]() -> Status {
      if (auto found = catalogue_->statistic_positions.find(identifier);
          found != catalogue_->statistic_positions.end()) {
        return Give(name, catalogue_->statistics[found->second].name);
      }
      if (auto found = catalogue_->group_positions.find(identifier); found != catalogue_->group_positions.end()) {
        return Give(name, catalogue_->groups[found->second].name);
      }
      Status status = Give(name, std::u16string());
      return status == S_OK ? S_FALSE : status;
    });
  }
  Status GetParent(const Guid& identifier, Guid* group) override {
    auto found = catalogue_->statistic_positions.find(identifier);
    bool known = found != catalogue_->statistic_positions.end();
    Status status =
        Give(group, known ? catalogue_->groups[catalogue_->statistics[found->second].group].identifier : Guid{});
    return status == S_OK && !known ? S_FALSE : status;
  }

 private:
  std::shared_ptr<const SummaryCatalogue> catalogue_;
  std::shared_ptr<const SummaryRecord> record_;
};

class SummaryView final : public Object<ISummaryStats> {
 public:
  explicit SummaryView(EpochPtr epoch) : epoch_(std::move(epoch)) {}

  Status GetSnapshotCount(std::uint32_t* count) override {
    return Give(count, static_cast<std::uint32_t>(epoch_->summaries.size()));
  }
  Status GetSnapshot(std::uint32_t index, ISummarySnapshot** snapshot) override {
    if (!snapshot) return E_POINTER;
    *snapshot = nullptr;
    if (index >= epoch_->summaries.size()) return E_INVALIDARG;
    return Guard(
        [&] { *snapshot = MakeObject<SummarySnapshotView>(epoch_->catalogue, epoch_->summaries[index]).Detach(); });
  }

 private:
  EpochPtr epoch_;
};

template <class View>
Status Answer(const EpochPtr& epoch, const Guid& iid, void** out) {
  return MakeObject<View>(epoch)->QueryInterface(iid, out);
}

/// For makers that give null where the capture has nothing of the kind.
template <ComPtr<IUnknown> (*make)(const EpochPtr& epoch)>
Status AnswerMade(const EpochPtr& epoch, const Guid& iid, void** out) {
  const ComPtr<IUnknown> made = make(epoch);
  return made ? made->QueryInterface(iid, out) : E_NOINTERFACE;
}

struct CategoryRow {
  Guid identifier;
  bool in_snapshot;  ///< a loaded snapshot has it, too
  Status (*answer)(const EpochPtr& epoch, const Guid& iid, void** out);
};

constexpr std::array kCategories{
    CategoryRow{kSummaryCategory.identifier, true, Answer<SummaryView>},
    CategoryRow{kProtocolCategory.identifier, true, Answer<ProtocolView>},
    CategoryRow{kNodeCategory.identifier, false, Answer<NodeView>},
    CategoryRow{kTopTalkerCategory.identifier, false, Answer<NodeView>},
    CategoryRow{kHierarchyCategory.identifier, false, Answer<HierarchyView>},
    CategoryRow{kConversationCategory.identifier, false, Answer<ConversationView>},
    CategoryRow{kExpertCategory.identifier, false, AnswerMade<MakeExpertStats>},
    CategoryRow{kWirelessNodeCategory.identifier, true, AnswerMade<MakeWirelessNodeStats>},
    CategoryRow{kWirelessChannelCategory.identifier, true, AnswerMade<MakeWirelessChannelStats>},
    CategoryRow{kTrafficHistoryCategory.identifier, false, AnswerMade<MakeTrafficHistory>},
    CategoryRow{kSizeCategory.identifier, false, AnswerMade<MakeSizeStats>},
};

}  // namespace

Status MakeCategory(const EpochPtr& epoch, const Guid& category, const Guid& iid, void** out) {
  *out = nullptr;
  for (const CategoryRow& row : kCategories) {
    if (row.identifier != category) continue;
    return epoch->tables || row.in_snapshot ? row.answer(epoch, iid, out) : E_NOINTERFACE;
  }
  return E_NOINTERFACE;
}

ComPtr<IAddressTable> MakeAddressTable(const EpochPtr& epoch) {
  if (!epoch->tables) return nullptr;
  return ComPtr<IAddressTable>(MakeObject<AddressTableView>(epoch).get());
}

ComPtr<IConversationIndex> MakeConversationIndex(const EpochPtr& epoch) {
  if (!epoch->tables) return nullptr;
  return ComPtr<IConversationIndex>(MakeObject<ConversationView>(epoch).get());
}

}  // namespace orvo
