#include <fmt/core.h>

#include <string>

#include "app/component.h"
#include "app/options.h"
#include "frame/stats_output_method.h"
#include "platform/code_page.h"
#include "platform/registry.h"
#include "prefs/preferences.h"
#include "scheduler/scheduler.h"

namespace orvo::app {
namespace {

struct KnownClass {
  const char* name;
  Guid class_id;
};

constexpr KnownClass kClasses[] = {
    {"CSVStatsOutput", kCsvStatsOutputClass},
    {"SkryStatsOutput", kSkryStatsOutputClass},
    {"StatsOutputPrefs", kStatsOutputPrefsClass},
    {"XMLStatsOutput", kXmlStatsOutputClass},
};

std::u16string ClassKey(const Guid& class_id) {
  return u"CLSID\\" + FormatGuid(class_id);
}

/// The registry. Ends the command, with the file's name, when there is one that cannot be used.
Registry ReadRegistry() {
  Registry registry;
  const Status status = Registry::Read(&registry);
  if (status == E_FAIL) {
    throw CommandError(kFailed, fmt::format("{}: is no registry, or a damaged one; remove it and register again",
                                            Registry::FilePath()));
  }
  if (status == E_OUTOFMEMORY) {
    throw CommandError(kFailed, fmt::format("{}: is too large for a registry", Registry::FilePath()));
  }
  Require(status, Registry::FilePath());
  return registry;
}

/// Where a class comes from: what the registry says, else the library beside the command, and why it cannot be had.
std::string Origin(const Registry& registry, const KnownClass& known) {
  ComPtr<IClassFactory> factory;
  const Status status = GetClassObject(known.class_id, IClassFactory::kIid, factory.OutVoid());
  std::string origin = "not registered";
  if (auto path = registry.Value(ClassKey(known.class_id) + u"\\InprocServer32")) {
    origin = "registered: " + SystemPath(*path);
  } else if (const std::u16string beside = LibraryBesideCommand(); !beside.empty()) {
    origin = "not registered, found beside the command: " + SystemPath(beside);
  }
  return Failed(status) ? fmt::format("{}, not available: {}", origin, Describe(status)) : origin;
}

int ListClasses() {
  const Registry registry = ReadRegistry();
  for (const KnownClass& known : kClasses) {
    const std::string prog_id = ToUtf8(registry.Value(ClassKey(known.class_id) + u"\\ProgID").value_or(u"-"));
    PrintOutput(fmt::format("{}  {:<17} {:<33} {}\n", ToUtf8(FormatGuid(known.class_id)), known.name, prog_id,
                            Printable(Origin(registry, known))));
  }
  return kDone;
}

/// Lets the library write or remove its own entries.
int CallLibrary(const char* entry, const char* done) {
  const std::u16string library = LibraryBesideCommand();
  if (library.empty()) throw CommandError(kFailed, "OrvoReports.so: not found beside the command");
  const std::string path = SystemPath(library);
  ReadRegistry();
  Require(CallLibraryEntry(library, entry), fmt::format("{}: cannot be {} in {}", path, done, Registry::FilePath()));
  PrintOutput(fmt::format("{} {} in {}\n", Printable(path), done, Printable(Registry::FilePath())));
  return kDone;
}

}  // namespace

void AddClassesCommands(CLI::App& parser, Verb* verb) {
  parser.add_subcommand("classes", "List the component classes and where each comes from")->callback([verb] {
    *verb = ListClasses;
  });
  parser.add_subcommand("register", "Enter the component classes into the registry")->callback([verb] {
    *verb = [] { return CallLibrary("DllRegisterServer", "registered"); };
  });
  parser.add_subcommand("unregister", "Remove the component classes from the registry")->callback([verb] {
    *verb = [] { return CallLibrary("DllUnregisterServer", "removed"); };
  });
}

}  // namespace orvo::app
