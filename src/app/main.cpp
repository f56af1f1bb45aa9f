#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <new>
#include <sstream>
#include <string_view>

#include "app/component.h"
#include "app/messages.h"
#include "app/options.h"
#include "app/usage.h"
#include "platform/class_factory.h"
#include "platform/privilege.h"

namespace orvo::app {
namespace {

constexpr const char* kFooter =
    "Messages go to standard error, what was asked for to standard output.\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage. See orvo-report(1).";

/// Prints what the parser has to say; its own exit statuses become the command's.
int ReportParsing(const CLI::App& parser, const CLI::ParseError& error, std::string_view first_word) {
  if (error.get_exit_code() == 0) {  // --help and --version
    std::ostringstream text;
    parser.exit(error, text, text);
    PrintOutput(text.str());
    return kDone;
  }
  PrintMessage(UsageMessage(parser, error, first_word));
  return kUsage;
}

/// Takes the places of standard streams that the caller has closed, so that no file of ours gets their numbers and is
/// mistaken for them. Opened the wrong way round, they go on failing whoever uses them.
void FillStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
    (void)!open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

int Run(int argc, char** argv) {
  FillStandardStreams();
  CLI::App parser("Turns network captures into report files.", "orvo-report");
  parser.set_version_flag("--version", "orvo-report " ORVO_VERSION);
  parser.require_subcommand(1);
  parser.get_formatter()->label("SUBCOMMAND", "WORD");
  parser.footer(kFooter);
  Verb verb;
  bool privileged = false;
  AddMakeCommand(parser, &verb);
  AddWatchCommand(parser, &verb, &privileged);
  AddViewCommand(parser, &verb);
  AddSettingsCommand(parser, &verb);
  AddClassesCommands(parser, &verb);
  for (CLI::App* word : parser.get_subcommands(nullptr)) word->group("Words");
  try {
    parser.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return ReportParsing(parser, error, argc > 1 ? argv[1] : "");
  }
  if (!privileged && HasBorrowedPrivileges()) Require(GiveUpPrivileges(), "privileges cannot be given up");
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
