#include <memory>

#include "app/messages.h"
#include "app/options.h"
#include "app/schedule.h"
#include "app/settings.h"

namespace orvo::app {

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
