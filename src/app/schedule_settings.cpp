#include "app/schedule_settings.h"

namespace orvo::app {
namespace {

// They stand in a comment of XML, which has no two hyphens in a row.
constexpr ScheduleSetting kSettings[] = {
    {"enabled", VT_I4, "kept, and without effect"},
    {"userPath", VT_BSTR, "the folder of all reports; the option out takes its place"},
    {"reportPath", VT_BSTR, "a name for the report sets in it: Daily gives Daily/Daily-(from) - (to)"},
    {"outputInterval", VT_UI4, "the time from report to report, at least 5 seconds (option every)"},
    {"outputIntervalUnit", VT_I4, "its unit: 1 seconds, 2 minutes, 3 hours, 4 days"},
    {"alignOutput", VT_I4, "1: reports come when the local clock shows a whole multiple of that time"},
    {"newSetEnabled", VT_I4, "1: reports go into dated report sets, 0: all into one folder"},
    {"newSetInterval", VT_UI4, "the time from report set to report set (option new-set)"},
    {"newSetIntervalUnit", VT_I4, "its unit"},
    {"alignNewSet", VT_I4, "1: sets begin when the local clock shows a whole multiple of that time"},
    {"keepEnabled", VT_I4, "1: old report sets of this run are deleted"},
    {"keep", VT_UI4, "how many report sets are kept (option keep)"},
    {"scheduled", VT_I4, "1: sets follow their own time, 0: every report begins a set"},
    {"notify", VT_I4, "1: each report is told of, by a line and by the program of option on-report"},
    {"ResetOutput", VT_I4, "1: counting begins anew after each report"},
    {"outputType", VT_I4, "0 csv, 1 tab, 2 xml, 4 pdf (option format)"},
};

}  // namespace

std::span<const ScheduleSetting> ScheduleSettings() {
  return kSettings;
}

}  // namespace orvo::app
