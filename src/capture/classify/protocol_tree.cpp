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

/// FNV-1a, the same on every machine.
std::uint32_t HashOf(std::string_view name) {
  std::uint32_t hash = 0x811C9DC5;
  for (char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193;
  return hash;
}

}  // namespace

ProtocolTree& ProtocolTree::Get() {
  static ProtocolTree tree;
  return tree;
}

ProtocolTree::ProtocolTree() : places_(new std::atomic<Place>[kNumbers]()) {
  const ProtocolRegistry& registry = ProtocolRegistry::Get();
  for (std::size_t i = 0; i < registry.count(); ++i) {
    name_hashes_.push_back(HashOf(registry.protocol(static_cast<std::uint16_t>(i)).name));
  }
}

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
  Place place{parent, protocol};
  std::uint16_t number = Number(place);
  if (Contains(number)) return number;
  return MayFollow(place) ? AddChild(place) : std::uint16_t{0};
}

std::uint16_t ProtocolTree::AddChild(Place place) {
  std::lock_guard lock(adding_);
  std::uint16_t number = Number(place);
  if (Contains(number)) return number;
  if (count_ == kMaxPlaces) return 0;
  ++count_;
  places_[number].store(place, std::memory_order_release);
  return number;
}

std::uint16_t ProtocolTree::Number(Place place) const {
  std::uint32_t mixed = (name_hashes_[place.protocol] ^ (place.parent * 0x9E3779B1U)) * 0x85EBCA6BU;
  for (std::size_t at = mixed >> 16;; at = (at + 1) % kNumbers) {
    auto number = static_cast<std::uint16_t>(at);
    if (number == 0) continue;
    Place there = At(number);
    if (there == place || there.protocol == 0) return number;
  }
}

bool ProtocolTree::MayFollow(Place place) const {
  int repeats = 0;
  for (std::uint16_t up = place.parent; up != 0; up = parent(up)) repeats += At(up).protocol == place.protocol;
  return repeats < kMaxRepeats;
}

std::string_view ProtocolTree::name(std::uint16_t number) const {
  return ProtocolRegistry::Get().protocol(At(number).protocol).name;
}

}  // namespace orvo
