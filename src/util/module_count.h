#pragma once

#include <atomic>
#include <cstdint>

namespace orvo {

/// Keeps the module loaded: everything that needs its code, a living object or a factory's lock, holds one of these.
class ModuleReference {
 public:
  ModuleReference() { Add(); }
  ~ModuleReference() { Remove(); }
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;

  /// For what cannot hold an object: a factory's lock.
  static void Add() { count_.fetch_add(1, std::memory_order_relaxed); }
  static void Remove() { count_.fetch_sub(1, std::memory_order_release); }

  /// How many there are now; the module may be unloaded when there are none.
  static std::uint32_t Count() { return count_.load(std::memory_order_acquire); }

 private:
  static inline std::atomic<std::uint32_t> count_{0};
};

}  // namespace orvo
