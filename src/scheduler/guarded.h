#pragma once

#include <mutex>
#include <utility>

namespace orvo {

/// A value with a small lock of its own. What is replaced ends after the lock is given back, so that the end of an
/// object may lead back here.
template <class T>
class Guarded {
 public:
  Guarded() = default;
  explicit Guarded(T value) : value_(std::move(value)) {}

  T Get() const {
    std::lock_guard hold(mutex_);
    return value_;
  }

  void Set(T value) {
    std::lock_guard hold(mutex_);
    std::swap(value_, value);
  }

  /// Gives what `body` makes of the value.
  template <class Body>
  auto Read(Body&& body) const {
    std::lock_guard hold(mutex_);
    return body(value_);
  }

  template <class Body>
  auto Change(Body&& body) {
    std::lock_guard hold(mutex_);
    return body(value_);
  }

 private:
  mutable std::mutex mutex_;
  T value_{};
};

}  // namespace orvo
