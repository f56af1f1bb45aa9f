#pragma once

#include <cstdint>
#include <string>

#include "platform/unknown.h"

namespace orvo {

/// The values behind a graph: one or more series over the same sample times.
class IGraphSeries : public IUnknown {
 public:
  static constexpr Guid kIid = "683C2DA2-44DE-439B-AB8D-6E9B0B574C74"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  /// Replaces `name`.
  virtual Status GetName(std::uint32_t series, std::u16string* name) = 0;
  /// Writes up to *count points from the first sample at or after `start` (nanoseconds since 1601-01-01 UTC) and stores
  /// how many in *count. A step of 2 or more makes each point the mean of that many samples; 0 and 1 give every sample.
  /// `times` gets the begin of each point; either array may be null.
  virtual Status GetSamples(std::uint32_t series, std::uint64_t start, std::uint32_t step, std::uint32_t* count,
                            double* values, std::uint64_t* times) = 0;

 protected:
  ~IGraphSeries() = default;
};

/// One graph of the engine's; its samples end at the time of the latest statistics, which for a capture file is the
/// time of the capture, not of the report.
class IGraph : public IUnknown {
 public:
  static constexpr Guid kIid = "43F1FA36-4B38-4EF9-8303-9E9E36BBCF84"_guid;

  /// Both replace their out text: the short name, and the title shown with the picture.
  virtual Status GetName(std::u16string* name) = 0;
  virtual Status GetTitle(std::u16string* title) = 0;
  /// Length of a sample in seconds, at least 1.
  virtual Status GetInterval(std::uint32_t* seconds) = 0;
  virtual Status GetSampleCount(std::uint32_t* count) = 0;
  virtual Status GetSeries(IGraphSeries** series) = 0;

 protected:
  ~IGraph() = default;
};

class IGraphCollection : public IUnknown {
 public:
  static constexpr Guid kIid = "3E850901-AAA1-46A5-8B27-B610C32CF86E"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  virtual Status GetGraph(std::uint32_t index, IGraph** graph) = 0;

 protected:
  ~IGraphCollection() = default;
};

}  // namespace orvo
