#include "platform/object.h"
#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

template <class Interface>
class WirelessObject : public Object<Interface> {
 public:
  WirelessObject(ScriptedEngine* engine, SharedScript script) : engine_(engine), script_(std::move(script)) {}

 protected:
  const ScriptedWireless& wireless() const { return *script_->wireless; }

  /// Answers an operation: its scripted failure, else a value.
  template <class T>
  Status Give(std::string_view operation, const T& value, T* out) const {
    Status answer = engine_->Answer(operation);
    if (answer == S_OK) *out = value;
    return answer;
  }

  template <class Record>
  Status GiveEntry(std::string_view operation, const std::vector<Record>& records, std::uint32_t index,
                   const Record** entry) const {
    if (Status answer = engine_->Answer(operation); answer != S_OK) return answer;
    if (index >= records.size()) return E_INVALIDARG;
    *entry = &records[index];
    return S_OK;
  }

  template <class Map>
  Status GiveRates(std::string_view operation, const Map& rates_of, const typename Map::key_type& key,
                   const WirelessRate** rates, std::uint32_t* count) const {
    if (Status answer = engine_->Answer(operation); answer != S_OK) return answer;
    auto found = rates_of.find(key);
    *rates = found == rates_of.end() ? nullptr : found->second.data();
    *count = found == rates_of.end() ? 0 : static_cast<std::uint32_t>(found->second.size());
    return S_OK;
  }

 private:
  ScriptedEngine* engine_;
  SharedScript script_;
};

class WirelessNodeStats final : public WirelessObject<IWirelessNodeStats> {
 public:
  using WirelessObject::WirelessObject;

  Status GetCount(std::uint32_t* count) override {
    return Give("IWirelessNodeStats::GetCount", static_cast<std::uint32_t>(wireless().nodes.size()), count);
  }
  Status GetEntry(std::uint32_t index, const WirelessNodeEntry** entry) override {
    return GiveEntry("IWirelessNodeStats::GetEntry", wireless().nodes, index, entry);
  }
  Status GetExcluded(std::uint32_t* first, std::uint32_t* second) override {
    *second = wireless().excluded.second;
    return Give("IWirelessNodeStats::GetExcluded", wireless().excluded.first, first);
  }
  Status GetCounts(WirelessCounts* counts) override {
    return Give("IWirelessNodeStats::GetCounts", wireless().counts, counts);
  }
  Status GetAssociationCount(std::uint32_t* count) override {
    return Give("IWirelessNodeStats::GetAssociationCount", static_cast<std::uint32_t>(wireless().associations.size()),
                count);
  }
  Status GetAssociation(std::uint32_t index, const WirelessAssociation** association) override {
    return GiveEntry("IWirelessNodeStats::GetAssociation", wireless().associations, index, association);
  }
  Status GetRates(std::uint32_t index, const WirelessRate** rates, std::uint32_t* count) override {
    return GiveRates("IWirelessNodeStats::GetRates", wireless().node_rates, index, rates, count);
  }
};

class WirelessChannelStats final : public WirelessObject<IWirelessChannelStats> {
 public:
  using WirelessObject::WirelessObject;

  Status GetCount(std::uint32_t* count) override {
    return Give("IWirelessChannelStats::GetCount", static_cast<std::uint32_t>(wireless().channels.size()), count);
  }
  Status GetEntry(std::uint32_t index, const WirelessChannelEntry** entry) override {
    return GiveEntry("IWirelessChannelStats::GetEntry", wireless().channels, index, entry);
  }
  Status GetRates(std::int32_t channel, std::uint32_t frequency, std::uint32_t band, const WirelessRate** rates,
                  std::uint32_t* count) override {
    return GiveRates("IWirelessChannelStats::GetRates", wireless().channel_rates, {channel, frequency, band}, rates,
                     count);
  }
};

template <class T>
Status Make(ScriptedEngine* engine, const SharedScript& script, void** out) {
  if (!script->wireless) return E_NOINTERFACE;
  *out = MakeObject<T>(engine, script).Detach();
  return S_OK;
}

}  // namespace

Status MakeWirelessNodes(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return Make<WirelessNodeStats>(engine, script, out);
}

Status MakeWirelessChannels(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return Make<WirelessChannelStats>(engine, script, out);
}

}  // namespace orvo::test
