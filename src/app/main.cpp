#include <fmt/core.h>

#include <csignal>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

#include "app/component.h"
#include "app/messages.h"
#include "app/options.h"
#include "platform/class_factory.h"

namespace orvo::app {
namespace {

constexpr const char* kFooter =
    "Messages go to standard error, what was asked for to standard output.\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage. See orvo-report(1).";

/// Prints what the parser has to say; its own exit statuses become the command's.
int ReportParsing(CLI::App& parser, const CLI::ParseError& error, std::string_view first_word) {
  if (error.get_exit_code() == 0) {  // --help and --version
    std::ostringstream text;
    parser.exit(error, text, text);
    PrintOutput(text.str());
    return kDone;
  }
  std::string message = error.what();
  // The parser misses the verb where it should name the word that is none.
  if (parser.get_subcommands().empty() && !first_word.empty() && !first_word.starts_with('-')) {
    message = fmt::format("{}: there is no such verb", first_word);
  }
  PrintMessage(fmt::format("{} (try: orvo-report --help)", message));
  return kUsage;
}

int Run(int argc, char** argv) {
  CLI::App parser("Turns network captures into report files.", "orvo-report");
  parser.set_version_flag("--version", "orvo-report " ORVO_VERSION);
  parser.require_subcommand(1);
  parser.footer(kFooter);
  Verb verb;
  AddMakeCommand(parser, &verb);
  AddSettingsCommand(parser, &verb);
  AddClassesCommands(parser, &verb);
  try {
    parser.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return ReportParsing(parser, error, argc > 1 ? argv[1] : "");
  }
  UseLibraryBesideCommand();
  int status = verb();
  FreeUnusedLibraries();
  return status;
}

}  // namespace
}  // namespace orvo::app

int main(int argc, char** argv) {
  // A file size limit is a failed write like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return orvo::app::Run(argc, argv);
  } catch (const orvo::app::CommandError& error) {
    orvo::app::PrintMessage(error.message());
    return error.exit_status();
  } catch (const std::bad_alloc&) {
    orvo::app::PrintMessage("there is not enough memory");
  } catch (const std::exception& error) {
    orvo::app::PrintMessage(error.what());
  }
  return orvo::app::kFailed;
}
