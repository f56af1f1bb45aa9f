#include "capture/context/stats_snapshot.h"

#include <mutex>
#include <utility>

#include "capture/context/epoch_context.h"
#include "capture/context/snapshot_format.h"

namespace orvo {
namespace {

class StatsSnapshot final : public EpochContext<IPersistStream> {
 public:
  Status ResetStatistics() override { return E_NOTIMPL; }
  Status IsAvailable() override {
    return Guard([&] { CurrentEpoch(); });
  }

  Status GetClassID(Guid* class_id) override {
    if (!class_id) return E_POINTER;
    *class_id = kStatsSnapshotClass;
    return S_OK;
  }
  Status IsDirty() override { return S_FALSE; }
  Status Load(IStream* stream) override {
    if (!stream) return E_POINTER;
    return Guard([&] {
      EpochPtr loaded = ReadSnapshot(stream);
      std::lock_guard lock(mutex_);
      epoch_ = std::move(loaded);
    });
  }
  Status Save(IStream* stream, bool) override {
    if (!stream) return E_POINTER;
    return Guard([&] { WriteSnapshot(*CurrentEpoch(), stream); });
  }
  Status GetSizeMax(std::uint64_t* size) override { return size ? E_NOTIMPL : E_POINTER; }

 protected:
  EpochPtr CurrentEpoch() override {
    std::lock_guard lock(mutex_);
    if (!epoch_) Raise(E_UNEXPECTED);
    return epoch_;
  }

 private:
  std::mutex mutex_;
  EpochPtr epoch_;
};

}  // namespace

ComPtr<IUnknown> MakeStatsSnapshot() {
  auto snapshot = MakeObject<StatsSnapshot>();
  return ComPtr<IUnknown>(static_cast<IStatsContext*>(snapshot.get()));
}

}  // namespace orvo
