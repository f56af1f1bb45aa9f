#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace orvo::test {

/// How a run of the command ended, and what it said.
struct CommandResult {
  int exit_status = -1;  ///< 128 + signal when a signal ended it
  std::string output;
  std::string messages;
};

/// Runs the built `orvo-report` with these arguments, without a shell, in UTC and the C locale unless `environment`
/// says otherwise (a name with an empty value is removed). Its registry is one that does not exist.
CommandResult RunCommand(const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment = {});

/// The same for any program, by its path.
CommandResult RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment = {});

/// A run of the built `orvo-report` that goes on while the test does something else. Whatever is left of it is killed.
class RunningCommand {
 public:
  explicit RunningCommand(const std::vector<std::string>& arguments,
                          const std::vector<std::pair<std::string, std::string>>& environment = {});
  RunningCommand(const std::string& program, const std::vector<std::string>& arguments,
                 const std::vector<std::pair<std::string, std::string>>& environment);
  RunningCommand(const RunningCommand&) = delete;
  RunningCommand& operator=(const RunningCommand&) = delete;
  ~RunningCommand();

  pid_t process() const { return process_; }
  /// What has come of its output so far.
  const std::string& output() const { return result_.output; }
  void Signal(int signal) const;
  /// Waits until what it said, on either stream, contains the text as often as that. False when it ended before, or
  /// said nothing for a minute.
  bool WaitFor(const std::string& text, int times = 1);
  /// Reads on for so long, or until it ends.
  void ReadFor(std::chrono::milliseconds time);
  /// Waits for the end. May be called once.
  CommandResult Finish();

 private:
  struct Stream {
    int descriptor;
    std::string CommandResult::*text;
  };

  /// Reads what there is, waiting for it up to that time (negative: without end); false at the end of both streams.
  bool Read(int milliseconds);

  pid_t process_ = -1;
  std::vector<Stream> streams_;
  CommandResult result_;
};

}  // namespace orvo::test
