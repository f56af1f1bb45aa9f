#include "capture/context/engine_context.h"

#include <mutex>
#include <utility>

#include "capture/context/epoch_context.h"
#include "capture/context/snapshot_format.h"
#include "platform/clock.h"

namespace orvo {
namespace {

/// Stands behind the context of a running capture.
class EngineSite final : public Object<IEngineSite> {};

class EngineContext final : public EpochContext<IStatsSnapshotSource, IObjectWithSite, IReportObserver> {
 public:
  explicit EngineContext(std::shared_ptr<EngineCore> core) : core_(std::move(core)) {
    if (core_->options().live) site_ = ComPtr<IUnknown>(MakeObject<EngineSite>().get());
  }

  Status ResetStatistics() override {
    return Guard([&] { core_->Reset(); });
  }
  Status IsAvailable() override {
    return Guard([&] {
      EpochPtr now = core_->Freeze();
      std::lock_guard lock(mutex_);
      epoch_.swap(now);
    });
  }

  Status WriteStatistics(IStream* stream, std::uint64_t* time_mark) override {
    if (!stream || !time_mark) return E_POINTER;
    return Guard([&] {
      EpochPtr epoch = CurrentEpoch();
      WriteSnapshot(*epoch, stream);
      bool of_the_past = !core_->options().live && epoch->packets != 0;
      *time_mark = of_the_past ? epoch->tables->counters.last_time : ProcessClock().Now();
    });
  }

  Status SetSite(IUnknown* site) override {
    ComPtr<IUnknown> replaced(site);
    std::lock_guard lock(mutex_);
    std::swap(replaced, site_);
    return S_OK;
  }
  Status GetSite(const Guid& iid, void** site) override {
    if (!site) return E_POINTER;
    *site = nullptr;
    ComPtr<IUnknown> held;
    {
      std::lock_guard lock(mutex_);
      held = site_;
    }
    return held ? held->QueryInterface(iid, site) : E_FAIL;
  }

  Status FileDone(const char16_t* path, std::uint64_t rows, Status status) override {
    ComPtr<IReportObserver> observer = core_->observer();
    return observer ? observer->FileDone(path, rows, status) : S_FALSE;
  }

 protected:
  void* FindInterface(const Guid& iid) override {
    if (iid == IReportObserver::kIid && !core_->observer()) return nullptr;
    return EpochContext::FindInterface(iid);
  }

  EpochPtr CurrentEpoch() override {
    {
      std::lock_guard lock(mutex_);
      if (epoch_) return epoch_;
    }
    EpochPtr first = core_->Freeze();
    std::lock_guard lock(mutex_);
    if (!epoch_) epoch_ = std::move(first);
    return epoch_;
  }

 private:
  std::shared_ptr<EngineCore> core_;
  std::mutex mutex_;
  EpochPtr epoch_;
  ComPtr<IUnknown> site_;
};

}  // namespace

ComPtr<IStatsContext> MakeEngineContext(std::shared_ptr<EngineCore> core) {
  return ComPtr<IStatsContext>(MakeObject<EngineContext>(std::move(core)).get());
}

}  // namespace orvo
