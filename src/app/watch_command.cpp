#include <fmt/core.h>

#include <charconv>
#include <filesystem>
#include <memory>
#include <string>

#include "app/formats.h"
#include "app/leave_privileges.h"
#include "app/messages.h"
#include "app/options.h"
#include "app/report_folder.h"
#include "app/report_options.h"
#include "app/watch.h"
#include "capture/source/capture_file.h"
#include "capture/source/interface_source.h"
#include "capture/source/link_state.h"
#include "capture/source/replay_source.h"

namespace orvo::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter =
    "An interval is a whole number and its unit, s, m, h or d: 5s to 49d. Reports come when the local\n"
    "clock shows a multiple of it. Each is told of by a line on standard output: time, info or error, text.\n"
    "SIGINT and SIGTERM end the watch, as do the end of a replay and an interface that fails: what was\n"
    "counted since the last report is written as one more, at once, and a second signal does without.\n"
    "SIGHUP reads the settings file again; what the options say stays.";

struct WatchOptions {
  ReportOptions common;
  std::string interface;
  std::string replay;
  double speed = 1;
  std::string format;
  std::string every;
  std::string new_set;
  std::string keep;
  std::string on_report;
};

std::uint32_t ParseKeep(const std::string& text) {
  std::uint32_t keep = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), keep);
  if (error != std::errc() || end != text.data() + text.size() || keep == 0) {
    throw CommandError(kUsage, fmt::format("--keep {}: must be a whole number from 1 on, or all", text));
  }
  return keep;
}

ScheduleChoice ParseChoice(const WatchOptions& options) {
  ScheduleChoice choice;
  if (!options.every.empty()) choice.every = ParseInterval("--every", options.every);
  choice.no_sets = options.new_set == "never";
  if (!options.new_set.empty() && !choice.no_sets) choice.new_set = ParseInterval("--new-set", options.new_set);
  choice.keep_all = options.keep == "all";
  if (!options.keep.empty() && !choice.keep_all) choice.keep = ParseKeep(options.keep);
  if (!options.format.empty()) {
    const std::vector<const Format*> formats = ParseFormats(options.format);
    if (formats.size() != 1) throw CommandError(kUsage, "--format: watch writes one format at a time");
    choice.format = formats.front();
  }
  return choice;
}

/// A capture file at its pace, or an interface, with all that hangs on it.
struct Source {
  std::unique_ptr<PacketSource> file;
  std::unique_ptr<PacketFilter> filter;
  std::unique_ptr<PacketSource> filtered;
  std::unique_ptr<WaitingSource> waiting;
};

Source OpenReplay(const WatchOptions& options) {
  Source source{.file = nullptr, .filter = MakeFilter(options.common), .filtered = nullptr, .waiting = nullptr};
  SourceError error;
  source.file = OpenCaptureFile(options.replay, &error);
  if (!source.file) throw CommandError(kFailed, error.message);
  PacketSource* read = source.file.get();
  if (source.filter) {
    source.filtered = std::make_unique<FilteredSource>(read, source.filter.get());
    read = source.filtered.get();
  }
  source.waiting = std::make_unique<ReplaySource>(read, options.speed, ProcessClock());
  return source;
}

Source OpenLive(const WatchOptions& options) {
  MakeFilter(options.common);  // which says what is wrong with an expression for all links
  Source source;
  SourceError error;
  source.waiting = OpenInterface(options.interface, {.filter = options.common.filter}, &error);
  if (!source.waiting) throw CommandError(kFailed, error.message);
  LeavePrivileges(options.common.out);
  return source;
}

/// What is wrong with a part of the source; false when something is.
bool PrintWarningOf(const PacketSource* source) {
  if (!source || Succeeded(source->warning().status)) return true;
  PrintWarning(source->warning().message);
  return false;
}

int RunWatch(const WatchOptions& options) {
  // Whatever can be wrong with the words is found before the long work begins.
  ApplyLocale(options.common);
  ScheduleChoice choice = ParseChoice(options);
  ReportPrograms programs(options.on_report);
  const bool live = !options.interface.empty();
  const Source source = live ? OpenLive(options) : OpenReplay(options);
  LinkState link(options.interface);
  // From here on there are threads, which have the privileges and signals of the one that starts them.
  Wakeup wakeup;
  const std::unique_ptr<CaptureEngine> engine = MakeEngine(options.common, live);
  choice.out = MakeFolder(options.common.out).string();

  bool done = false;
  {
    Watch watch({.options = options.common,
                 .choice = choice,
                 .what = live ? options.interface : fs::path(options.replay).filename().string(),
                 .source = *source.waiting,
                 .waiting = *source.waiting,
                 .link = link,
                 .engine = *engine,
                 .wakeup = wakeup,
                 .programs = programs});
    done = watch.Run();
  }
  // A capture that is cut off is reported on as far as it goes; an interface that failed should be watched again.
  PrintWarningOf(source.file.get());
  PrintWarningOf(source.filtered.get());
  const bool sound = PrintWarningOf(source.waiting.get());
  return done && sound ? kDone : kFailed;
}

}  // namespace

void AddWatchCommand(CLI::App& parser, Verb* verb, bool* privileged) {
  CLI::App* command = parser.add_subcommand("watch", "Make reports on a schedule while packets are counted");
  auto options = std::make_shared<WatchOptions>();
  auto* what = command->add_option_group("source");
  what->add_option("--interface", options->interface, "Count the packets of this network interface (any: of all)")
      ->type_name("IF")
      ->check(NotEmpty());
  CLI::Option* replay =
      what->add_option("--replay", options->replay, "Count those of a capture, at the pace of their times")
          ->type_name("CAPTURE")
          ->check(NotEmpty());
  what->require_option(1);
  command->add_option("--speed", options->speed, "Replay so many times as fast")
      ->type_name("N")
      ->check(InRange(0.001, 1e9))
      ->needs(replay)
      ->capture_default_str();
  command->add_option("--out", options->common.out, "Folder of all reports, made when missing")
      ->required()
      ->type_name("DIR")
      ->check(NotEmpty());
  const struct {
    const char* name;
    std::string WatchOptions::*value;
    const char* type;
    std::string help;
  } texts[] = {
      {"--format", &WatchOptions::format, "FORMAT", "Report form: " + FormatNames() + " (default: csv)"},
      {"--every", &WatchOptions::every, "INTERVAL", "Time from report to report (default: 1h)"},
      {"--new-set", &WatchOptions::new_set, "INTERVAL",
       "Time from one dated folder to the next, or never (default: 1d)"},
      {"--keep", &WatchOptions::keep, "N", "How many of these folders are kept, or all (default: 7)"},
      {"--on-report", &WatchOptions::on_report, "PROGRAM",
       "Run this after each report, with severity (0 written, 3 failed) and text as arguments"},
  };
  for (const auto& text : texts) {
    command->add_option(text.name, *options.*text.value, text.help)->type_name(text.type)->check(NotEmpty());
  }
  AddReportOptions(*command, &options->common);
  command->footer(kFooter);
  command->callback([verb, privileged, options] {
    *privileged = !options->interface.empty();
    *verb = [options] { return RunWatch(*options); };
  });
}

}  // namespace orvo::app
