#include "capture/classify/protocol_tree.h"

#include <array>

#include "capture/classify/port_application.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr int kMaxRepeats = 2;

/// What a frame counts as whose link type no decoder knows.
constexpr std::array kUnknownKeys{LayerKey{Layer::kNone, 0}};
constexpr std::array kUnknown{Protocol{"Unknown", kUnknownKeys}};
const ProtocolRegistration kRegistration(kUnknown);

}  // namespace

ProtocolTree& ProtocolTree::Get() {
  static ProtocolTree tree;
  return tree;
}

ProtocolTree::ProtocolTree() : places_(new Place[kMaxPlaces]), slots_(new Slot[kSlots]()) {}

std::uint16_t ProtocolTree::Classify(const PacketFacts& facts) {
  static const ProtocolRegistry& registry = ProtocolRegistry::Get();
  if (facts.chain_length == 0) return Child(0, registry.Find(Layer::kNone, 0));
  std::uint16_t place = 0;
  for (std::size_t i = 0; i < facts.chain_length; ++i) {
    std::uint16_t child = Child(place, facts.chain[i]);
    if (child == 0) return place;
    place = child;
  }
  std::array<std::uint16_t, 2> applications = facts.applications;
  if (applications[0] == 0) applications[0] = PortApplication(facts);
  for (std::uint16_t application : applications) {
    std::uint16_t child = application != 0 ? Child(place, application) : std::uint16_t{0};
    if (child == 0) return place;
    place = child;
  }
  return place;
}

std::uint16_t ProtocolTree::Child(std::uint16_t parent, std::uint16_t protocol) {
  std::uint16_t place = FindSlot(parent, protocol).load(std::memory_order_acquire);
  return place != 0 || !MayFollow(parent, protocol) ? place : AddChild(parent, protocol);
}

std::uint16_t ProtocolTree::AddChild(std::uint16_t parent, std::uint16_t protocol) {
  std::lock_guard lock(adding_);
  Slot& slot = FindSlot(parent, protocol);
  std::uint16_t place = slot.load(std::memory_order_relaxed);
  std::size_t number = count_.load(std::memory_order_relaxed);
  if (place != 0 || number == kMaxPlaces) return place;
  place = static_cast<std::uint16_t>(number);
  places_[place] = {parent, protocol};
  count_.store(number + 1, std::memory_order_release);
  slot.store(place, std::memory_order_release);
  return place;
}

ProtocolTree::Slot& ProtocolTree::FindSlot(std::uint16_t parent, std::uint16_t protocol) {
  std::uint32_t key = (std::uint32_t{parent} << 16) | protocol;
  std::size_t at = (key * 0x9E3779B1U) >> 8;
  for (;; ++at) {
    Slot& slot = slots_[at % kSlots];
    std::uint16_t place = slot.load(std::memory_order_acquire);
    if (place == 0 || (places_[place].parent == parent && places_[place].protocol == protocol)) return slot;
  }
}

bool ProtocolTree::MayFollow(std::uint16_t parent, std::uint16_t protocol) const {
  int repeats = 0;
  for (; parent != 0; parent = places_[parent].parent) repeats += places_[parent].protocol == protocol;
  return repeats < kMaxRepeats;
}

std::string_view ProtocolTree::name(std::uint16_t number) const {
  return Contains(number) ? ProtocolRegistry::Get().protocol(places_[number].protocol).name : std::string_view();
}

}  // namespace orvo
