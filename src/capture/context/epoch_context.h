#pragma once

#include <cstdint>

#include "capture/context/category_views.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {

/// Answers IStatsContext from an epoch, beside whatever else the object offers.
template <class... Others>
class EpochContext : public Object<IStatsContext, Others...> {
 public:
  Status GetCategory(const Guid& category, const Guid& iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    return Guard([&] { return MakeCategory(CurrentEpoch(), category, iid, out); });
  }
  Status GetMediumType(std::uint32_t* type) override { return Give(type, &Epoch::medium_type); }
  Status GetMediumSubtype(std::uint32_t* subtype) override { return Give(subtype, &Epoch::medium_subtype); }
  Status GetAddressTable(IAddressTable** table) override { return GiveObject(table, MakeAddressTable); }
  Status GetConversationIndex(IConversationIndex** index) override { return GiveObject(index, MakeConversationIndex); }
  Status GetStartTime(std::uint64_t* time) override { return Give(time, &Epoch::start); }
  Status GetDuration(std::uint64_t* duration) override { return Give(duration, &Epoch::duration); }
  Status GetTotalPackets(std::uint64_t* packets) override { return Give(packets, &Epoch::packets); }
  Status GetTotalBytes(std::uint64_t* bytes) override { return Give(bytes, &Epoch::bytes); }

 protected:
  /// The epoch that answers now; raises a failing status when there is none. Never null.
  virtual EpochPtr CurrentEpoch() = 0;

 private:
  template <class T>
  Status Give(T* out, T Epoch::*member) {
    if (!out) return E_POINTER;
    return Guard([&] { *out = (*CurrentEpoch()).*member; });
  }

  template <class T>
  Status GiveObject(T** out, ComPtr<T> (*make)(const EpochPtr& epoch)) {
    if (!out) return E_POINTER;
    *out = nullptr;
    return Guard([&] {
      *out = make(CurrentEpoch()).Detach();
      return *out ? S_OK : E_NOINTERFACE;
    });
  }
};

}  // namespace orvo
