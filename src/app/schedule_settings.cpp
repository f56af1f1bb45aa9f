#include "app/schedule_settings.h"

namespace orvo::app {
namespace {

constexpr bool kText = true;
constexpr bool kNumber = false;

// They stand in a comment of XML, which has no two hyphens in a row.
constexpr ScheduleSetting kSettings[] = {
    {"enabled", kNumber, "kept, and without effect"},
    {"userPath", kText, "the folder of all reports; the option out takes its place"},
    {"reportPath", kText, "a name for the report sets in it: Daily gives Daily/Daily-(from) - (to)"},
    {"outputInterval", kNumber, "the time from report to report, at least 5 seconds (option every)"},
    {"outputIntervalUnit", kNumber, "its unit: 1 seconds, 2 minutes, 3 hours, 4 days"},
    {"alignOutput", kNumber, "1: reports come when the local clock shows a whole multiple of that time"},
    {"newSetEnabled", kNumber, "1: reports go into dated report sets, 0: all into one folder"},
    {"newSetInterval", kNumber, "the time from report set to report set (option new-set)"},
    {"newSetIntervalUnit", kNumber, "its unit"},
    {"alignNewSet", kNumber, "1: sets begin when the local clock shows a whole multiple of that time"},
    {"keepEnabled", kNumber, "1: old report sets of this run are deleted"},
    {"keep", kNumber, "how many report sets are kept (option keep)"},
    {"scheduled", kNumber, "1: sets follow their own time, 0: every report begins a set"},
    {"notify", kNumber, "1: each report is told of, by a line and by the program of option on-report"},
    {"ResetOutput", kNumber, "1: counting begins anew after each report"},
    {"outputType", kNumber, "0 csv, 1 tab, 2 xml, 4 pdf (option format)"},
};

}  // namespace

std::span<const ScheduleSetting> ScheduleSettings() {
  return kSettings;
}

}  // namespace orvo::app
