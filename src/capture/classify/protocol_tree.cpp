#include "capture/classify/protocol_tree.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr int kMaxRepeats = 2;

/// What a frame counts as whose link type no decoder knows.
constexpr std::array kUnknown{Protocol{"Unknown", {}, {}, nullptr}};
const ProtocolRegistration kRegistration(kUnknown);

/// For every protocol, the protocols that its header can announce, in the order of their identifiers.
std::vector<std::vector<std::uint16_t>> Announced(const ProtocolRegistry& registry) {
  std::array<std::vector<std::uint16_t>, kLayerCount> by_layer;
  for (std::size_t i = 1; i < registry.count(); ++i) {
    auto identifier = static_cast<std::uint16_t>(i);
    for (LayerKey key : registry.protocol(identifier).keys) {
      auto& layer = by_layer[static_cast<std::size_t>(key.layer)];
      if (layer.empty() || layer.back() != identifier) layer.push_back(identifier);
    }
  }
  std::vector<std::vector<std::uint16_t>> announced(registry.count());
  announced[0] = by_layer[static_cast<std::size_t>(Layer::kLink)];
  for (std::size_t i = 1; i < registry.count(); ++i) {
    auto& list = announced[i];
    for (Layer layer : registry.protocol(static_cast<std::uint16_t>(i)).carries) {
      const auto& added = by_layer[static_cast<std::size_t>(layer)];
      list.insert(list.end(), added.begin(), added.end());
    }
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
  }
  return announced;
}

}  // namespace

const ProtocolTree& ProtocolTree::Get() {
  static const ProtocolTree tree;
  return tree;
}

ProtocolTree::ProtocolTree() : places_(1) {
  const ProtocolRegistry& registry = ProtocolRegistry::Get();
  const auto announced = Announced(registry);
  slots_.resize(1024);
  // Breadth first: the places near the top, which people meet most, have the small numbers.
  for (std::size_t at = 0; at < places_.size(); ++at) {
    auto parent_number = static_cast<std::uint16_t>(at);
    for (std::uint16_t protocol : announced[places_[at].protocol]) {
      int repeats = 0;
      for (std::uint16_t up = parent_number; up != 0; up = places_[up].parent)
        repeats += places_[up].protocol == protocol;
      if (repeats < kMaxRepeats) AddChild(parent_number, protocol);
    }
  }
  for (std::size_t i = 1; i < registry.count(); ++i) {
    if (registry.protocol(static_cast<std::uint16_t>(i)).name != kUnknown[0].name) continue;
    unknown_ = static_cast<std::uint16_t>(places_.size());
    AddChild(0, static_cast<std::uint16_t>(i));
  }
}

void ProtocolTree::AddChild(std::uint16_t parent_number, std::uint16_t protocol) {
  if (places_.size() > std::numeric_limits<std::uint16_t>::max()) throw std::logic_error("too many protocol places");
  if (places_.size() * 2 > slots_.size()) Grow();
  std::uint32_t key = (std::uint32_t{parent_number} << 16) | protocol;
  std::size_t slot = SlotOf(key) & (slots_.size() - 1);
  while (slots_[slot].place != 0) slot = (slot + 1) & (slots_.size() - 1);
  slots_[slot] = {key, static_cast<std::uint16_t>(places_.size())};
  places_.push_back({parent_number, protocol});
}

void ProtocolTree::Grow() {
  std::vector<Slot> old(slots_.size() * 2);
  old.swap(slots_);
  for (const Slot& entry : old) {
    if (entry.place == 0) continue;
    std::size_t slot = SlotOf(entry.key) & (slots_.size() - 1);
    while (slots_[slot].place != 0) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = entry;
  }
}

std::uint16_t ProtocolTree::Child(std::uint16_t parent_number, std::uint16_t protocol) const {
  std::uint32_t key = (std::uint32_t{parent_number} << 16) | protocol;
  std::size_t slot = SlotOf(key) & (slots_.size() - 1);
  while (slots_[slot].place != 0) {
    if (slots_[slot].key == key) return slots_[slot].place;
    slot = (slot + 1) & (slots_.size() - 1);
  }
  return 0;
}

std::uint16_t ProtocolTree::Classify(const PacketFacts& facts) const {
  std::uint16_t place = 0;
  for (std::size_t i = 0; i < facts.chain_length; ++i) {
    std::uint16_t child = Child(place, facts.chain[i]);
    if (child == 0) break;
    place = child;
  }
  if (place == 0) return unknown_;
  if (!facts.has_ports) return place;

  // The server's port is the one that is well known; of two, the lower.
  static const ProtocolRegistry& registry = ProtocolRegistry::Get();
  Layer layer = facts.is_tcp ? Layer::kTcpPort : Layer::kUdpPort;
  auto [low, high] = std::minmax(facts.source_port, facts.destination_port);
  for (std::uint16_t port : {low, high}) {
    std::uint16_t application = registry.Find(layer, port);
    if (application == 0) continue;
    std::uint16_t child = Child(place, application);
    return child != 0 ? child : place;
  }
  return place;
}

std::string_view ProtocolTree::name(std::uint16_t number) const {
  return number < places_.size() ? ProtocolRegistry::Get().protocol(places_[number].protocol).name : std::string_view();
}

}  // namespace orvo
