#pragma once

#include <string>
#include <string_view>

#include "platform/status.h"

namespace orvo::app {

/// The exit statuses of the command.
enum ExitStatus : int { kDone = 0, kFailed = 1, kUsage = 2 };

/// Ends the command with one line on standard error.
class CommandError {
 public:
  CommandError(ExitStatus exit_status, std::string message) : exit_status_(exit_status), message_(std::move(message)) {}
  ExitStatus exit_status() const { return exit_status_; }
  const std::string& message() const { return message_; }

 private:
  ExitStatus exit_status_;
  std::string message_;
};

/// One line on standard error behind "orvo-report: "; control characters of names are shown as "?", so that no name
/// plays with the terminal.
void PrintMessage(std::string_view message);
void PrintWarning(std::string_view message);

/// Writes to standard output; ends the command when that fails.
void PrintOutput(std::string_view text);

/// The text with its control characters, those of eight bits in UTF-8 included, shown as "?".
std::string Printable(std::string_view text);

/// Writes to standard error as it stands. Where it cannot be written there is nobody left to tell.
void WriteError(std::string_view text);

/// The system's message for a failing status, or its number where there is none.
std::string Describe(Status status);

/// Raises a CommandError "subject: cause" for a failing status.
void Require(Status status, std::string_view subject);

}  // namespace orvo::app
