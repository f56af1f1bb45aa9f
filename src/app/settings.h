#pragma once

#include <string>
#include <vector>

#include "platform/xml_interfaces.h"
#include "prefs/preferences.h"
#include "scheduler/scheduler.h"

namespace orvo::app {

/// What the options about settings said.
struct SettingsOptions {
  std::string file;                      ///< --settings FILE, empty when not given
  std::vector<std::string> assignments;  ///< --set NAME=VALUE
};

/// A document with settings: the elements "statsoutput" (when reports are made) and "StatsOutputPrefs" (what they
/// contain) or one of them, below a root "OrvoSettings" or by itself.
class SettingsFile {
 public:
  /// Ends the command for a file that cannot be read or holds neither.
  explicit SettingsFile(const std::string& file);

  /// Both change what the document names and nothing else, and end the command for a value that makes no sense; some
  /// may have been changed by then.
  void LoadInto(IStatsOutputPrefs& preferences) const;
  void LoadInto(ISkryStatsOutput& scheduler) const;
  /// A sentence about each element and attribute that is no setting, and so is passed over.
  std::vector<std::string> UnknownNames() const;

 private:
  Status Load(IUnknown* object) const;

  std::string file_;
  ComPtr<IXmlDocument> document_;
  ComPtr<IXmlNode> node_;  // whose children the elements are
};

/// Changes switches: by the settings file, then by the single assignments. Ends the command for a file that cannot be
/// read or holds no usable settings, and (wrong usage) for a switch that does not exist.
void ApplyPreferences(const SettingsOptions& options, IStatsOutputPrefs& preferences);

/// Prints a warning for each name in the settings file that is no setting's. Ends the command for a file that cannot be
/// read or holds no settings.
void WarnOfUnknownNames(const SettingsOptions& options);

/// New preferences, the defaults with these changes.
ComPtr<IStatsOutputPrefs> LoadPreferences(const SettingsOptions& options);

/// The settings document that holds these settings, with a sentence about each.
std::string SettingsDocument(IStatsOutputPrefs& preferences, ISkryStatsOutput& scheduler);

}  // namespace orvo::app
