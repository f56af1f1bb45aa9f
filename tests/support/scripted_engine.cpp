#include "tests/support/scripted_engine.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/class_factory.h"
#include "platform/object.h"
#include "tests/support/scripted_categories.h"
#include "tests/support/text.h"

namespace orvo::test {
namespace {

/// The context of a script, live or as of a snapshot; it keeps whatever the objects it hands out look up.
struct View {
  ScriptedEngine* engine;
  Script script;
  std::vector<const NodeEntry*> node_of_address;
  std::vector<std::uint32_t> next_of_type;
  std::vector<ConversationEntry> conversations;
  std::map<std::uint8_t, std::uint32_t> first_of_type;

  View(ScriptedEngine* owner, Script content) : engine(owner), script(std::move(content)) {
    node_of_address.resize(script.addresses.size());
    for (const NodeEntry& node : script.nodes) {
      if (node.address < node_of_address.size()) node_of_address[node.address] = &node;
    }
    for (const ScriptedConversation& conversation : script.conversations) {
      conversations.push_back(
          {.key = conversations.size(), .packets = conversation.packets, .bytes = conversation.bytes});
    }
    next_of_type.resize(script.addresses.size(), kNoAddress);
    for (std::size_t i = script.addresses.size(); i-- > 0;) {
      auto index = static_cast<std::uint32_t>(i);
      auto [first, added] = first_of_type.try_emplace(script.addresses[i].type, index);
      if (!added) next_of_type[i] = std::exchange(first->second, index);
    }
  }
};

using SharedView = std::shared_ptr<const View>;

#define ANSWER(operation)                                                                \
  do {                                                                                   \
    if (Status answer = view_->engine->Answer(operation); answer != S_OK) return answer; \
  } while (false)

template <class Interface>
class ViewObject : public Object<Interface> {
 public:
  explicit ViewObject(SharedView view) : view_(std::move(view)) {}

 protected:
  template <class Record>
  static Status Entry(const std::vector<Record>& records, std::uint32_t index, const Record** entry) {
    if (index >= records.size()) return E_INVALIDARG;
    *entry = &records[index];
    return S_OK;
  }

  SharedView view_;
};

class Addresses final : public ViewObject<IAddressTable> {
 public:
  using ViewObject::ViewObject;
  Status GetCount(std::uint32_t* count) override {
    *count = static_cast<std::uint32_t>(view_->script.addresses.size());
    return S_OK;
  }
  Status GetRecord(std::uint32_t index, const AddressRecord** record) override {
    ANSWER("IAddressTable::GetRecord");
    *record = index < view_->script.addresses.size() ? &view_->script.addresses[index] : nullptr;
    return *record ? S_OK : S_FALSE;
  }
  Status FirstOfType(std::uint8_t type, std::uint32_t* index) override {
    auto found = view_->first_of_type.find(type);
    *index = found == view_->first_of_type.end() ? kNoAddress : found->second;
    return *index == kNoAddress ? S_FALSE : S_OK;
  }
  Status NextOfType(std::uint32_t index, std::uint32_t* next) override {
    *next = view_->next_of_type[index];
    return *next == kNoAddress ? S_FALSE : S_OK;
  }
};

/// What tables that are lists of the script answer alike.
template <class Interface, class Record, std::vector<Record> Script::*records>
class TableOf : public ViewObject<Interface> {
 public:
  using ViewObject<Interface>::ViewObject;
  Status GetCount(std::uint32_t* count) override {
    *count = static_cast<std::uint32_t>(Records().size());
    return S_OK;
  }
  Status GetEntry(std::uint32_t index, const Record** entry) override {
    return ViewObject<Interface>::Entry(Records(), index, entry);
  }

