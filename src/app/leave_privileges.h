#pragma once

#include <filesystem>

namespace orvo::app {

/// Gives up all privileges, once what they were needed for is open. Root goes on as the owner of the folder, or of what
/// is there of the way to it, so that reports belong to whom the folder does. Ends the command when that fails.
void LeavePrivileges(const std::filesystem::path& folder);

}  // namespace orvo::app
