#pragma once

#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/object.h"
#include "tests/support/scripted_engine.h"

namespace orvo::test {

/// A script as it was at one moment, with what is looked up in it.
struct FixedScript : Script {
  explicit FixedScript(Script content);

  std::vector<const NodeEntry*> node_of_address;
  std::vector<std::uint32_t> next_of_type;
  std::vector<ConversationEntry> conversation_entries;
  std::map<std::uint8_t, std::uint32_t> first_of_type;
};

/// A script that lives as long as an object answers from it.
using SharedScript = std::shared_ptr<const FixedScript>;

/// What all that answers from a script has in common. Operations are named as `ScriptedEngine::Fail` names them.
template <class... Interfaces>
class ScriptedObject : public Object<Interfaces...> {
 public:
  ScriptedObject(ScriptedEngine* engine, SharedScript script) : engine_(engine), script_(std::move(script)) {}

 protected:
  /// Answers an operation: its scripted failure, else a value.
  template <class Value, class T>
  Status Give(std::string_view operation, const Value& value, T* out) const {
    return engine_->Give(operation, value, out);
  }
  template <class Record>
  Status GiveEntry(std::string_view operation, const std::vector<Record>& records, std::uint64_t index,
                   const Record** entry) const {
    if (Status answer = engine_->Answer(operation); answer != S_OK) return answer;
    if (index >= records.size()) return E_INVALIDARG;
    *entry = &records[index];
    return S_OK;
  }
  template <class Value>
  Status GiveAll(std::string_view operation, const std::vector<Value>& all, const Value** values,
                 std::uint32_t* count) const {
    *count = static_cast<std::uint32_t>(all.size());
    return Give(operation, all.data(), values);
  }
  /// Answers a search: S_FALSE when nothing was found.
  template <class Record>
  Status GiveFound(std::string_view operation, const Record* found, const Record** entry) const {
    Status answer = Give(operation, found, entry);
    return answer == S_OK && !found ? S_FALSE : answer;
  }

  ScriptedEngine* engine_;
  SharedScript script_;
};

template <class T>
Status MakeScripted(ScriptedEngine* engine, const SharedScript& script, void** out) {
  *out = MakeObject<T>(engine, script).Detach();
  return S_OK;
}

Status MakeAddresses(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeConversationIndex(ScriptedEngine* engine, const SharedScript& script, void** out);

// The objects of categories. Those of wireless media and of the expert category are E_NOINTERFACE for a script without
// them.
Status MakeSummary(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeNodes(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeHierarchy(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeProtocols(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeConversations(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeWirelessNodes(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeWirelessChannels(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeExpert(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeTrafficHistory(ScriptedEngine* engine, const SharedScript& script, void** out);
Status MakeSizeStats(ScriptedEngine* engine, const SharedScript& script, void** out);

ComPtr<IGraphCollection> MakeGraphs(ScriptedEngine* engine, const SharedScript& script);

}  // namespace orvo::test
