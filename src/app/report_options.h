#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "app/settings.h"
#include "capture/context/capture_engine.h"
#include "capture/source/packet_filter.h"

namespace orvo::app {

/// The options that every verb understands which makes reports.
struct ReportOptions {
  std::string out;
  std::string report;
  std::string templates;
  std::string filter;
  SettingsOptions settings;
  std::string locale;
  std::string code_page;
  std::string hosts;
  std::string trust;
  std::vector<std::string> limits;
  double apdex = 0.5;
  bool no_names = false;
  bool no_progress = false;
};

void AddReportOptions(CLI::App& command, ReportOptions* options);

/// Sets locale and encoding of the process. Ends the command (wrong usage) for those that there are not.
void ApplyLocale(const ReportOptions& options);

/// The filter that was asked for, or none. Ends the command (wrong usage) for an expression that makes no sense.
std::unique_ptr<PacketFilter> MakeFilter(const ReportOptions& options);

/// The engine as the options want it; `live` says that a capture is running. It knows the hosts, and offers its
/// classes.
std::unique_ptr<CaptureEngine> MakeEngine(const ReportOptions& options, bool live);

/// The folder of templates that was named, else the one that came with the command: in full, in the form of the
/// component's paths and with a separator at its end. Empty when there is none.
std::u16string TemplateFolder(const ReportOptions& options);

/// Warns when the templates of these options lack what the pages of a report in XML are made of: the report lacks it,
/// too.
void WarnOfMissingPages(const ReportOptions& options);

}  // namespace orvo::app
