#pragma once

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

}  // namespace orvo::test
