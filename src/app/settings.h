#pragma once

#include <string>
#include <vector>

#include "prefs/preferences.h"

namespace orvo::app {

/// What the options about settings said.
struct SettingsOptions {
  std::string file;                      ///< --settings FILE, empty when not given
  std::vector<std::string> assignments;  ///< --set NAME=VALUE
};

/// The report switches: defaults, then the settings file, then the single assignments. Ends the command for a file that
/// cannot be read or holds no usable settings, and (wrong usage) for a switch that does not exist.
ComPtr<IStatsOutputPrefs> LoadPreferences(const SettingsOptions& options);

/// The settings document that holds these switches, with a sentence about each.
std::string SettingsDocument(IStatsOutputPrefs& preferences);

}  // namespace orvo::app
