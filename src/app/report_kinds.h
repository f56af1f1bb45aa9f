#pragma once

#include <string>

#include "prefs/preferences.h"

namespace orvo::app {

/// "full, executive-summary, ...": the names that ChooseReport knows.
std::string ReportNames();

/// Sets the switches that make a report one of that kind, in place of any other. Nothing for the empty name, which
/// leaves it to the settings; ends the command (wrong usage) for a name that is none.
void ChooseReport(const std::string& name, IStatsOutputPrefs& preferences);

}  // namespace orvo::app
