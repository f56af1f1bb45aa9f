#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

class AnalysisTable final : public ScriptedObject<ITable> {
 public:
  AnalysisTable(ScriptedEngine* engine, SharedScript script, const ScriptedTable& table)
      : ScriptedObject(engine, std::move(script)), table_(table) {}

  Status GetColumnCount(std::uint32_t* count) override {
    return Give("ITable::GetColumnCount", table_.columns.size(), count);
  }
  Status GetRowCount(std::uint32_t* count) override { return Give("ITable::GetRowCount", table_.rows.size(), count); }
  Status GetColumnTitle(std::uint32_t column, std::u16string* title) override {
    return GiveOfColumn("ITable::GetColumnTitle", column, &ScriptedColumn::title, title);
  }
  Status GetColumnIdentifier(std::uint32_t column, std::u16string* identifier) override {
    return GiveOfColumn("ITable::GetColumnIdentifier", column, &ScriptedColumn::identifier, identifier);
  }
  Status GetCell(std::uint32_t row, std::uint32_t column, std::u16string* text) override {
    if (row >= table_.rows.size() || column >= table_.rows[row].size()) return E_INVALIDARG;
    return Give("ITable::GetCell", table_.rows[row][column], text);
  }

 private:
  Status GiveOfColumn(std::string_view operation, std::uint32_t column, std::u16string ScriptedColumn::*what,
                      std::u16string* out) const {
    if (column >= table_.columns.size()) return E_INVALIDARG;
    return Give(operation, table_.columns[column].*what, out);
  }

  const ScriptedTable& table_;
};

class ExpertStats final : public ScriptedObject<IExpertStats, ITableProvider> {
 public:
  using ScriptedObject::ScriptedObject;

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
    return ScriptedObject::FindInterface(iid);
  }
};

}  // namespace

Status MakeExpert(ScriptedEngine* engine, const SharedScript& script, void** out) {
  if (!script->expert) return E_NOINTERFACE;
  ComPtr<IExpertStats> expert(MakeObject<ExpertStats>(engine, script).get());
  *out = expert.Detach();
  return S_OK;
}

}  // namespace orvo::test
