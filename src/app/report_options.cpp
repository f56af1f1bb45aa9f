#include "app/report_options.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "app/component.h"
#include "app/limits.h"
#include "app/messages.h"
#include "app/options.h"
#include "app/report_kinds.h"
#include "capture/names/trust_file.h"
#include "platform/code_page.h"
#include "platform/locale.h"
#include "platform/path.h"

namespace orvo::app {
namespace {

constexpr const char* kSystemHosts = "/etc/hosts";
/// Where Debian's package ieee-data keeps the registries of physical addresses.
constexpr const char* kVendorFolder = "/usr/share/ieee-data";

/// Names from the system's file, where there is one, and from the user's, which counts more.
void LearnHosts(const ReportOptions& options, CaptureEngine& engine) {
  engine.LearnHosts(kSystemHosts);
  if (options.hosts.empty()) return;
  const std::string subject = "--hosts " + options.hosts;
  const Status status = engine.LearnHosts(options.hosts);
  Require(status, subject);
  if (status == S_FALSE && !options.no_names)
    PrintWarning(subject + ": names no address; each line must read ADDRESS NAME");
}

/// What the user thinks of nodes of a wireless medium.
void ReadTrust(const std::string& path, EngineOptions* options) {
  std::string bad_line;
  const Status status = ReadTrustFile(path, &options->trusted_addresses, &bad_line);
  if (!bad_line.empty()) {
    throw CommandError(kUsage, fmt::format("--trust {}: \"{}\" must read ADDRESS known or ADDRESS trusted", path,
                                           Printable(bad_line)));
  }
  Require(status, "--trust " + path);
}

struct TextOption {
  const char* name;
  std::string ReportOptions::*value;
  const char* type;
  std::string help;
  CLI::Validator check = NotEmpty();
};

}  // namespace

void AddReportOptions(CLI::App& command, ReportOptions* options) {
  const TextOption texts[] = {
      {"--report", &ReportOptions::report, "KIND", "What the xml form contains: " + ReportNames()},
      {"--templates", &ReportOptions::templates, "DIR",
       "Folder with StatMap.xml, and Reports with the pages of the xml form (default: those that came along)",
       IsFolder()},
      {"--filter", &ReportOptions::filter, "EXPR",
       "Count only packets that this expression holds for, see pcap-filter(7)"},
      {"--hosts", &ReportOptions::hosts, "FILE", "Names of addresses, in the form of /etc/hosts, before all others"},
      {"--trust", &ReportOptions::trust, "FILE", "Wireless nodes: on each line an address, and known or trusted"},
      {"--locale", &ReportOptions::locale, "NAME", "Locale of dates and times (default: the environment's)"},
      {"--code-page", &ReportOptions::code_page, "NAME", "Encoding of text files (default: the locale's, else UTF-8)"},
  };
  for (const TextOption& text : texts) {
    command.add_option(text.name, options->*text.value, text.help)->type_name(text.type)->check(text.check);
  }
  AddSettingsOptions(command, &options->settings);
  AddFlag(command, "--no-names", &options->no_names, "Write plain addresses instead of names");
  command.add_option("--limit", options->limits, "Rows that the engine keeps, as a bound on memory: " + LimitNames())
      ->type_name("NAME=N")
      ->allow_extra_args(false);
  command.add_option("--apdex", options->apdex, "Within how many seconds an answer satisfies")
      ->type_name("SECONDS")
      ->check(InRange(0.000001, 86400.0))
      ->capture_default_str();
  AddFlag(command, "--no-progress", &options->no_progress, "Show no progress on a terminal");
}

void ApplyLocale(const ReportOptions& options) {
  if (!options.locale.empty() && Failed(SetUserLocale(options.locale))) {
    throw CommandError(kUsage, fmt::format("--locale {}: there is no such locale (try de_DE, en-GB)", options.locale));
  }
  if (!options.code_page.empty() && Failed(SetCodePage(options.code_page))) {
    throw CommandError(
        kUsage, fmt::format("--code-page {}: is unknown, or lacks ASCII (try UTF-8, windows-1252)", options.code_page));
  }
}

std::unique_ptr<PacketFilter> MakeFilter(const ReportOptions& options) {
  if (options.filter.empty()) return nullptr;
  SourceError error;
  auto filter = PacketFilter::Make(options.filter, &error);
  if (!filter) throw CommandError(kUsage, fmt::format("--filter {} (see pcap-filter(7))", error.message));
  return filter;
}

std::unique_ptr<CaptureEngine> MakeEngine(const ReportOptions& options, bool live) {
  EngineOptions engine_options{.live = live, .plain_addresses = options.no_names, .vendor_folder = kVendorFolder};
  engine_options.apdex_target = static_cast<std::uint64_t>(options.apdex * 1e9);
  ApplyLimits(options.limits, &engine_options);
  if (!options.trust.empty()) ReadTrust(options.trust, &engine_options);
  auto engine = std::make_unique<CaptureEngine>(engine_options);
  LearnHosts(options, *engine);
  Require(engine->RegisterClasses(), "the capture engine");
  return engine;
}

std::u16string TemplateFolder(const ReportOptions& options) {
  const std::string templates = options.templates.empty() ? TemplatesBesideCommand() : options.templates;
  if (templates.empty()) return {};
  return PathFromSystem((std::filesystem::absolute(templates) / "").string());
}

void WarnOfMissingPages(const ReportOptions& options) {
  namespace fs = std::filesystem;
  const fs::path complete = fs::path(TemplatesBesideCommand()) / "Reports";
  const fs::path wanted = options.templates.empty() ? complete : fs::path(options.templates) / "Reports";
  std::error_code error;
  if (!fs::exists(wanted / "Report.htm", error)) {
    PrintWarning(fmt::format("{}: Report.htm is missing, so the report gets no page to begin with (--templates)",
                             Printable(wanted.string())));
    return;
  }
  std::vector<std::string> missing;
  for (const fs::directory_entry& file : fs::recursive_directory_iterator(complete, error)) {
    const fs::path name = file.path().lexically_relative(complete);
    if (!fs::exists(wanted / name, error)) missing.push_back(name.string());
  }
  if (missing.empty()) return;
  std::ranges::sort(missing);
  const std::string others = missing.size() == 1 ? "" : fmt::format(" and {} others", missing.size() - 1);
  PrintWarning(fmt::format("{}: {}{} missing, so some pages of the report show less (--templates)",
                           Printable(wanted.string()), missing.front() + others, missing.size() == 1 ? " is" : " are"));
}

}  // namespace orvo::app
