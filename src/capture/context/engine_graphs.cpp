#include "capture/context/engine_graphs.h"

#include <mutex>
#include <utility>

#include "capture/context/graph_views.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {
namespace {

class EngineGraphs final : public Object<IGraphCollection> {
 public:
  explicit EngineGraphs(std::shared_ptr<EngineCore> core) : core_(std::move(core)) {}

  Status GetCount(std::uint32_t* count) override {
    if (!count) return E_POINTER;
    return Guard([&] {
      TakeUp();
      *count = GraphCount();
    });
  }
  Status GetGraph(std::uint32_t index, IGraph** graph) override {
    if (!graph) return E_POINTER;
    *graph = nullptr;
    if (index >= GraphCount()) return E_INVALIDARG;
    return Guard([&] {
      EpochPtr epoch;
      {
        std::lock_guard lock(mutex_);
        epoch = epoch_;
      }
      *graph = MakeGraph(epoch ? epoch : TakeUp(), index).Detach();
    });
  }

 private:
  EpochPtr TakeUp() {
    EpochPtr latest = core_->Latest();
    std::lock_guard lock(mutex_);
    epoch_ = latest;
    return latest;
  }

  std::shared_ptr<EngineCore> core_;
  std::mutex mutex_;
  EpochPtr epoch_;
};

}  // namespace

ComPtr<IGraphCollection> MakeEngineGraphs(std::shared_ptr<EngineCore> core) {
  return ComPtr<IGraphCollection>(MakeObject<EngineGraphs>(std::move(core)).get());
}

}  // namespace orvo