 protected:
  const std::vector<Record>& Records() const { return this->view_->script.*records; }
};

class Nodes final : public TableOf<INodeStats, NodeEntry, &Script::nodes> {
 public:
  using TableOf::TableOf;
  Status FindByAddress(std::uint32_t address, const NodeEntry** entry) override {
    ANSWER("INodeStats::FindByAddress");
    *entry = address < view_->node_of_address.size() ? view_->node_of_address[address] : nullptr;
    return *entry ? S_OK : S_FALSE;
  }
};

using Hierarchy = TableOf<IHierarchyStats, HierarchyEntry, &Script::hierarchy>;

class Protocols final : public TableOf<IProtocolStats, ProtocolEntry, &Script::protocols> {
 public:
  using TableOf::TableOf;
  Status FindByKey(std::uint32_t key, const ProtocolEntry** entry) override {
    auto found = std::ranges::find(Records(), key, &ProtocolEntry::key);
    *entry = found == Records().end() ? nullptr : &*found;
    return *entry ? S_OK : S_FALSE;
  }
};

class Conversations final : public ViewObject<IConversationStats> {
 public:
  using ViewObject::ViewObject;
  Status GetCount(std::uint32_t* count) override {
    *count = static_cast<std::uint32_t>(view_->conversations.size());
    return S_OK;
  }
  Status GetEntry(std::uint32_t index, const ConversationEntry** entry) override {
    ANSWER("IConversationStats::GetEntry");
    return Entry(view_->conversations, index, entry);
  }
  Status FindByKey(std::uint64_t key, const ConversationEntry** entry) override {
    *entry = key < view_->conversations.size() ? &view_->conversations[key] : nullptr;
    return *entry ? S_OK : S_FALSE;
  }
};

class ConversationIndex final : public ViewObject<IConversationIndex> {
 public:
  using ViewObject::ViewObject;
  Status Resolve(std::uint64_t key, ConversationEndpoints* endpoints) override {
    ANSWER("IConversationIndex::Resolve");
    if (key >= view_->script.conversations.size()) return E_INVALIDARG;
    *endpoints = view_->script.conversations[key].ends;
    return S_OK;
  }
  Status FirstOfType(std::uint8_t type, std::uint64_t* key) override { return FromOn(0, type, key); }
  Status NextOfType(std::uint64_t key, std::uint64_t* next) override {
    return FromOn(key + 1, view_->script.addresses[view_->script.conversations[key].ends.source].type, next);
  }

 private:
  Status FromOn(std::uint64_t key, std::uint8_t type, std::uint64_t* found) const {
    for (; key < view_->script.conversations.size(); ++key) {
      *found = key;
      if (view_->script.addresses[view_->script.conversations[key].ends.source].type == type) return S_OK;
    }
    return S_FALSE;
  }
};

class SummarySnapshot final : public ViewObject<ISummarySnapshot> {
 public:
  using ViewObject::ViewObject;
  Status GetSnapshotName(std::u16string* name) override {
    *name = u"Current";
    return S_OK;
  }
  Status GetCount(std::uint32_t* count) override {
    *count = static_cast<std::uint32_t>(view_->script.summary.size());
    return S_OK;
  }
  Status GetIdentifier(std::uint32_t index, Guid* identifier) override {
    ANSWER("ISummarySnapshot::GetIdentifier");
    if (index >= view_->script.summary.size()) return E_INVALIDARG;
    *identifier = view_->script.summary[index].identifier;
    return S_OK;
  }
  Status GetValue(const Guid& identifier, SummaryValue* value) override {
    ANSWER("ISummarySnapshot::GetValue");
    const ScriptedStat* stat = Find(identifier);
    *value = stat ? stat->value : SummaryValue();
    return stat ? S_OK : S_FALSE;
  }
  Status GetName(const Guid& identifier, std::u16string* name) override {
    ANSWER("ISummarySnapshot::GetName");
    name->clear();
    if (const ScriptedStat* stat = Find(identifier)) *name = stat->name;
    auto group = view_->script.group_names.find(identifier);
    if (group != view_->script.group_names.end()) *name = group->second;
    return name->empty() ? S_FALSE : S_OK;
  }
  Status GetParent(const Guid& identifier, Guid* group) override {
    ANSWER("ISummarySnapshot::GetParent");
    const ScriptedStat* stat = Find(identifier);
    *group = stat ? stat->group : Guid();
    return stat ? S_OK : S_FALSE;
  }

