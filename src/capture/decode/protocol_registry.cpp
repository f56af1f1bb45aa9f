#include "capture/decode/protocol_registry.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace orvo {
namespace {

/// More headers, those outside the chain included, than any sender has a use for.
constexpr int kMaxHeaders = 32;

constinit const ProtocolRegistration* g_registrations = nullptr;

}  // namespace

ProtocolRegistration::ProtocolRegistration(std::span<const Protocol> registered)
    : protocols_(registered), next_(std::exchange(g_registrations, this)) {}

ProtocolRegistration::ProtocolRegistration(std::span<const Protocol> (*registered_later)())
    : later_(registered_later), next_(std::exchange(g_registrations, this)) {}

const ProtocolRegistry& ProtocolRegistry::Get() {
  static const ProtocolRegistry registry;
  return registry;
}

ProtocolRegistry::ProtocolRegistry() {
  static constexpr Protocol kNoProtocol{};
  protocols_.push_back(&kNoProtocol);
  for (const auto* entry = g_registrations; entry; entry = entry->next()) {
    for (const Protocol& protocol : entry->protocols()) protocols_.push_back(&protocol);
  }
  // Of protocols of one name the one with keys stands first.
  std::sort(protocols_.begin() + 1, protocols_.end(), [](const Protocol* a, const Protocol* b) {
    return a->name != b->name ? a->name < b->name : !a->keys.empty() && b->keys.empty();
  });
  auto same = [](const Protocol* a, const Protocol* b) { return a->name == b->name && b->keys.empty(); };
  protocols_.erase(std::unique(protocols_.begin() + 1, protocols_.end(), same), protocols_.end());
  for (std::size_t i = 1; i < protocols_.size(); ++i) {
    if (protocols_[i]->name == protocols_[i - 1]->name) {
      throw std::logic_error("two protocols are named " + std::string(protocols_[i]->name));
    }
    for (LayerKey key : protocols_[i]->keys) AddKey(key, static_cast<std::uint16_t>(i));
  }
}

std::uint16_t ProtocolRegistry::FindName(std::string_view name) const {
  auto found = std::lower_bound(protocols_.begin() + 1, protocols_.end(), name,
                                [](const Protocol* a, std::string_view wanted) { return a->name < wanted; });
  if (found == protocols_.end() || (*found)->name != name) return 0;
  return static_cast<std::uint16_t>(found - protocols_.begin());
}

void ProtocolRegistry::AddKey(LayerKey key, std::uint16_t identifier) {
  auto& keys = by_key_[static_cast<std::size_t>(key.layer)];
  if (keys.size() <= key.number) keys.resize(key.number + 1);
  if (keys[key.number] != 0) {
    throw std::logic_error("two protocols claim number " + std::to_string(key.number) + ": " +
                           std::string(protocols_[keys[key.number]]->name) + " and " +
                           std::string(protocols_[identifier]->name));
  }
  keys[key.number] = identifier;
}

void DecodePacket(const Packet& packet, PacketFacts* facts) {
  static const ProtocolRegistry& registry = ProtocolRegistry::Get();
  facts->Begin(packet.bytes.size(), packet.original_length);
  Payload next{{Layer::kLink, packet.link_type}, packet.bytes};
  int headers = 0;
  while (next.key.layer != Layer::kNone && facts->chain_length < PacketFacts::kMaxChain) {
    std::uint16_t identifier = registry.Find(next.key.layer, next.key.number);
    if (identifier == 0) return;
    if (++headers > kMaxHeaders) {
      facts->malformed = true;
      return;
    }
    const Protocol& protocol = registry.protocol(identifier);
    if (protocol.in_chain) facts->chain[facts->chain_length++] = identifier;
    if (!protocol.decode || !next.has_header) return;
    facts->innermost = next.bytes;
    next = protocol.decode(next.bytes, *facts);
  }
}

}  // namespace orvo
