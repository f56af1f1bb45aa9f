#include "platform/error.h"

namespace orvo {

StatusError::~StatusError() = default;

const char* StatusError::what() const noexcept {
  return "an operation returned a failing status";
}

void Raise(Status status) {
  throw StatusError(status);
}

}  // namespace orvo
