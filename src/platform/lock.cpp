#include "platform/lock.h"

#include <utility>

namespace orvo {
namespace {

thread_local Status next_failure = S_OK;

}  // namespace

CriticalSection::~CriticalSection() {
  if (ready_) pthread_mutex_destroy(&mutex_);
}

Status CriticalSection::Initialise() {
  if (Status failure = std::exchange(next_failure, S_OK); Failed(failure)) return failure;
  if (ready_) return S_OK;
  pthread_mutexattr_t attributes;
  int error = pthread_mutexattr_init(&attributes);
  if (error != 0) return StatusFromErrno(error);
  error = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  if (error == 0) error = pthread_mutex_init(&mutex_, &attributes);
  pthread_mutexattr_destroy(&attributes);
  if (error != 0) return StatusFromErrno(error);
  ready_ = true;
  return S_OK;
}

void CriticalSection::lock() {
  pthread_mutex_lock(&mutex_);
}

void CriticalSection::unlock() {
  pthread_mutex_unlock(&mutex_);
}

void FailNextCriticalSection(Status status) {
  next_failure = status;
}

}  // namespace orvo
