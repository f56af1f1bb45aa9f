#pragma once

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <functional>
#include <string>
#include <system_error>
#include <type_traits>

#include "app/settings.h"

namespace orvo::app {

/// A verb of the command, added to the parser: its work is done after parsing, and gives the exit status.
using Verb = std::function<int()>;

/// Each adds its verb with its options; `verb` is set when the user asked for it.
void AddMakeCommand(CLI::App& parser, Verb* verb);
/// This verb may need privileges that its user has not, and gives them up by itself; `privileged` is set then.
void AddWatchCommand(CLI::App& parser, Verb* verb, bool* privileged);
void AddViewCommand(CLI::App& parser, Verb* verb);
void AddSettingsCommand(CLI::App& parser, Verb* verb);
void AddClassesCommands(CLI::App& parser, Verb* verb);

/// Refuses the empty text, which a script passes for a variable that it forgot to set.
CLI::Validator NotEmpty();

/// Refuses what names no folder.
CLI::Validator IsFolder();

/// Refuses what is no number of this range: a whole one for limits that are whole numbers.
template <class Number>
CLI::Validator InRange(Number least, Number most) {
  return {[=](const std::string& text) {
            Number value{};
            const char* end = text.data() + text.size();
            const auto [read, error] = std::from_chars(text.data(), end, value);
            if (error == std::errc() && read == end && value >= least && value <= most) return std::string();
            return fmt::format("{}: must be a {}number from {} to {}", text, std::is_integral_v<Number> ? "whole " : "",
                               least, most);
          },
          ""};
}

/// A switch of the command line, which takes no value.
void AddFlag(CLI::App& command, const std::string& name, bool* flag, const std::string& help);

/// --settings and --set, which mean the same everywhere.
void AddSettingsOptions(CLI::App& command, SettingsOptions* options);

}  // namespace orvo::app
