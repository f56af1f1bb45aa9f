#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

template <class Interface>
class WirelessObject : public ScriptedObject<Interface> {
 public:
  using ScriptedObject<Interface>::ScriptedObject;

 protected:
  const ScriptedWireless& wireless() const { return *this->script_->wireless; }

  template <class Map>
  Status GiveRates(std::string_view operation, const Map& rates_of, const typename Map::key_type& key,
                   const WirelessRate** rates, std::uint32_t* count) const {
    static const std::vector<WirelessRate> none;
    auto found = rates_of.find(key);
    return this->GiveAll(operation, found == rates_of.end() ? none : found->second, rates, count);
  }
};

class WirelessNodeStats final : public WirelessObject<IWirelessNodeStats> {
 public:
  using WirelessObject::WirelessObject;

  Status GetCount(std::uint32_t* count) override {
    return Give("IWirelessNodeStats::GetCount", wireless().nodes.size(), count);
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
    return Give("IWirelessNodeStats::GetAssociationCount", wireless().associations.size(), count);
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
    return Give("IWirelessChannelStats::GetCount", wireless().channels.size(), count);
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
  return MakeScripted<T>(engine, script, out);
}

}  // namespace

Status MakeWirelessNodes(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return Make<WirelessNodeStats>(engine, script, out);
}

Status MakeWirelessChannels(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return Make<WirelessChannelStats>(engine, script, out);
}

}  // namespace orvo::test
