#include <fmt/core.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "app/browser.h"
#include "app/component.h"
#include "app/messages.h"
#include "app/options.h"
#include "app/report_server.h"
#include "app/served_folder.h"

namespace orvo::app {
namespace {

struct ViewOptions {
  std::string folder;
  std::string templates;
  int port = 0;
  bool open = false;
};

/// Ends the command when the folder has no page to begin with.
void RequirePages(const ServedFolder& folder, const std::string& path) {
  if (folder.Open("Report.htm")) return;
  std::string advice = "make one with --format xml";
  if (folder.Open("xml/Report.htm"))
    advice = fmt::format("did you mean {}?", (std::filesystem::path(path) / "xml").string());
  throw CommandError(kFailed,
                     fmt::format("{}: holds no report with pages, as Report.htm is missing ({})", path, advice));
}

TrustedPages PagesToTrust(const ViewOptions& options) {
  TrustedPages pages;
  pages.report = options.folder;
  pages.templates = options.templates.empty() ? TemplatesBesideCommand() : options.templates;
  pages.scripts = TrustedScripts(pages.templates);
  // Without any, no page of any report would be shown.
  if (pages.scripts.empty())
    throw CommandError(
        kFailed,
        fmt::format("{}: holds no pages of reports, as Reports/Report.htm is missing (--templates)", pages.templates));
  return pages;
}

/// Whoever waits for the page to say it has gone to the browser in vain.
void WarnOfRefusedPages(const ReportServer& server, const std::string& folder) {
  if (!server.Refuses("Report.htm")) return;
  PrintWarning(
      fmt::format("{}: Report.htm has a script of another version or of other templates, and is not shown; the "
                  "page that is shown instead says what to do",
                  folder));
}

int View(const ViewOptions& options) {
  const ServedFolder folder(options.folder);
  RequirePages(folder, options.folder);
  ReportServer server(folder, PagesToTrust(options));
  server.Bind(options.port);
  WarnOfRefusedPages(server, options.folder);

  // Blocked before there is a second thread, so that only the wait below gets them.
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  bool ended_well = false;
  std::thread work([&] {
    ended_well = server.Run();
    if (!ended_well) kill(getpid(), SIGTERM);
  });
  try {
    PrintOutput(server.Address() + "\n");
    if (isatty(STDERR_FILENO)) PrintMessage("press Ctrl-C to stop");
    if (options.open && !OpenInBrowser(server.Address()))
      PrintWarning("xdg-open cannot be started; open the address yourself");
    int signal = 0;
    sigwait(&signals, &signal);
  } catch (...) {
    server.Stop();
    work.join();
    throw;
  }
  server.Stop();
  work.join();
  if (!ended_well) throw CommandError(kFailed, "the system ended the server");
  return kDone;
}

}  // namespace

void AddViewCommand(CLI::App& parser, Verb* verb) {
  CLI::App* command = parser.add_subcommand("view", "Show a report of format xml in a browser");
  auto options = std::make_shared<ViewOptions>();
  command->add_option("DIR", options->folder, "Folder of the report")->required()->type_name("")->check(NotEmpty());
  command->add_option("--port", options->port, "Port of 127.0.0.1 to show it on (default: a free one)")
      ->type_name("N")
      ->check(InRange(0, 65535));
  command->add_option("--templates", options->templates, "Folder of the templates whose pages may run their scripts")
      ->type_name("DIR")
      ->check(IsFolder());
  AddFlag(*command, "--open", &options->open, "Start the desktop's browser");
  command->callback([verb, options] { *verb = [options] { return View(*options); }; });
}

}  // namespace orvo::app