 private:
  const ScriptedStat* Find(const Guid& identifier) const {
    auto found = std::ranges::find(view_->script.summary, identifier, &ScriptedStat::identifier);
    return found == view_->script.summary.end() ? nullptr : &*found;
  }
};

class Summary final : public ViewObject<ISummaryStats> {
 public:
  using ViewObject::ViewObject;
  Status GetSnapshotCount(std::uint32_t* count) override {
    *count = 1;
    return S_OK;
  }
  Status GetSnapshot(std::uint32_t index, ISummarySnapshot** snapshot) override {
    ANSWER("ISummaryStats::GetSnapshot");
    if (index != 0) return E_INVALIDARG;
    *snapshot = MakeObject<SummarySnapshot>(view_).Detach();
    return S_OK;
  }
};

/// Hands out one interface of a new object over a view.
template <class T>
Status Make(const SharedView& view, void** out) {
  *out = MakeObject<T>(view).Detach();
  return S_OK;
}

/// The same for a category that is made elsewhere, from the script alone.
template <Status (*make)(ScriptedEngine*, const SharedScript&, void**)>
Status MakeFromScript(const SharedView& view, void** out) {
  return make(view->engine, SharedScript(view, &view->script), out);
}

struct CategoryMaker {
  Guid identifier;
  Status (*make)(const SharedView&, void**);
};

const CategoryMaker kCategories[] = {
    {kSummaryCategory.identifier, Make<Summary>},
    {kNodeCategory.identifier, Make<Nodes>},
    {kTopTalkerCategory.identifier, Make<Nodes>},
    {kHierarchyCategory.identifier, Make<Hierarchy>},
    {kProtocolCategory.identifier, Make<Protocols>},
    {kConversationCategory.identifier, Make<Conversations>},
    {kWirelessNodeCategory.identifier, MakeFromScript<MakeWirelessNodes>},
    {kWirelessChannelCategory.identifier, MakeFromScript<MakeWirelessChannels>},
    {kExpertCategory.identifier, MakeFromScript<MakeExpert>},
    {kTrafficHistoryCategory.identifier, MakeFromScript<MakeTrafficHistory>},
    {kSizeCategory.identifier, MakeFromScript<MakeSizeStats>},
};

/// The operations that the live context and a snapshot answer alike.
template <class... Interfaces>
class ContextBase : public Object<IStatsContext, Interfaces...> {
 public:
  explicit ContextBase(ScriptedEngine* engine) : engine_(engine) {}

  Status GetCategory(const Guid& category, const Guid& /*iid*/, void** out) override {
    *out = nullptr;
    SharedView view = CurrentView();
    if (std::ranges::count(view->script.missing, category) != 0) return E_NOINTERFACE;
    for (const CategoryMaker& maker : kCategories) {
      if (maker.identifier == category) return maker.make(view, out);
    }
    return E_NOINTERFACE;
  }
  Status ResetStatistics() override { return S_OK; }
  Status GetMediumType(std::uint32_t* type) override {
    if (Status answer = engine_->Answer("IStatsContext::GetMediumType"); answer != S_OK) return answer;
    return Give(&Script::medium_type, type);
  }
  Status GetMediumSubtype(std::uint32_t* subtype) override { return Give(&Script::medium_subtype, subtype); }
  Status GetAddressTable(IAddressTable** table) override {
    if (Status answer = engine_->Answer("IStatsContext::GetAddressTable"); answer != S_OK) return answer;
    *table = MakeObject<Addresses>(CurrentView()).Detach();
    return S_OK;
  }
  Status GetConversationIndex(IConversationIndex** index) override {
    *index = MakeObject<ConversationIndex>(CurrentView()).Detach();
    return S_OK;
  }
  Status GetStartTime(std::uint64_t* time) override { return Give(&Script::start_time, time); }
  Status GetDuration(std::uint64_t* duration) override { return Give(&Script::duration, duration); }
  Status GetTotalPackets(std::uint64_t* packets) override {
    if (Status answer = engine_->Answer("IStatsContext::GetTotalPackets"); answer != S_OK) return answer;
    return Give(&Script::total_packets, packets);
  }
  Status GetTotalBytes(std::uint64_t* bytes) override { return Give(&Script::total_bytes, bytes); }
  Status IsAvailable() override {
    ++engine_->availability_queries;
    return engine_->availability;
  }

