#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "platform/guid.h"
#include "platform/status.h"

namespace orvo {

/// The base of every interface. An interface declares its identifier as `static constexpr Guid kIid`.
/// Objects are shared by reference counting; nobody deletes an interface pointer.
class IUnknown {
 public:
  static constexpr Guid kIid = "00000000-0000-0000-C000-000000000046"_guid;

  /// E_POINTER for a null out pointer; E_NOINTERFACE and a null pointer when the interface is not offered;
  /// else S_OK and a pointer that carries a reference of its own.
  virtual Status QueryInterface(const Guid& iid, void** out) = 0;
  virtual std::uint32_t AddRef() = 0;
  virtual std::uint32_t Release() = 0;

 protected:
  ~IUnknown() = default;
};

/// An owning reference to an interface.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(std::nullptr_t) {}
  /// Adds a reference of its own to a borrowed pointer.
  explicit ComPtr(T* borrowed) : pointer_(borrowed) {
    if (pointer_) pointer_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.pointer_) {}
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ~ComPtr() { Reset(); }

  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }

  /// Takes over a reference that the caller already holds.
  static ComPtr Adopt(T* owned) {
    ComPtr result;
    result.pointer_ = owned;
    return result;
  }

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  T& operator*() const { return *pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

  void Reset() {
    if (T* pointer = std::exchange(pointer_, nullptr)) pointer->Release();
  }

  /// For out parameters: releases what is held and hands out the empty slot.
  T** Out() {
    Reset();
    return &pointer_;
  }
  void** OutVoid() { return reinterpret_cast<void**>(Out()); }

  /// Gives the reference away.
  T* Detach() { return std::exchange(pointer_, nullptr); }

  /// Stores a further reference in an out parameter of the caller's.
  void CopyTo(T** out) const {
    if (pointer_) pointer_->AddRef();
    *out = pointer_;
  }

 private:
  T* pointer_ = nullptr;
};

/// Asks an object for another of its interfaces; E_POINTER when there is no object to ask.
template <class T>
Status Query(IUnknown* object, ComPtr<T>* out) {
  out->Reset();
  if (!object) return E_POINTER;
  return object->QueryInterface(T::kIid, out->OutVoid());
}

}  // namespace orvo
