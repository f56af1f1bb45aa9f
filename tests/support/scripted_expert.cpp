#include "platform/object.h"
#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

class AnalysisTable final : public Object<ITable> {
 public:
  AnalysisTable(ScriptedEngine* engine, SharedScript script, const ScriptedTable& table)
      : engine_(engine), script_(std::move(script)), table_(table) {}

  Status GetColumnCount(std::uint32_t* count) override {
    *count = static_cast<std::uint32_t>(table_.columns.size());
    return engine_->Answer("ITable::GetColumnCount");
  }
  Status GetRowCount(std::uint32_t* count) override {
    *count = static_cast<std::uint32_t>(table_.rows.size());
    return engine_->Answer("ITable::GetRowCount");
  }
  Status GetColumnTitle(std::uint32_t column, std::u16string* title) override {
    return GiveOfColumn("ITable::GetColumnTitle", column, &ScriptedColumn::title, title);
  }
  Status GetColumnIdentifier(std::uint32_t column, std::u16string* identifier) override {
    return GiveOfColumn("ITable::GetColumnIdentifier", column, &ScriptedColumn::identifier, identifier);
  }
  Status GetCell(std::uint32_t row, std::uint32_t column, std::u16string* text) override {
    if (Status answer = engine_->Answer("ITable::GetCell"); answer != S_OK) return answer;
    if (row >= table_.rows.size() || column >= table_.rows[row].size()) return E_INVALIDARG;
    *text = table_.rows[row][column];
    return S_OK;
  }

 private:
  Status GiveOfColumn(std::string_view operation, std::uint32_t column, std::u16string ScriptedColumn::*what,
                      std::u16string* out) const {
    if (Status answer = engine_->Answer(operation); answer != S_OK) return answer;
    if (column >= table_.columns.size()) return E_INVALIDARG;
    *out = table_.columns[column].*what;
    return S_OK;
  }

  ScriptedEngine* engine_;
  SharedScript script_;
  const ScriptedTable& table_;
};

class ExpertStats final : public Object<IExpertStats, ITableProvider> {
 public:
  ExpertStats(ScriptedEngine* engine, SharedScript script) : engine_(engine), script_(std::move(script)) {}

  Status GetTable(std::uint32_t kind, std::uint32_t view, ITable** table) override {
    if (Status answer = engine_->Answer("ITableProvider::GetTable"); answer != S_OK) return answer;
    auto found = script_->expert->tables.find(kind);
    if (view != 1 || found == script_->expert->tables.end()) return E_INVALIDARG;
    *table = MakeObject<AnalysisTable>(engine_, script_, found->second).Detach();
    return S_OK;
  }

 protected:
  void* FindInterface(const Guid& iid) override {
    if (iid == ITableProvider::kIid && !script_->expert->offers_tables) return nullptr;
    return Object::FindInterface(iid);
  }

 private:
  ScriptedEngine* engine_;
  SharedScript script_;
};

}  // namespace

Status MakeExpert(ScriptedEngine* engine, const SharedScript& script, void** out) {
  if (!script->expert) return E_NOINTERFACE;
  ComPtr<IExpertStats> expert(MakeObject<ExpertStats>(engine, script).get());
  *out = expert.Detach();
  return S_OK;
}

}  // namespace orvo::test