 protected:
  virtual SharedView CurrentView() = 0;
  ScriptedEngine* engine_;

 private:
  template <class T>
  Status Give(T Script::*field, T* out) {
    *out = CurrentView()->script.*field;
    return S_OK;
  }
};

/// Travels through the stream in place of the statistics themselves.
struct Token {
  std::uint64_t magic = 0x53435249505431ULL;
  ScriptedEngine* engine = nullptr;
};

class LiveContext final : public ContextBase<IStatsSnapshotSource, IReportObserver> {
 public:
  using ContextBase::ContextBase;

  Status WriteStatistics(IStream* stream, std::uint64_t* time_mark) override {
    if (Status answer = engine_->Answer("IStatsSnapshotSource::WriteStatistics"); answer != S_OK) return answer;
    engine_->marks.push_back(*time_mark);
    *time_mark = engine_->snapshot_time;
    Token token{.engine = engine_};
    return stream->Write(&token, sizeof token, nullptr);
  }

  Status FileDone(const char16_t* path, std::uint64_t rows, Status status) override {
    engine_->files.push_back({path, rows, status});
    return S_OK;
  }

 protected:
  SharedView CurrentView() override {
    // One view for a report: made anew whenever its availability is asked for.
    if (!view_ || (!engine_->fixed && epoch_ != engine_->availability_queries)) {
      view_ = std::make_shared<const View>(engine_, engine_->live);
      epoch_ = engine_->availability_queries;
    }
    return view_;
  }

  void* FindInterface(const Guid& iid) override {
    if (iid == IStatsSnapshotSource::kIid && !engine_->offers_snapshots) return nullptr;
    return ContextBase::FindInterface(iid);
  }

 private:
  SharedView view_;
  int epoch_ = -1;
};

class SnapshotContext final : public ContextBase<IPersistStream> {
 public:
  using ContextBase::ContextBase;

  Status GetClassID(Guid* class_id) override {
    *class_id = kStatsSnapshotClass;
    return S_OK;
  }
  Status IsDirty() override { return S_FALSE; }
  Status Load(IStream* stream) override {
    if (Status answer = engine_->Answer("IPersistStream::Load"); answer != S_OK) return answer;
    Token token;
    std::uint32_t read = 0;
    Status status = stream->Read(&token, sizeof token, &read);
    if (Failed(status) || read != sizeof token || token.magic != Token().magic) return E_FAIL;
    view_ = std::make_shared<const View>(engine_, engine_->at_snapshot.value_or(engine_->live));
    return S_OK;
  }
  Status Save(IStream*, bool) override { return E_NOTIMPL; }
  Status GetSizeMax(std::uint64_t*) override { return E_NOTIMPL; }

 protected:
  SharedView CurrentView() override { return view_; }

 private:
  SharedView view_;
};

class AddressNames final : public Object<IAddressNameService> {
 public:
  explicit AddressNames(ScriptedEngine* engine) : engine_(engine) {}

  Status AppendTypeLabel(std::uint8_t type, std::u16string* text) override {
    if (Status answer = engine_->Answer("IAddressNameService::AppendTypeLabel"); answer != S_OK) return answer;
    if (type == kAddressIpx) *text += u"IPX ";
    return S_OK;
  }

  Status AppendAddressText(const AddressRecord& record, std::u16string* text) override {
    if (Status answer = engine_->Answer("IAddressNameService::AppendAddressText"); answer != S_OK) return answer;
    if (record.type == kAddressProtocol) {
      auto protocol = engine_->protocol_tree.find(ProtocolNumber(record));
      if (protocol != engine_->protocol_tree.end()) *text += protocol->second.name;
      return S_OK;
    }
    std::size_t begin = text->size();
    for (std::size_t i = 0; i < record.length; ++i) {
      if (i != 0) text->push_back(u'.');
      AppendDecimal(record.bytes[i], text);
    }
    if (engine_->names.empty()) return S_OK;
    auto name = engine_->names.find(text->substr(begin));
    if (name != engine_->names.end()) text->replace(begin, text->npos, name->second);
    return S_OK;
  }

