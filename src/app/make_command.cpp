#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "app/component.h"
#include "app/formats.h"
#include "app/messages.h"
#include "app/options.h"
#include "app/progress.h"
#include "app/report_files.h"
#include "app/report_folder.h"
#include "app/report_kinds.h"
#include "app/report_options.h"
#include "capture/context/capture_engine.h"
#include "capture/source/capture_file.h"
#include "capture/source/merged_source.h"
#include "capture/source/packet_filter.h"
#include "frame/stats_output_method.h"
#include "platform/path.h"

namespace orvo::app {
namespace {

namespace fs = std::filesystem;

struct MakeOptions {
  std::vector<std::string> captures;
  std::string formats = "csv";
  bool live = false;
  ReportOptions common;
};

/// A format, what its report is to contain, and the folder that it goes into. A report may change its preferences, so
/// that each has its own.
struct Target {
  const Format* format;
  ComPtr<IStatsOutputPrefs> preferences;
  fs::path folder{};
};

/// Of the formats, this one has pages, and kinds of reports to choose among.
bool IsXml(const Target& target) {
  return target.format->type == kOutputXml;
}

std::vector<Target> ChooseTargets(const MakeOptions& options) {
  std::vector<Target> targets;
  WarnOfUnknownNames(options.common.settings);
  for (const Format* format : ParseFormats(options.formats)) {
    targets.push_back({.format = format, .preferences = LoadPreferences(options.common.settings)});
    ChooseReport(options.common.report, *targets.back().preferences);
  }
  if (!options.common.report.empty() && std::ranges::none_of(targets, IsXml)) {
    PrintWarning("--report chooses among reports of format xml; the one of any other format is full");
  }
  return targets;
}

/// The folder of each format: the one that was named, or, since several formats would mix their files there, one for
/// each below it.
void MakeFolders(const MakeOptions& options, std::vector<Target>* targets) {
  const fs::path out(options.common.out);
  for (Target& target : *targets) {
    target.folder = MakeFolder(targets->size() == 1 ? out : out / target.format->name);
  }
}

using Sources = std::vector<std::unique_ptr<PacketSource>>;

/// Opens every capture before any is read, so that a wrong name costs no time.
Sources OpenCaptures(const std::vector<std::string>& captures) {
  Sources sources;
  for (const std::string& capture : captures) {
    SourceError error;
    sources.push_back(OpenCaptureFile(capture, &error));
    if (!sources.back()) throw CommandError(kFailed, error.message);
  }
  return sources;
}

void PrintWarningOf(const PacketSource& source) {
  if (Failed(source.warning().status)) PrintWarning(source.warning().message);
}

/// Reads all captures into the engine, as one. What is wrong with one of them is a warning: the report shows what is
/// there.
void ReadCaptures(const MakeOptions& options, const Sources& sources, PacketFilter* filter, CaptureEngine& engine) {
  std::vector<PacketSource*> parts;
  for (const auto& source : sources) parts.push_back(source.get());
  MergedSource merged(parts);
  std::unique_ptr<FilteredSource> filtered;
  if (filter) filtered = std::make_unique<FilteredSource>(&merged, filter);
  PacketSource& source = filtered ? static_cast<PacketSource&>(*filtered) : merged;

  const std::string what = parts.size() == 1 ? fs::path(options.captures.front()).filename().string()
                                             : fmt::format("{} captures", parts.size());
  Progress progress(!options.common.no_progress, "reading " + what);
  constexpr std::uint64_t kPacketsBetweenLooks = 4096;
  constexpr std::size_t kMostAtOnce = 1024;
  std::vector<Packet> room(kMostAtOnce);
  std::uint64_t packets = 0;
  std::uint64_t next_look = kPacketsBetweenLooks;
  while (const std::size_t count = source.NextBatch(room)) {
    engine.Feed(std::span(room).first(count));
    packets += count;
    if (packets >= next_look) {
      const SourceProgress read = source.progress();
      progress.Update(read.bytes_read, read.bytes_total, packets);
      next_look = packets + kPacketsBetweenLooks;
    }
  }
  progress.Clear();
  engine.SetDropped(source.dropped());
  for (const PacketSource* part : parts) PrintWarningOf(*part);
  PrintWarningOf(source);
}

/// Prints the files that were written, and one message for each cause that kept others from it. False when there are
/// such.
bool PrintFiles(const ReportFiles& files) {
  for (const ReportFiles::File& file : files.files()) {
    if (Failed(file.status)) continue;
    PrintOutput(fmt::format("{} ({} {})\n", Printable(file.path), file.rows, file.rows == 1 ? "row" : "rows"));
  }
  const std::vector<std::string> problems = files.Problems();
  for (const std::string& problem : problems) PrintMessage(problem);
  return problems.empty();
}

/// The length of the capture in whole seconds, a part of one counting as a second: a report of it covers it all.
std::uint32_t SecondsOf(IStatsContext& context) {
  constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
  std::uint64_t duration = 0;
  Require(context.GetDuration(&duration), "the capture's duration");
  const std::uint64_t seconds = duration / kNanosecondsPerSecond + (duration % kNanosecondsPerSecond != 0 ? 1 : 0);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(seconds, std::numeric_limits<std::uint32_t>::max()));
}

/// Writes one report in one format, while the line says so. False when one of its files failed.
bool WriteReport(const MakeOptions& options, const Target& target, CaptureEngine& engine, StatusLine* line) {
  const Format& format = *target.format;
  auto files = MakeObject<ReportFiles>();
  engine.SetObserver(files.get());
  auto method = CreateComponent<IStatsOutputMethod>(format.method, fmt::format("the report library ({})", format.name));
  Require(method->SetFormat(Bstr(format.extension).get(), Bstr(format.separator).get(), target.preferences.get(),
                            Bstr(TemplateFolder(options.common)).get()),
          format.name);

  const Bstr report_folder(PathFromSystem(target.folder.string() + "/"));
  ComPtr<IStatsContext> context = engine.Context();
  Require(method->SetInterval(SecondsOf(*context)), format.name);
  ComPtr<IGraphCollection> graphs = engine.Graphs();
  Status status = options.live ? method->OutputLive(context.get(), report_folder.get(), graphs.get())
                               : method->Output(report_folder.get(), context.get(), graphs.get());
  engine.SetObserver(nullptr);
  line->Clear();
  // A file that failed tells the cause better than the report that failed with it.
  const bool all_written = PrintFiles(*files);
  if (all_written) Require(status, target.folder.string());
  return all_written;
}

/// Ends an engine at the end of its process: it offers nothing any more, but its memory is left to the system, which
/// takes all of it at once, while freeing the millions of pieces that a large capture leaves behind takes a while.
struct LeaveToSystem {
  void operator()(CaptureEngine* engine) const {
    static CaptureEngine* volatile left = nullptr;  // kept, though nobody reads it: it is not lost memory
    left = engine;
    left->RevokeClasses();
  }
};

int Make(const MakeOptions& options) {
  // Whatever can be wrong with the words and folders is found before the long work begins.
  ApplyLocale(options.common);
  std::vector<Target> targets = ChooseTargets(options);
  const std::unique_ptr<PacketFilter> filter = MakeFilter(options.common);
  const std::unique_ptr<CaptureEngine, LeaveToSystem> engine(MakeEngine(options.common, /*live=*/false).release());
  const Sources sources = OpenCaptures(options.captures);
  MakeFolders(options, &targets);
  if (std::ranges::any_of(targets, IsXml)) WarnOfMissingPages(options.common);

  ReadCaptures(options, sources, filter.get(), *engine);
  bool all_written = true;
  for (const Target& target : targets) {
    StatusLine line(!options.common.no_progress);
    line.Show(fmt::format("writing the report ({})", target.format->name));
    all_written &= WriteReport(options, target, *engine, &line);
  }
  return all_written ? kDone : kFailed;
}

}  // namespace

void AddMakeCommand(CLI::App& parser, Verb* verb) {
  CLI::App* command = parser.add_subcommand("make", "Read a capture and write its report");
  auto options = std::make_shared<MakeOptions>();
  command
      ->add_option("CAPTURE", options->captures,
                   "Capture files (pcap, pcapng, also gzip or zstd), read as one in the order of their times")
      ->required()
      ->type_name("")
      ->check(NotEmpty());
  command
      ->add_option("--out", options->common.out,
                   "Folder of the report, made when missing; a text or xml report that is there is added to")
      ->required()
      ->type_name("DIR")
      ->check(NotEmpty());
  command->add_option("--format", options->formats, "Report forms, joined by commas: " + FormatNames())
      ->type_name("LIST")
      ->capture_default_str();
  AddFlag(*command, "--live", &options->live, "Report straight from the live statistics, marked with the current time");
  AddReportOptions(*command, &options->common);
  command->callback([verb, options] { *verb = [options] { return Make(*options); }; });
}

}  // namespace orvo::app
