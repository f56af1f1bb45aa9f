// The tables that every script has: addresses, nodes, protocols, conversations and the summary.

#include <algorithm>

#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

class Addresses final : public ScriptedObject<IAddressTable> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetCount(std::uint32_t* count) override {
    return Give("IAddressTable::GetCount", script_->addresses.size(), count);
  }
  Status GetRecord(std::uint32_t index, const AddressRecord** record) override {
    const AddressRecord* found = index < script_->addresses.size() ? &script_->addresses[index] : nullptr;
    return GiveFound("IAddressTable::GetRecord", found, record);
  }
  Status FirstOfType(std::uint8_t type, std::uint32_t* index) override {
    auto found = script_->first_of_type.find(type);
    *index = found == script_->first_of_type.end() ? kNoAddress : found->second;
    return *index == kNoAddress ? S_FALSE : S_OK;
  }
  Status NextOfType(std::uint32_t index, std::uint32_t* next) override {
    *next = script_->next_of_type[index];
    return *next == kNoAddress ? S_FALSE : S_OK;
  }
};

/// What tables that are lists of the script answer alike.
template <class Interface, class Record, std::vector<Record> Script::*records>
class TableOf : public ScriptedObject<Interface> {
 public:
  using ScriptedObject<Interface>::ScriptedObject;
  Status GetCount(std::uint32_t* count) override { return this->Give({}, Records().size(), count); }
  Status GetEntry(std::uint32_t index, const Record** entry) override {
    return this->GiveEntry({}, Records(), index, entry);
  }

 protected:
  const std::vector<Record>& Records() const { return (*this->script_).*records; }
};

class Nodes final : public TableOf<INodeStats, NodeEntry, &Script::nodes> {
 public:
  using TableOf::TableOf;
  Status FindByAddress(std::uint32_t address, const NodeEntry** entry) override {
    const auto& nodes = script_->node_of_address;
    return GiveFound("INodeStats::FindByAddress", address < nodes.size() ? nodes[address] : nullptr, entry);
  }
};

using Hierarchy = TableOf<IHierarchyStats, HierarchyEntry, &Script::hierarchy>;

class Protocols final : public TableOf<IProtocolStats, ProtocolEntry, &Script::protocols> {
 public:
  using TableOf::TableOf;
  Status FindByKey(std::uint32_t key, const ProtocolEntry** entry) override {
    auto found = std::ranges::find(Records(), key, &ProtocolEntry::key);
    return GiveFound("IProtocolStats::FindByKey", found == Records().end() ? nullptr : &*found, entry);
  }
};

class Conversations final : public ScriptedObject<IConversationStats> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetCount(std::uint32_t* count) override {
    return Give("IConversationStats::GetCount", Entries().size(), count);
  }
  Status GetEntry(std::uint32_t index, const ConversationEntry** entry) override {
    return GiveEntry("IConversationStats::GetEntry", Entries(), index, entry);
  }
  Status FindByKey(std::uint64_t key, const ConversationEntry** entry) override {
    return GiveFound("IConversationStats::FindByKey", key < Entries().size() ? &Entries()[key] : nullptr, entry);
  }

 private:
  const std::vector<ConversationEntry>& Entries() const { return script_->conversation_entries; }
};

class ConversationIndex final : public ScriptedObject<IConversationIndex> {
 public:
  using ScriptedObject::ScriptedObject;
  Status Resolve(std::uint64_t key, ConversationEndpoints* endpoints) override {
    const ScriptedConversation* conversation = nullptr;
    const Status status = GiveEntry("IConversationIndex::Resolve", script_->conversations, key, &conversation);
    if (status == S_OK) *endpoints = conversation->ends;
    return status;
  }
  Status FirstOfType(std::uint8_t type, std::uint64_t* key) override { return FromOn(0, type, key); }
  Status NextOfType(std::uint64_t key, std::uint64_t* next) override { return FromOn(key + 1, TypeOf(key), next); }

