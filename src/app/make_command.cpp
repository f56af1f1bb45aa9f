#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "app/component.h"
#include "app/formats.h"
#include "app/limits.h"
#include "app/messages.h"
#include "app/options.h"
#include "app/progress.h"
#include "app/report_files.h"
#include "app/report_kinds.h"
#include "app/settings.h"
#include "capture/context/capture_engine.h"
#include "capture/source/capture_file.h"
#include "capture/source/merged_source.h"
#include "capture/source/packet_filter.h"
#include "frame/stats_output_method.h"
#include "platform/code_page.h"
#include "platform/locale.h"
#include "platform/path.h"

namespace orvo::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSystemHosts = "/etc/hosts";
/// Where Debian's package ieee-data keeps the registries of physical addresses.
constexpr const char* kVendorFolder = "/usr/share/ieee-data";

struct MakeOptions {
  std::vector<std::string> captures;
  std::string out;
  std::string filter;
  std::string formats = "csv";
  std::string report;
  std::string templates;
  SettingsOptions settings;
  std::string locale;
  std::string code_page;
  std::string hosts;
  std::string trust;
  std::vector<std::string> limits;
  double apdex = 0.5;
  bool live = false;
  bool no_names = false;
  bool no_progress = false;
};

void ApplyLocale(const MakeOptions& options) {
  if (!options.locale.empty() && Failed(SetUserLocale(options.locale))) {
    throw CommandError(kUsage, fmt::format("--locale {}: there is no such locale", options.locale));
  }
  if (!options.code_page.empty() && Failed(SetCodePage(options.code_page))) {
    throw CommandError(
        kUsage, fmt::format("--code-page {}: is unknown, or lacks ASCII (try UTF-8, windows-1252)", options.code_page));
  }
}

/// A format, what its report is to contain, and the folder that it goes into. A report may change its preferences, so
/// that each has its own.
struct Target {
  const Format* format;
  ComPtr<IStatsOutputPrefs> preferences;
  fs::path folder{};
};

/// Makes a folder with its parents and gives it in full. Ends the command when no file can be made in it.
fs::path MakeFolder(const fs::path& path) {
  std::error_code error;
  fs::path folder = fs::absolute(path, error);
  if (!error) fs::create_directories(folder, error);
  if (error) throw CommandError(kFailed, fmt::format("{}: cannot be made: {}", path.string(), error.message()));
  if (access(folder.c_str(), W_OK | X_OK) != 0) {
    throw CommandError(kFailed,
                       fmt::format("{}: cannot be written: {}", path.string(), Describe(StatusFromErrno(errno))));
  }
  return folder;
}

std::vector<Target> ChooseTargets(const MakeOptions& options) {
  std::vector<Target> targets;
  for (const Format* format : ParseFormats(options.formats)) {
    targets.push_back({.format = format, .preferences = LoadPreferences(options.settings)});
    ChooseReport(options.report, *targets.back().preferences);
  }
  return targets;
}

/// The folder of each format: the one that was named, or, since several formats would mix their files there, one for
/// each below it.
void MakeFolders(const MakeOptions& options, std::vector<Target>* targets) {
  const fs::path out(options.out);
  for (Target& target : *targets) {
    target.folder = MakeFolder(targets->size() == 1 ? out : out / target.format->name);
  }
}

/// The filter that was asked for, or none.
std::unique_ptr<PacketFilter> MakeFilter(const std::string& expression) {
  if (expression.empty()) return nullptr;
  SourceError error;
  auto filter = PacketFilter::Make(expression, &error);
  if (!filter) throw CommandError(kUsage, fmt::format("--filter {}", error.message));
  return filter;
}

/// Names from the system's file, where there is one, and from the user's, which counts more.
void LearnHosts(const MakeOptions& options, CaptureEngine& engine) {
  engine.LearnHosts(kSystemHosts);
  if (!options.hosts.empty()) Require(engine.LearnHosts(options.hosts), options.hosts);
}

/// What the user thinks of nodes of a wireless medium.
void ReadTrust(const std::string& path, EngineOptions* options) {
  std::string bad_line;
  const Status status = ReadTrustFile(path, &options->trusted_addresses, &bad_line);
  if (!bad_line.empty()) {
    throw CommandError(kUsage, fmt::format("--trust {}: \"{}\" must read ADDRESS known or ADDRESS trusted", path,
                                           Printable(bad_line)));
  }
  Require(status, path);
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
  Progress progress(!options.no_progress, "reading " + what);
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

/// The cause of a file's failure. Whatever is not a plain file is refused without saying why.
std::string WhyNotWritten(const ReportFiles::File& file) {
  std::error_code error;
  const fs::file_status kind = fs::symlink_status(file.path, error);
  if (file.status == StatusFromError(kErrorAccessDenied)) {
    if (fs::is_symlink(kind)) return "is a symbolic link, which a report does not follow; remove it";
    if (fs::exists(kind) && !fs::is_regular_file(kind)) return "is not a regular file; remove it";
  }
  return Describe(file.status);
}

/// Prints the files that were written, and one message for each cause that kept others from it. False when there are
/// such.
bool PrintFiles(const ReportFiles& files) {
  std::map<std::string, std::vector<std::string>> failed;
  for (const ReportFiles::File& file : files.files()) {
    if (Failed(file.status)) {
      failed[WhyNotWritten(file)].push_back(file.path);
    } else {
      PrintOutput(fmt::format("{} ({} {})\n", Printable(file.path), file.rows, file.rows == 1 ? "row" : "rows"));
    }
  }
  for (const auto& [cause, paths] : failed) {
    const std::string others = paths.size() == 1 ? "" : fmt::format(" (and {} more)", paths.size() - 1);
    PrintMessage(fmt::format("{}{}: {}", paths.front(), others, cause));
  }
  return failed.empty();
}

/// The length of the capture in whole seconds, a part of one counting as a second: a report of it covers it all.
std::uint32_t SecondsOf(IStatsContext& context) {
  constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
  std::uint64_t duration = 0;
  Require(context.GetDuration(&duration), "the capture's duration");
  const std::uint64_t seconds = duration / kNanosecondsPerSecond + (duration % kNanosecondsPerSecond != 0 ? 1 : 0);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(seconds, std::numeric_limits<std::uint32_t>::max()));
}

