#include "platform/thread.h"

#include <dlfcn.h>
#include <link.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace orvo {
namespace {

thread_local Status next_failure = S_OK;
thread_local std::uint64_t own_number = 0;  // that of the Thread that runs here; 0: none
std::atomic<std::uint64_t> last_number{0};

struct Task {
  std::uint64_t number;
  Thread::Function* function;
  void* argument;
  void* library;  // held while the function runs; null for the program itself
};

/// Takes a hold of the library in which the address lies; false when it cannot be had.
bool HoldLibrary(const void* address, void** library) {
  Dl_info info{};
  void* map = nullptr;
  if (dladdr1(address, &info, &map, RTLD_DL_LINKMAP) == 0) return false;
  // The program has no name, and never goes.
  const char* name = static_cast<const link_map*>(map)->l_name;
  if (!name || *name == '\0') return true;
  *library = dlopen(name, RTLD_NOW | RTLD_NOLOAD);
  return *library != nullptr;
}

/// This library is never unloaded, and so the one place from which another can be let go by the thread that has just
/// left it.
void* RunTask(void* argument) {
  const Task task = *std::unique_ptr<Task>(static_cast<Task*>(argument));
  own_number = task.number;
  const Status status = task.function(task.argument);
  if (task.library) dlclose(task.library);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the only way in which a thread hands out a number.
  return reinterpret_cast<void*>(static_cast<std::intptr_t>(status));
}

int CreateWithoutSignals(pthread_t* thread, Task* task) {
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const int error = pthread_create(thread, nullptr, RunTask, task);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return error;
}

}  // namespace

Status Thread::Start(Function* function, void* argument) {
  if (const Status failure = std::exchange(next_failure, S_OK); Failed(failure)) return failure;
  std::unique_ptr<Task> task(new (std::nothrow) Task{++last_number, function, argument, nullptr});
  if (!task) return E_OUTOFMEMORY;
  if (!HoldLibrary(reinterpret_cast<const void*>(function), &task->library)) return StatusFromErrno(ELIBBAD);
  number_ = task->number;
  if (const int error = CreateWithoutSignals(&thread_, task.get()); error != 0) {
    number_ = 0;
    if (task->library) dlclose(task->library);
    return StatusFromErrno(error);
  }
  (void)task.release();  // the thread's own from now on
  return S_OK;
}

bool Thread::IsCurrent() const {
  return number_ != 0 && number_ == own_number;
}

Status Thread::Join() {
  void* result = nullptr;
  if (number_ != 0) pthread_join(thread_, &result);
  number_ = 0;  // not before: until its end the thread is to know itself
  return static_cast<Status>(reinterpret_cast<std::intptr_t>(result));
}

void Thread::Detach() {
  if (std::exchange(number_, 0) != 0) pthread_detach(thread_);
}

void FailNextThread(Status status) {
  next_failure = status;
}

}  // namespace orvo
