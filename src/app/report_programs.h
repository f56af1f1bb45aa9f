#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace orvo::app {

/// The program of --on-report: run once for each notification with two arguments, the severity as a number and the
/// text. No shell sees them. A few run at a time, the others wait their turn. Used by one thread, in a process that
/// takes SIGCHLD for a reason to call Tend.
class ReportPrograms {
 public:
  /// `program` is a path, or a name to be looked up in PATH; empty for none. Ends the command (wrong usage) when there
  /// is no such program.
  explicit ReportPrograms(const std::string& program);

  void Add(std::uint32_t severity, const std::string& text);
  /// Takes note of programs that have ended, and starts those that wait. Prints a warning for one that could not be
  /// started or did not end well.
  void Tend();

  std::size_t running() const { return running_.size(); }
  std::size_t waiting() const { return waiting_.size(); }

 private:
  struct Call {
    std::uint32_t severity;
    std::string text;
  };

  void Reap();
  void Start(const Call& call);
  void Warn(const std::string& what) const;

  std::string program_;  // its path, free of PATH
  std::vector<pid_t> running_;
  std::deque<Call> waiting_;
};

}  // namespace orvo::app
