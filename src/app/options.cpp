#include "app/options.h"

#include <filesystem>

namespace orvo::app {

CLI::Validator NotEmpty() {
  return {[](const std::string& value) { return value.empty() ? "must not be empty" : ""; }, ""};
}

CLI::Validator IsFolder() {
  return {[](const std::string& value) {
            std::error_code error;
            const bool is_folder = std::filesystem::is_directory(value, error);
            return is_folder ? std::string() : fmt::format("{}: there is no such folder", value);
          },
          ""};
}

void AddFlag(CLI::App& command, const std::string& name, bool* flag, const std::string& help) {
  command.add_flag(name, *flag, help)->disable_flag_override();
}

void AddSettingsOptions(CLI::App& command, SettingsOptions* options) {
  command.add_option("--settings", options->file, "Settings file to start from")->type_name("FILE")->check(NotEmpty());
  command.add_option("--set", options->assignments, "Set one switch, after the settings file (repeatable)")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
}

}  // namespace orvo::app
