#include "tests/support/scripted_engine.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/class_factory.h"
#include "tests/support/scripted_categories.h"
#include "tests/support/text.h"

namespace orvo::test {
namespace {

struct CategoryMaker {
  Guid identifier;
  Status (*make)(ScriptedEngine*, const SharedScript&, void**);
};

const CategoryMaker kCategories[] = {
    {kSummaryCategory.identifier, MakeSummary},
    {kNodeCategory.identifier, MakeNodes},
    {kTopTalkerCategory.identifier, MakeNodes},
    {kHierarchyCategory.identifier, MakeHierarchy},
    {kProtocolCategory.identifier, MakeProtocols},
    {kConversationCategory.identifier, MakeConversations},
    {kWirelessNodeCategory.identifier, MakeWirelessNodes},
    {kWirelessChannelCategory.identifier, MakeWirelessChannels},
    {kExpertCategory.identifier, MakeExpert},
    {kTrafficHistoryCategory.identifier, MakeTrafficHistory},
    {kSizeCategory.identifier, MakeSizeStats},
};

/// The operations that the live context and a snapshot answer alike.
template <class... Interfaces>
class ContextBase : public Object<IStatsContext, Interfaces...> {
 public:
  explicit ContextBase(ScriptedEngine* engine) : engine_(engine) {}

  Status GetCategory(const Guid& category, const Guid& /*iid*/, void** out) override {
    *out = nullptr;
    const SharedScript script = CurrentScript();
    if (std::ranges::count(script->missing, category) != 0) return E_NOINTERFACE;
    for (const CategoryMaker& maker : kCategories) {
      if (maker.identifier == category) return maker.make(engine_, script, out);
    }
    return E_NOINTERFACE;
  }
  Status ResetStatistics() override { return S_OK; }
  Status GetMediumType(std::uint32_t* type) override {
    return Give("IStatsContext::GetMediumType", &Script::medium_type, type);
  }
  Status GetMediumSubtype(std::uint32_t* subtype) override {
    return Give("IStatsContext::GetMediumSubtype", &Script::medium_subtype, subtype);
  }
  Status GetAddressTable(IAddressTable** table) override {
    if (Status answer = engine_->Answer("IStatsContext::GetAddressTable"); answer != S_OK) return answer;
    return MakeAddresses(engine_, CurrentScript(), reinterpret_cast<void**>(table));
  }
  Status GetConversationIndex(IConversationIndex** index) override {
    return MakeConversationIndex(engine_, CurrentScript(), reinterpret_cast<void**>(index));
  }
  Status GetStartTime(std::uint64_t* time) override {
    return Give("IStatsContext::GetStartTime", &Script::start_time, time);
  }
  Status GetDuration(std::uint64_t* duration) override {
    return Give("IStatsContext::GetDuration", &Script::duration, duration);
  }
  Status GetTotalPackets(std::uint64_t* packets) override {
    return Give("IStatsContext::GetTotalPackets", &Script::total_packets, packets);
  }
  Status GetTotalBytes(std::uint64_t* bytes) override {
    return Give("IStatsContext::GetTotalBytes", &Script::total_bytes, bytes);
  }
  Status IsAvailable() override {
    ++engine_->availability_queries;
    return engine_->availability;
  }

 protected:
  virtual SharedScript CurrentScript() = 0;
  ScriptedEngine* engine_;

 private:
  template <class T>
  Status Give(std::string_view operation, T Script::*field, T* out) {
    return engine_->Give(operation, (*CurrentScript()).*field, out);
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
  SharedScript CurrentScript() override {
    // One for a report: made anew whenever its availability is asked for.
    if (!script_ || (!engine_->fixed && epoch_ != engine_->availability_queries)) {
      script_ = std::make_shared<const FixedScript>(engine_->live);
      epoch_ = engine_->availability_queries;
    }
    return script_;
  }

  void* FindInterface(const Guid& iid) override {
    if (iid == IStatsSnapshotSource::kIid && !engine_->offers_snapshots) return nullptr;
    return ContextBase::FindInterface(iid);
  }

 private:
  SharedScript script_;
  int epoch_ = -1;
};

class SnapshotContext final : public ContextBase<IPersistStream> {
 public:
  using ContextBase::ContextBase;

  Status GetClassID(Guid* class_id) override {
    return engine_->Give("IPersistStream::GetClassID", kStatsSnapshotClass, class_id);
  }
  Status IsDirty() override { return S_FALSE; }
  Status Load(IStream* stream) override {
    if (Status answer = engine_->Answer("IPersistStream::Load"); answer != S_OK) return answer;
    Token token;
    std::uint32_t read = 0;
    Status status = stream->Read(&token, sizeof token, &read);
    if (Failed(status) || read != sizeof token || token.magic != Token().magic) return E_FAIL;
    script_ = std::make_shared<const FixedScript>(engine_->at_snapshot.value_or(engine_->live));
    return S_OK;
  }
  Status Save(IStream*, bool) override { return E_NOTIMPL; }
  Status GetSizeMax(std::uint64_t*) override { return E_NOTIMPL; }

 protected:
  SharedScript CurrentScript() override { return script_; }

 private:
  SharedScript script_;
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
  return MakeGraphs(this, std::make_shared<const FixedScript>(live));
}

void ScriptedEngine::Fail(std::string_view operation, int nth, Status status) {
  failing_ = operation;
  calls_left_ = nth;
  failure_ = status;
}

}  // namespace orvo::test
