#include "statistics/wireless_nodes.h"

#include <utility>

namespace orvo {
namespace {

constexpr std::uint32_t kStrong = 2;

}  // namespace

WirelessNodes::WirelessNodes(IWirelessNodeStats& statistics) : statistics_(statistics) {
  Check(statistics_.GetCount(&count_));
  Check(statistics_.GetExcluded(&no_network_, &no_name_));
}

Value WirelessNodes::AssociationStrength(std::uint32_t index, const WirelessNodeEntry& node) {
  if (node.type != kWirelessStation) return {};
  if (node.association_keys[0] == no_network_ && node.association_keys[1] == no_name_) return {};
  if (!associations_) ReadAssociations();
  auto found = associations_->find(index);
  if (found == associations_->end()) return {};
  return Value::Text(found->second == kStrong ? "Strong" : "Weak");
}

void WirelessNodes::ReadAssociations() {
  std::uint32_t count = 0;
  Check(statistics_.GetAssociationCount(&count));
  std::unordered_map<std::uint32_t, std::uint32_t> associations;
  for (std::uint32_t index = 0; index < count; ++index) {
    const WirelessAssociation* association = nullptr;
    Check(statistics_.GetAssociation(index, &association));
    associations.try_emplace(association->station, association->strength);
  }
  associations_ = std::move(associations);
}

}  // namespace orvo