/// The folder of templates that was named, else the one that came with the command: in full, in the form of the
/// component's paths and with a separator at its end. Empty when there is none.
std::u16string TemplateFolder(const MakeOptions& options) {
  const std::string templates = options.templates.empty() ? TemplatesBesideCommand() : options.templates;
  if (templates.empty()) return {};
  return PathFromSystem((fs::absolute(templates) / "").string());
}

/// Writes one report in one format. False when one of its files failed.
bool WriteReport(const MakeOptions& options, const Target& target, CaptureEngine& engine) {
  const Format& format = *target.format;
  auto files = MakeObject<ReportFiles>();
  engine.SetObserver(files.get());
  auto method = CreateComponent<IStatsOutputMethod>(format.method, fmt::format("the report library ({})", format.name));
  Require(method->SetFormat(Bstr(format.extension).get(), Bstr(format.separator).get(), target.preferences.get(),
                            Bstr(TemplateFolder(options)).get()),
          format.name);

  const Bstr report_folder(PathFromSystem(target.folder.string() + "/"));
  ComPtr<IStatsContext> context = engine.Context();
  Require(method->SetInterval(SecondsOf(*context)), format.name);
  ComPtr<IGraphCollection> graphs = engine.Graphs();
  Status status = options.live ? method->OutputLive(context.get(), report_folder.get(), graphs.get())
                               : method->Output(report_folder.get(), context.get(), graphs.get());
  engine.SetObserver(nullptr);
  Require(status, target.folder.string());
  return PrintFiles(*files);
}

int Make(const MakeOptions& options) {
  // Whatever can be wrong with the words and folders is found before the long work begins.
  ApplyLocale(options);
  std::vector<Target> targets = ChooseTargets(options);
  const std::unique_ptr<PacketFilter> filter = MakeFilter(options.filter);
  EngineOptions engine_options{.plain_addresses = options.no_names, .vendor_folder = kVendorFolder};
  engine_options.apdex_target = static_cast<std::uint64_t>(options.apdex * 1e9);
  ApplyLimits(options.limits, &engine_options);
  if (!options.trust.empty()) ReadTrust(options.trust, &engine_options);
  CaptureEngine engine(engine_options);
  LearnHosts(options, engine);
  Require(engine.RegisterClasses(), "the capture engine");
  const Sources sources = OpenCaptures(options.captures);
  MakeFolders(options, &targets);

  ReadCaptures(options, sources, filter.get(), engine);
  bool all_written = true;
  for (const Target& target : targets) all_written &= WriteReport(options, target, engine);
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
      ->add_option("--out", options->out, "Folder of the report, made when missing; a report that is there is added to")
      ->required()
      ->type_name("DIR")
      ->check(NotEmpty());
  command->add_option("--format", options->formats, "Report forms, joined by commas: " + FormatNames())
      ->type_name("LIST")
      ->capture_default_str();
  command->add_option("--report", options->report, "What the xml form contains: " + ReportNames())
      ->type_name("KIND")
      ->check(NotEmpty());
  command
      ->add_option("--templates", options->templates,
                   "Folder whose Reports holds the pages of the xml form (default: those that came along)")
      ->type_name("DIR")
      ->check(NotEmpty());
  command
      ->add_option("--filter", options->filter, "Count only packets that this expression holds for, see pcap-filter(7)")
      ->type_name("EXPR")
      ->check(NotEmpty());
  AddSettingsOptions(*command, &options->settings);
  command->add_flag("--live", options->live, "Report straight from the live statistics, marked with the current time");
  command->add_flag("--no-names", options->no_names, "Write plain addresses instead of names");
  command->add_option("--hosts", options->hosts, "Names of addresses, in the form of /etc/hosts, before all others")
      ->type_name("FILE")
      ->check(NotEmpty());
  command->add_option("--trust", options->trust, "Wireless nodes: on each line an address, and known or trusted")
      ->type_name("FILE")
      ->check(NotEmpty());
  command->add_option("--limit", options->limits, "Rows that the engine keeps, as a bound on memory: " + LimitNames())
      ->type_name("NAME=N")
      ->allow_extra_args(false);
  command->add_option("--apdex", options->apdex, "Within how many seconds an answer satisfies")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.000001, 86400.0))
      ->capture_default_str();
  command->add_option("--locale", options->locale, "Locale of dates and times (default: the environment's)")
      ->type_name("NAME")
      ->check(NotEmpty());
  command->add_option("--code-page", options->code_page, "Encoding of text files (default: the locale's, else UTF-8)")
      ->type_name("NAME")
      ->check(NotEmpty());
  command->add_flag("--no-progress", options->no_progress, "Show no progress on a terminal");
  command->callback([verb, options] { *verb = [options] { return Make(*options); }; });
}

}  // namespace orvo::app
