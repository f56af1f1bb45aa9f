#include "app/wakeup.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>

#include "app/messages.h"

namespace orvo::app {
namespace {

sigset_t SetOf(std::initializer_list<int> signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) sigaddset(&set, signal);
  return set;
}

}  // namespace

Wakeup::Wakeup() {
  const sigset_t taken = SetOf({SIGINT, SIGTERM, SIGHUP, SIGCHLD});
  // Whoever started us may have it ignored; the system would then not tell of programs that end.
  std::signal(SIGCHLD, SIG_DFL);
  pthread_sigmask(SIG_BLOCK, &taken, nullptr);
  signals_ = signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK);
  event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (signals_ < 0 || event_ < 0) {
    const Status status = StatusFromErrno(errno);
    if (signals_ >= 0) close(signals_);
    throw CommandError(kFailed, "signals: " + Describe(status));
  }
}

Wakeup::~Wakeup() {
  close(event_);
  close(signals_);
}

void Wakeup::Wait(int milliseconds, int descriptor) {
  std::array<pollfd, 3> ends{{{signals_, POLLIN, 0}, {event_, POLLIN, 0}, {descriptor, POLLIN, 0}}};
  if (poll(ends.data(), ends.size(), milliseconds) <= 0) return;
  std::uint64_t count = 0;
  (void)!read(event_, &count, sizeof count);
}

// NOLINTBEGIN(readability-make-member-function-const): these change what waits, if not the object.
void Wakeup::Wake() noexcept {
  const std::uint64_t one = 1;
  (void)!write(event_, &one, sizeof one);
}

std::optional<int> Wakeup::NextSignal() {
  signalfd_siginfo signal{};
  if (read(signals_, &signal, sizeof signal) != static_cast<ssize_t>(sizeof signal)) return std::nullopt;
  return static_cast<int>(signal.ssi_signo);
}
// NOLINTEND(readability-make-member-function-const)

void Wakeup::EndBy(int signal) {
  const sigset_t ending = SetOf({signal});
  std::signal(signal, SIG_DFL);
  pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
  std::raise(signal);
  std::abort();
}

}  // namespace orvo::app