 private:
  std::uint8_t TypeOf(std::uint64_t key) const {
    return script_->addresses[script_->conversations[key].ends.source].type;
  }
  Status FromOn(std::uint64_t key, std::uint8_t type, std::uint64_t* found) const {
    for (; key < script_->conversations.size(); ++key) {
      *found = key;
      if (TypeOf(key) == type) return S_OK;
    }
    return S_FALSE;
  }
};

class SummarySnapshot final : public ScriptedObject<ISummarySnapshot> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetSnapshotName(std::u16string* name) override {
    return Give("ISummarySnapshot::GetSnapshotName", u"Current", name);
  }
  Status GetCount(std::uint32_t* count) override {
    return Give("ISummarySnapshot::GetCount", script_->summary.size(), count);
  }
  Status GetIdentifier(std::uint32_t index, Guid* identifier) override {
    const ScriptedStat* stat = nullptr;
    const Status status = GiveEntry("ISummarySnapshot::GetIdentifier", script_->summary, index, &stat);
    if (status == S_OK) *identifier = stat->identifier;
    return status;
  }
  Status GetValue(const Guid& identifier, SummaryValue* value) override {
    const ScriptedStat* stat = Find(identifier);
    const Status status = Give("ISummarySnapshot::GetValue", stat ? stat->value : SummaryValue(), value);
    return status == S_OK && !stat ? S_FALSE : status;
  }
  Status GetName(const Guid& identifier, std::u16string* name) override {
    if (Status answer = engine_->Answer("ISummarySnapshot::GetName"); answer != S_OK) return answer;
    name->clear();
    if (const ScriptedStat* stat = Find(identifier)) *name = stat->name;
    auto group = script_->group_names.find(identifier);
    if (group != script_->group_names.end()) *name = group->second;
    return name->empty() ? S_FALSE : S_OK;
  }
  Status GetParent(const Guid& identifier, Guid* group) override {
    const ScriptedStat* stat = Find(identifier);
    const Status status = Give("ISummarySnapshot::GetParent", stat ? stat->group : Guid(), group);
    return status == S_OK && !stat ? S_FALSE : status;
  }

 private:
  const ScriptedStat* Find(const Guid& identifier) const {
    auto found = std::ranges::find(script_->summary, identifier, &ScriptedStat::identifier);
    return found == script_->summary.end() ? nullptr : &*found;
  }
};

class Summary final : public ScriptedObject<ISummaryStats> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetSnapshotCount(std::uint32_t* count) override { return Give("ISummaryStats::GetSnapshotCount", 1, count); }
  Status GetSnapshot(std::uint32_t index, ISummarySnapshot** snapshot) override {
    if (Status answer = engine_->Answer("ISummaryStats::GetSnapshot"); answer != S_OK) return answer;
    if (index != 0) return E_INVALIDARG;
    *snapshot = MakeObject<SummarySnapshot>(engine_, script_).Detach();
    return S_OK;
  }
};

}  // namespace

FixedScript::FixedScript(Script content) : Script(std::move(content)) {
  node_of_address.resize(addresses.size());
  for (const NodeEntry& node : nodes) {
    if (node.address < node_of_address.size()) node_of_address[node.address] = &node;
  }
  for (const ScriptedConversation& one : conversations) {
    conversation_entries.push_back({.key = conversation_entries.size(), .packets = one.packets, .bytes = one.bytes});
  }
  next_of_type.resize(addresses.size(), kNoAddress);
  for (std::size_t i = addresses.size(); i-- > 0;) {
    auto index = static_cast<std::uint32_t>(i);
    auto [first, added] = first_of_type.try_emplace(addresses[i].type, index);
    if (!added) next_of_type[i] = std::exchange(first->second, index);
  }
}

Status MakeAddresses(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Addresses>(engine, script, out);
}
Status MakeConversationIndex(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<ConversationIndex>(engine, script, out);
}
Status MakeSummary(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Summary>(engine, script, out);
}
Status MakeNodes(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Nodes>(engine, script, out);
}
Status MakeHierarchy(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Hierarchy>(engine, script, out);
}
Status MakeProtocols(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Protocols>(engine, script, out);
}
Status MakeConversations(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Conversations>(engine, script, out);
}

}  // namespace orvo::test
