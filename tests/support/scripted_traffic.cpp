#include <algorithm>

#include "tests/support/scripted_categories.h"

namespace orvo::test {
namespace {

class History final : public ScriptedObject<ITrafficHistory> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetSamples(const double** values, std::uint32_t* count) override {
    return GiveAll("ITrafficHistory::GetSamples", script_->history, values, count);
  }
  Status GetInterval(std::uint32_t* seconds) override {
    return Give("ITrafficHistory::GetInterval", script_->history_interval, seconds);
  }
  Status GetStartTime(std::uint64_t* time) override {
    return Give("ITrafficHistory::GetStartTime", script_->history_start, time);
  }
};

class Sizes final : public ScriptedObject<ISizeStats> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetScheme(std::uint32_t* scheme) override {
    return Give("ISizeStats::GetScheme", script_->size_scheme, scheme);
  }
  Status GetBuckets(const std::uint64_t** packets, std::uint32_t* count) override {
    return GiveAll("ISizeStats::GetBuckets", script_->size_buckets, packets, count);
  }
};

class Graph final : public ScriptedObject<IGraph, IGraphSeries> {
 public:
  Graph(ScriptedEngine* engine, SharedScript script, std::uint32_t index)
      : ScriptedObject(engine, std::move(script)), graph_(script_->graphs[index]) {}

  Status GetName(std::u16string* name) override { return Give("IGraph::GetName", graph_.name, name); }
  Status GetTitle(std::u16string* title) override { return Give("IGraph::GetTitle", graph_.title, title); }
  Status GetInterval(std::uint32_t* seconds) override { return Give("IGraph::GetInterval", graph_.interval, seconds); }
  Status GetSampleCount(std::uint32_t* count) override {
    return Give("IGraph::GetSampleCount", graph_.series.empty() ? 0 : graph_.series[0].samples.size(), count);
  }
  Status GetSeries(IGraphSeries** series) override {
    if (Status answer = engine_->Answer("IGraph::GetSeries"); answer != S_OK) return answer;
    AddRef();
    *series = this;
    return S_OK;
  }
  Status GetCount(std::uint32_t* count) override { return Give("IGraphSeries::GetCount", graph_.series.size(), count); }
  Status GetName(std::uint32_t series, std::u16string* name) override {
    return Give("IGraphSeries::GetName", graph_.series.at(series).name, name);
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

class GraphList final : public ScriptedObject<IGraphCollection> {
 public:
  using ScriptedObject::ScriptedObject;
  Status GetCount(std::uint32_t* count) override {
    return Give("IGraphCollection::GetCount", script_->graphs.size(), count);
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
  return MakeScripted<History>(engine, script, out);
}

Status MakeSizeStats(ScriptedEngine* engine, const SharedScript& script, void** out) {
  return MakeScripted<Sizes>(engine, script, out);
}

ComPtr<IGraphCollection> MakeGraphs(ScriptedEngine* engine, const SharedScript& script) {
  return ComPtr<IGraphCollection>::Adopt(MakeObject<GraphList>(engine, script).Detach());
}

}  // namespace orvo::test