 private:
  ScriptedEngine* engine_;
};

class ProtocolNames final : public Object<IProtocolNameService> {
 public:
  explicit ProtocolNames(ScriptedEngine* engine) : engine_(engine) {}
  Status IsTopLevel(std::uint16_t number) override {
    auto found = engine_->protocol_tree.find(number);
    return found != engine_->protocol_tree.end() && found->second.parent == 0 ? S_OK : S_FALSE;
  }
  Status GetChain(std::uint16_t number, std::uint16_t* chain, std::uint32_t capacity, std::uint32_t* count) override {
    if (Status answer = engine_->Answer("IProtocolNameService::GetChain"); answer != S_OK) return answer;
    *count = 0;
    for (auto at = engine_->protocol_tree.find(number); at != engine_->protocol_tree.end() && *count < capacity;
         at = engine_->protocol_tree.find(at->second.parent)) {
      chain[(*count)++] = at->first;
    }
    return S_OK;
  }
  Status AppendName(std::uint16_t number, std::u16string* name) override {
    if (Status answer = engine_->Answer("IProtocolNameService::AppendName"); answer != S_OK) return answer;
    auto found = engine_->protocol_tree.find(number);
    if (found == engine_->protocol_tree.end()) return S_FALSE;
    *name += found->second.name;
    return S_OK;
  }

 private:
  ScriptedEngine* engine_;
};

/// Creates scripted objects of one class.
template <class T>
class Factory final : public Object<IClassFactory> {
 public:
  Factory(ScriptedEngine* engine, std::string_view operation) : engine_(engine), operation_(operation) {}

  Status CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    if (Status answer = engine_->Answer(operation_); answer != S_OK) return answer;
    return MakeObject<T>(engine_)->QueryInterface(iid, out);
  }
  Status LockServer(bool /*lock*/) override { return S_OK; }

 private:
  ScriptedEngine* engine_;
  std::string_view operation_;
};

template <class T>
std::uint32_t Offer(ScriptedEngine* engine, const Guid& class_id, std::string_view operation) {
  std::uint32_t cookie = 0;
  RegisterClassObject(class_id, MakeObject<Factory<T>>(engine, operation).get(), &cookie);
  return cookie;
}

}  // namespace

std::uint32_t Script::Add(const AddressRecord& record) {
  addresses.push_back(record);
  return static_cast<std::uint32_t>(addresses.size() - 1);
}

std::uint32_t Script::AddIp(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
  return Add({.valid = 1, .type = kAddressIp, .length = 4, .bytes = {a, b, c, d}});
}

std::uint32_t Script::AddPhysical(std::uint64_t number) {
  AddressRecord record{.valid = 1, .type = kAddressPhysical, .length = 6};
  for (std::size_t i = 0; i < 6; ++i) record.bytes[i] = static_cast<std::uint8_t>(number >> (8 * (5 - i)));
  return Add(record);
}

std::uint32_t Script::AddProtocol(std::uint16_t number) {
  return Add({.valid = 1,
              .type = kAddressProtocol,
              .length = 2,
              .bytes = {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8)}});
}

ScriptedEngine::ScriptedEngine() {
  cookies_ = {Offer<AddressNames>(this, kAddressNameServiceClass, "create address names"),
              Offer<ProtocolNames>(this, kProtocolNameServiceClass, "create protocol names"),
              Offer<SnapshotContext>(this, kStatsSnapshotClass, "create snapshot")};
}

ScriptedEngine::~ScriptedEngine() {
  for (std::uint32_t cookie : cookies_) RevokeClassObject(cookie);
}

ComPtr<IStatsContext> ScriptedEngine::Context() {
  return ComPtr<IStatsContext>::Adopt(MakeObject<LiveContext>(this).Detach());
}

ComPtr<IGraphCollection> ScriptedEngine::Graphs() {
  return MakeGraphs(this, std::make_shared<const Script>(live));
}

void ScriptedEngine::Fail(std::string_view operation, int nth, Status status) {
  failing_ = operation;
  calls_left_ = nth;
  failure_ = status;
}

}  // namespace orvo::test
