#include "capture/context/capture_engine.h"

#include <functional>
#include <utility>
#include <vector>

#include "capture/context/engine_context.h"
#include "capture/context/engine_core.h"
#include "capture/context/engine_graphs.h"
#include "capture/context/name_services.h"
#include "capture/context/stats_snapshot.h"
#include "capture/names/hosts_file.h"
#include "engine/protocols.h"
#include "platform/class_factory.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {
namespace {

using Maker = std::function<ComPtr<IUnknown>()>;

/// Creates the objects of a class with a function.
class Factory final : public Object<IClassFactory> {
 public:
  explicit Factory(Maker maker) : maker_(std::move(maker)) {}

  Status CreateInstance(IUnknown* outer, const Guid& iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return Guard([&] { return maker_()->QueryInterface(iid, out); });
  }
  Status LockServer(bool) override { return S_OK; }

 private:
  Maker maker_;
};

}  // namespace

struct CaptureEngine::Parts {
  explicit Parts(const EngineOptions& options) : core(std::make_shared<EngineCore>(options)) {}

  std::shared_ptr<EngineCore> core;
  std::vector<std::uint32_t> cookies;
};

CaptureEngine::CaptureEngine(const EngineOptions& options) : parts_(std::make_unique<Parts>(options)) {}

CaptureEngine::~CaptureEngine() {
  RevokeClasses();
}

void CaptureEngine::Feed(std::span<const Packet> packets) {
  parts_->core->Feed(packets);
}

void CaptureEngine::SetDropped(std::uint64_t packets) {
  parts_->core->SetDropped(packets);
}

std::uint64_t CaptureEngine::packets() const {
  return parts_->core->packets();
}

ComPtr<IStatsContext> CaptureEngine::Context() {
  return MakeEngineContext(parts_->core);
}

ComPtr<IGraphCollection> CaptureEngine::Graphs() {
  return MakeEngineGraphs(parts_->core);
}

void CaptureEngine::SetObserver(IReportObserver* observer) {
  parts_->core->SetObserver(observer);
}

Status CaptureEngine::RegisterClasses() {
  Status status = Guard([&] {
    const EngineOptions& options = parts_->core->options();
    AddressNames names{parts_->core->names(), nullptr};
    if (!options.plain_addresses && !options.vendor_folder.empty()) {
      names.vendors = std::make_shared<VendorTable>(options.vendor_folder);
    }
    const std::pair<Guid, Maker> classes[] = {
        {kAddressNameServiceClass, [names] { return MakeAddressNameService(names); }},
        {kProtocolNameServiceClass, MakeProtocolNameService},
        {kStatsSnapshotClass, MakeStatsSnapshot},
    };
    for (const auto& [class_id, maker] : classes) {
      parts_->cookies.reserve(parts_->cookies.size() + 1);
      std::uint32_t cookie = 0;
      Check(RegisterClassObject(class_id, MakeObject<Factory>(maker).get(), &cookie));
      parts_->cookies.push_back(cookie);
    }
  });
  if (Failed(status)) RevokeClasses();
  return status;
}

void CaptureEngine::RevokeClasses() {
  for (std::uint32_t cookie : parts_->cookies) RevokeClassObject(cookie);
  parts_->cookies.clear();
}

void CaptureEngine::StoreSummary(std::u16string_view name) {
  parts_->core->StoreSummary(name);
}

bool CaptureEngine::LearnName(const AddressRecord& address, std::u16string_view name) {
  NameDirectory* names = parts_->core->names().get();
  return names && names->Learn(address, name, NameSource::kGiven);
}

Status CaptureEngine::LearnHosts(const std::string& path) {
  NameDirectory* names = parts_->core->names().get();
  if (!names) return S_FALSE;
  return Guard([&] {
    std::vector<KnownName> hosts;
    Status status = ReadHostsFile(path, &hosts);
    for (const KnownName& host : hosts) names->Learn(host.address, host.name, NameSource::kGiven);
    return Succeeded(status) && hosts.empty() ? S_FALSE : status;
  });
}

}  // namespace orvo
