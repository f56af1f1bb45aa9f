#include <fmt/core.h>

#include <memory>

#include "app/messages.h"
#include "app/options.h"
#include "app/schedule.h"
#include "app/settings.h"

namespace orvo::app {

CLI::Validator NotEmpty() {
  return {[](const std::string& value) { return value.empty() ? "must not be empty" : ""; }, ""};
}

void AddSettingsOptions(CLI::App& command, SettingsOptions* options) {
  command.add_option("--settings", options->file, "Settings file to start from")->type_name("FILE")->check(NotEmpty());
  command.add_option("--set", options->assignments, "Set one switch, after the settings file (repeatable)")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
}

void AddSettingsCommand(CLI::App& parser, Verb* verb) {
  CLI::App* command = parser.add_subcommand("settings", "Print the settings document, every switch explained");
  auto options = std::make_shared<SettingsOptions>();
  AddSettingsOptions(*command, options.get());
  command->callback([verb, options] {
    *verb = [options] {
      const ComPtr<ISkryStatsOutput> scheduler = MakeScheduler();
      WarnOfUnknownNames(*options);
      if (!options->file.empty()) SettingsFile(options->file).LoadInto(*scheduler);
      PrintOutput(SettingsDocument(*LoadPreferences(*options), *scheduler));
      return static_cast<int>(kDone);
    };
  });
}

}  // namespace orvo::app
