#pragma once

#include <filesystem>

namespace orvo::app {

/// Makes a folder with its parents and gives it in full. Ends the command when no file can be made in it.
std::filesystem::path MakeFolder(const std::filesystem::path& path);

}  // namespace orvo::app
