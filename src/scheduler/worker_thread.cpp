#include "scheduler/worker_thread.h"

#include <cstdint>
#include <utility>

#include "platform/error.h"
#include "scheduler/worker.h"
#include "util/module_count.h"

namespace orvo {
namespace {

constexpr std::uint32_t kPatience = 30'000;  // milliseconds

/// What the thread takes with it.
struct Task {
  ModuleReference module;
  std::shared_ptr<WorkerControl> control;
  Worker worker;
};

Status RunTask(void* argument) {
  std::unique_ptr<Task> task(static_cast<Task*>(argument));
  const std::shared_ptr<WorkerControl> control = task->control;
  const Status status = task->worker.Run();
  // The end is told when nothing is held any more.
  task.reset();
  control->ended->Set();
  return status;
}

}  // namespace

WorkerThread::WorkerThread(std::shared_ptr<SchedulerState> state)
    : state_(std::move(state)), control_(std::make_shared<WorkerControl>()) {
  std::unique_ptr<Task> task(new Task{{}, control_, Worker(state_, control_)});
  Check(thread_.Start(RunTask, task.get()));
  (void)task.release();  // the thread's own from now on
}

WorkerThread::~WorkerThread() {
  control_->stopping = true;
  control_->stop->Set();
  state_->calls.WakeUp();
  if (thread_.IsCurrent()) {
    control_->parting = Parting::kAfterOutput;
  } else if (control_->ended->Wait(kPatience) != WaitResult::kSignalled) {
    control_->parting = Parting::kAtOnce;
  }
  // Nobody joins the thread, which now lets the library go: whoever stops a scheduler while a library is being unloaded
  // holds the lock that this takes.
  thread_.Detach();
}

}  // namespace orvo
