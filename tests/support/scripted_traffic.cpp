#include <algorithm>

#include "platform/object.h"
#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

template <class... Interfaces>
class TrafficObject : public Object<Interfaces...> {
 public:
  TrafficObject(ScriptedEngine* engine, SharedScript script) : engine_(engine), script_(std::move(script)) {}

 protected:
  ScriptedEngine* engine_;
  SharedScript script_;
};

class History final : public TrafficObject<ITrafficHistory> {
 public:
  using TrafficObject::TrafficObject;
  Status GetSamples(const double** values, std::uint32_t* count) override {
    if (Status answer = engine_->Answer("ITrafficHistory::GetSamples"); answer != S_OK) return answer;
    *values = script_->history.data();
    *count = static_cast<std::uint32_t>(script_->history.size());
    return S_OK;
  }
  Status GetInterval(std::uint32_t* seconds) override {
    if (Status answer = engine_->Answer("ITrafficHistory::GetInterval"); answer != S_OK) return answer;
    *seconds = script_->history_interval;
    return S_OK;
  }
  Status GetStartTime(std::uint64_t* time) override {
    if (Status answer = engine_->Answer("ITrafficHistory::GetStartTime"); answer != S_OK) return answer;
    *time = script_->history_start;
    return S_OK;
  }
};

class Sizes final : public TrafficObject<ISizeStats> {
 public:
  using TrafficObject::TrafficObject;
  Status GetScheme(std::uint32_t* scheme) override {
    if (Status answer = engine_->Answer("ISizeStats::GetScheme"); answer != S_OK) return answer;
    *scheme = script_->size_scheme;
    return S_OK;
  }
  Status GetBuckets(const std::uint64_t** packets, std::uint32_t* count) override {
    if (Status answer = engine_->Answer("ISizeStats::GetBuckets"); answer != S_OK) return answer;
    *packets = script_->size_buckets.data();
    *count = static_cast<std::uint32_t>(script_->size_buckets.size());
    return S_OK;
  }
};

class Graph final : public TrafficObject<IGraph, IGraphSeries> {
 public:
  Graph(ScriptedEngine* engine, SharedScript script, std::uint32_t index)
      : TrafficObject(engine, std::move(script)), graph_(script_->graphs[index]) {}

  Status GetName(std::u16string* name) override {
    if (Status answer = engine_->Answer("IGraph::GetName"); answer != S_OK) return answer;
    *name = graph_.name;
    return S_OK;
  }
  Status GetTitle(std::u16string* title) override {
    *title = graph_.title;
    return S_OK;
  }
  Status GetInterval(std::uint32_t* seconds) override {
    if (Status answer = engine_->Answer("IGraph::GetInterval"); answer != S_OK) return answer;
    *seconds = graph_.interval;
    return S_OK;
  }
  Status GetSampleCount(std::uint32_t* count) override {
    if (Status answer = engine_->Answer("IGraph::GetSampleCount"); answer != S_OK) return answer;
    *count = graph_.series.empty() ? 0 : static_cast<std::uint32_t>(graph_.series[0].samples.size());
    return S_OK;
  }
  Status GetSeries(IGraphSeries** series) override {
    if (Status answer = engine_->Answer("IGraph::GetSeries"); answer != S_OK) return answer;
    AddRef();
    *series = this;
    return S_OK;
  }
  Status GetCount(std::uint32_t* count) override {
    if (Status answer = engine_->Answer("IGraphSeries::GetCount"); answer != S_OK) return answer;
    *count = static_cast<std::uint32_t>(graph_.series.size());
    return S_OK;
  }
  Status GetName(std::uint32_t series, std::u16string* name) override {
    if (Status answer = engine_->Answer("IGraphSeries::GetName"); answer != S_OK) return answer;
    *name = graph_.series.at(series).name;
    return S_OK;
  }
  Status GetSamples(std::uint32_t series, std::uint64_t start, std::uint32_t step, std::uint32_t* count, double* values,
                    std::uint64_t* times) override {
    if (Status answer = engine_->Answer("IGraphSeries::GetSamples"); answer != S_OK) return answer;
    const std::vector<double>& samples = graph_.series.at(series).samples;
    const std::uint64_t length = graph_.interval * std::uint64_t{1'000'000'000};
    const std::uint64_t since = start > graph_.start ? start - graph_.start : 0;
    const std::uint32_t room = std::exchange(*count, 0);
    for (std::size_t i = (since + length - 1) / length; i < samples.size() && *count < room; i += std::max(step, 1U)) {
      const std::size_t end = std::min<std::size_t>(i + std::max(step, 1U), samples.size());
      double sum = 0;
      for (std::size_t sample = i; sample < end; ++sample) sum += samples[sample];
      values[*count] = sum / static_cast<double>(end - i);
      times[(*count)++] = graph_.start + i * length;
    }
    return S_OK;
  }

 private:
  const ScriptedGraph& graph_;
};

class GraphList final : public TrafficObject<IGraphCollection> {
 public:
  using TrafficObject::TrafficObject;
  Status GetCount(std::uint32_t* count) override {
    if (Status answer = engine_->Answer("IGraphCollection::GetCount"); answer != S_OK) return answer;
    *count = static_cast<std::uint32_t>(script_->graphs.size());
    return S_OK;
  }
  Status GetGraph(std::uint32_t index, IGraph** graph) override {
    if (Status answer = engine_->Answer("IGraphCollection::GetGraph"); answer != S_OK) return answer;
    if (index >= script_->graphs.size()) return E_INVALIDARG;
    *graph = MakeObject<Graph>(engine_, script_, index).Detach();
    return S_OK;
  }
};

}  // namespace

Status MakeTrafficHistory(ScriptedEngine* engine, const SharedScript& script, void** out) {
  *out = MakeObject<History>(engine, script).Detach();
  return S_OK;
}

Status MakeSizeStats(ScriptedEngine* engine, const SharedScript& script, void** out) {
  *out = MakeObject<Sizes>(engine, script).Detach();
  return S_OK;
}

ComPtr<IGraphCollection> MakeGraphs(ScriptedEngine* engine, const SharedScript& script) {
  return ComPtr<IGraphCollection>::Adopt(MakeObject<GraphList>(engine, script).Detach());
}

}  // namespace orvo::test
