#pragma once

#include <exception>
#include <new>
#include <type_traits>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// Carries a failing status from where it arose to the boundary that returns it.
class ORVO_PLATFORM_API StatusError : public std::exception {
 public:
  explicit StatusError(Status status) : status_(status) {}
  ~StatusError() override;
  const char* what() const noexcept override;
  Status status() const { return status_; }

 private:
  Status status_;
};

[[noreturn]] ORVO_PLATFORM_API void Raise(Status status);

/// Raises a failing status; hands a success status (S_FALSE included) on to the caller.
inline Status Check(Status status) {
  if (Failed(status)) Raise(status);
  return status;
}

/// The boundary of an operation or section: runs the body and turns what it raises into a status.
/// A body that returns a Status gives that; one that returns nothing gives S_OK.
/// A StatusError gives its own status, a failed allocation E_OUTOFMEMORY, anything else E_UNEXPECTED.
template <class Body>
Status Guard(Body&& body) noexcept {
  try {
    if constexpr (std::is_void_v<decltype(body())>) {
      body();
      return S_OK;
    } else {
      return body();
    }
  } catch (const StatusError& error) {
    return error.status();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace orvo
