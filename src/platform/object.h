#pragma once

#include <atomic>
#include <cstdint>
#include <new>
#include <type_traits>

#include "platform/unknown.h"

namespace orvo {

/// Implements reference counting and interface look-up for an object that offers `Interfaces`, in that order.
/// The object is made with one reference (see MakeObject) and deletes itself when the last one is released.
template <class... Interfaces>
class Object : public Interfaces... {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  Status QueryInterface(const Guid& iid, void** out) override {
    if (!out) return E_POINTER;
    *out = FindInterface(iid);
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  std::uint32_t AddRef() override { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }

  std::uint32_t Release() override {
    std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Object() = default;

  /// The pointer for an interface identifier, without a reference, or null. Overridden to answer more identifiers.
  virtual void* FindInterface(const Guid& iid) {
    void* found = nullptr;
    (void)((iid == Interfaces::kIid ? (found = static_cast<Interfaces*>(this), true) : false) || ...);
    if (!found && iid == IUnknown::kIid) found = FirstInterface<Interfaces...>();
    return found;
  }

 private:
  template <class First, class...>
  First* FirstInterface() {
    return static_cast<First*>(this);
  }

  std::atomic<std::uint32_t> references_{1};
};

/// A new object with one reference, owned by the result. Raises std::bad_alloc or what the constructor raises.
template <class T, class... Arguments>
ComPtr<T> MakeObject(Arguments&&... arguments) {
  return ComPtr<T>::Adopt(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace orvo
