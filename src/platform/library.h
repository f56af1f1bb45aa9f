#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace orvo {

/// The one path in the system's form, free of links, of the library that a path with backslashes names.
/// Raises the platform's error when there is none, and access denied for an untrusted way to it as Library::Load does.
std::string LibraryPath(std::u16string_view path);

/// A loaded library, unloaded with the last holder.
class Library {
 public:
  /// Raises access denied for a library that anybody but root could change when the process has privileges that its
  /// user has not, and the cause when it cannot be loaded.
  static std::shared_ptr<Library> Load(const std::string& path);

  Library(std::string path, void* handle) : path_(std::move(path)), handle_(handle) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  const std::string& path() const { return path_; }

  /// An entry point; raises the status of ENOSYS when the library lacks it.
  template <class Function>
  Function* Entry(const char* name) const {
    return reinterpret_cast<Function*>(Symbol(name));
  }

  /// What the library answers to DllCanUnloadNow; false when it has no such entry.
  bool CanUnload() const;

 private:
  void* Symbol(const char* name) const;

  std::string path_;
  void* handle_;
};

}  // namespace orvo
