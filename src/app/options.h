#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

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

/// --settings and --set, which mean the same everywhere.
void AddSettingsOptions(CLI::App& command, SettingsOptions* options);

}  // namespace orvo::app
