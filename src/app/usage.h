#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace orvo::app {

/// What was wrong with the words of a call, and which help tells more. `first` is the first of them, if there is one.
std::string UsageMessage(const CLI::App& parser, const CLI::ParseError& error, std::string_view first);

}  // namespace orvo::app
