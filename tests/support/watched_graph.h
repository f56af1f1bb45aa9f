#pragma once

#include <cstdint>
#include <string>

#include "engine/graphs.h"
#include "platform/object.h"

namespace orvo::test {

/// One graph of many samples that remembers what it is asked for.
class WatchedGraph final : public Object<IGraphCollection, IGraph, IGraphSeries> {
 public:
  Status GetCount(std::uint32_t* count) override {
    *count = 1;
    return S_OK;
  }
  Status GetGraph(std::uint32_t /*index*/, IGraph** graph) override {
    AddRef();
    *graph = this;
    return S_OK;
  }
  Status GetName(std::u16string* name) override {
    *name = u"G";
    return S_OK;
  }
  Status GetTitle(std::u16string* title) override {
    *title = u"T";
    return S_OK;
  }
  Status GetInterval(std::uint32_t* seconds) override {
    *seconds = 1;
    return S_OK;
  }
  Status GetSampleCount(std::uint32_t* count) override {
    *count = 10000;
    return S_OK;
  }
  Status GetSeries(IGraphSeries** series) override {
    AddRef();
    *series = this;
    return S_OK;
  }
  Status GetName(std::uint32_t /*series*/, std::u16string* name) override { return GetName(name); }
  Status GetSamples(std::uint32_t /*series*/, std::uint64_t from, std::uint32_t every, std::uint32_t* count,
                    double* values, std::uint64_t* times) override {
    start = from;
    step = every;
    capacity = *count;
    for (std::uint32_t i = 0; i < *count; ++i) {
      values[i] = i;
      times[i] = from + i;
    }
    return S_OK;
  }

  std::uint64_t start = 0;
  std::uint32_t step = 0;
  std::uint32_t capacity = 0;
};

}  // namespace orvo::test
