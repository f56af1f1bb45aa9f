// The command as its users meet it: what it prints, what it writes, and how it ends.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/command.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kSample = ORVO_SOURCE_DIR "/samples/office.pcapng";
constexpr const char* kClassic = ORVO_SOURCE_DIR "/samples/nanoseconds.pcap";

/// The words that make the report of the sample.
std::vector<std::string> Make(const std::string& out, const std::vector<std::string>& more = {}) {
  std::vector<std::string> words = {"make", kSample, "--out", out};
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

/// One message, one line, with its sender, and the status of a failure.
void ExpectOneMessage(const CommandResult& result, const std::string& part, int status = 1) {
  EXPECT_EQ(result.exit_status, status) << part << ": " << result.messages;
  EXPECT_THAT(result.messages, AllOf(StartsWith("orvo-report: "), EndsWith("\n"), HasSubstr(part)));
  EXPECT_EQ(std::ranges::count(result.messages, '\n'), 1) << result.messages;
}

TEST(CommandTest, WrongUsageIsOneLineAndStatusTwo) {
  TemporaryFolder folder;
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, "the word that says what to do is missing (try: orvo-report --help)"},
      {{"--"}, "the word that says what to do is missing"},
      {{"mkae"}, "mkae: there is no such word; did you mean make? (try: orvo-report --help)"},
      {{"help"}, "help: there is no such word; did you mean --help?"},
      {{"frobnicate"}, "frobnicate: there is no such word (try"},
      {{"make"}, "CAPTURE is required (try: orvo-report make --help)"},
      {{"make", kSample}, "--out is required"},
      {{"make", kSample, "--out"}, "--out: its value is missing"},
      {{"make", kSample, "--out", "a", "--out", "b"}, "--out: may be given only once"},
      {Make(folder.Path(), {"--live=no"}), "--live: takes no value"},
      {Make(folder.Path(), {"--apdex", "0.5s"}), "--apdex: 0.5s: must be a number from"},
      {Make(folder.Path(), {"--templates", folder.Path("no")}), "no: there is no such folder"},
      {{"view", folder.Path(), "--port", "1.5"}, "--port: 1.5: must be a whole number from 0 to 65535"},
      {{"watch", "--out", folder.Path()}, "one of --interface and --replay must be given, and not both"},
      {{"classes", "all"}, "all: nothing is expected here (try: orvo-report classes --help)"},
      {Make(folder.Path(), {"--bogus"}), "--bogus: there is no such option (try"},
      {{"make", kSample, "--uot", folder.Path()}, "--uot: there is no such option; did you mean --out?"},
      {Make(folder.Path(), {"--Fromat=tab"}), "--Fromat: there is no such option; did you mean"},
      {{"watch", "--interfaces=lo"}, "--interfaces: there is no such option; did you mean --interface?"},
      {Make(""), "--out: must not be empty"},
      {Make(folder.Path(), {"--settings", ""}), "--settings: must not be empty"},
      {Make(folder.Path(), {"--locale", ""}), "--locale: must not be empty"},
      {Make(folder.Path(), {"--code-page", ""}), "--code-page: must not be empty"},
      {{"make", "", "--out", folder.Path()}, "CAPTURE: must not be empty"},
      {Make(folder.Path(), {"--format", "csv,doc"}), "--format doc: there is no such format"},
      {Make(folder.Path(), {"--format", ""}), "--format"},
      {Make(folder.Path(), {"--report", "short"}), "--report short: there is no such report"},
      {Make(folder.Path(), {"--filter", ""}), "--filter: must not be empty"},
      {Make(folder.Path(), {"--filter", "tcp prot 80"}), "--filter tcp prot 80: "},
      {Make(folder.Path(), {"--filter", "wlan host 10.0.0.1"}), "--filter wlan host 10.0.0.1: "},
      {Make(folder.Path(), {"--set", "NodeNmae=1"}), "--set NodeNmae: there is no such switch; did you mean Node"},
      {Make(folder.Path(), {"--set", "NodeName"}), "must read NAME=VALUE"},
      {Make(folder.Path(), {"--set", "NodeName=yes"}), "whole number"},
      {Make(folder.Path(), {"--set", "NodeName=99999999999"}), "whole number"},
      {Make(folder.Path(), {"--locale", "xx_YY"}), "--locale xx_YY"},
      {Make(folder.Path(), {"--code-page", "klingon"}), "--code-page klingon"},
      {Make(folder.Path(), {"--code-page", "UTF-16"}), "--code-page UTF-16"},
      {Make(folder.Path(), {"--limit", "rows=1"}), "--limit rows: there is no such limit"},
      {Make(folder.Path(), {"--limit", "names"}), "must read NAME=N"},
      {Make(folder.Path(), {"--limit", "names=-1"}), "whole number"},
      {Make(folder.Path(), {"--limit", "names=1000000001"}), "whole number"},
      {{"settings", "--set", "x\x1b[31my=1"}, "x?[31my"},
      {{"settings", "--set",
        "x\xC2\x9B"
        "31m\xC2\xA7y=1"},
       "x?31m\xC2\xA7y"},
  };
  for (const auto& [arguments, message] : cases) {
    const CommandResult result = RunCommand(arguments);
    EXPECT_EQ(result.output, "");
    ExpectOneMessage(result, message, 2);
  }
  EXPECT_THAT(folder.Names(), testing::IsEmpty()) << "nothing is written before the words are understood";
}

TEST(CommandTest, HelpIsThereForEveryVerb) {
  for (const std::string verb : {"", "make", "watch", "view", "settings", "classes", "register", "unregister"}) {
    std::vector<std::string> arguments = {"--help"};
    if (!verb.empty()) arguments.insert(arguments.begin(), verb);
    const CommandResult result = RunCommand(arguments);
    EXPECT_EQ(result.exit_status, 0);
    EXPECT_THAT(result.output, HasSubstr("Usage: orvo-report"));
    EXPECT_EQ(result.messages, "");
  }
  EXPECT_THAT(RunCommand({"--version"}).output, StartsWith("orvo-report "));
}

TEST(CommandTest, CapturesThatCannotBeReadAreOneLineAndStatusOne) {
  TemporaryFolder folder;
  const std::string capture = FileBytes(kClassic);
  folder.Write("empty.pcap", "");
  folder.Write("text.pcap", "this is no capture at all, whatever its name says");
  folder.Write("header-cut.pcap", capture.substr(0, 20));
  const std::pair<std::string, std::string> cases[] = {
      {folder.Path("missing.pcap"), "missing.pcap"},
      {folder.Path(), folder.Path()},
      {folder.Path("empty.pcap"), "empty"},
      {folder.Path("text.pcap"), "text.pcap"},
      {folder.Path("header-cut.pcap"), "header-cut.pcap"},
      {"/dev/null/x", "/dev/null/x"},
      {"/dev/zero", "neither a file nor a pipe"},
      {"-", "/dev/stdin"},
  };
  for (const auto& [path, message] : cases) {
    ExpectOneMessage(RunCommand({"make", path, "--out", folder.Path("out")}), message);
    EXPECT_FALSE(folder.Has("out")) << path;
  }
}

TEST(CommandTest, ACaptureThatIsCutOffIsReportedAsFarAsItGoes) {
  TemporaryFolder folder;
  const std::string capture = FileBytes(kClassic);
  folder.Write("cut.pcap", capture.substr(0, capture.size() - 7));
  ExpectOneMessage(RunCommand({"make", folder.Path("cut.pcap"), "--out", folder.Path("out")}), "warning: ", 0);
  EXPECT_TRUE(folder.Has("out/Node Statistics-IP.csv"));

  // A record that claims to be longer than any record can be ends the capture there.
  std::string lying = capture.substr(0, 24);
  lying.append("\0\0\0\0\0\0\0\0\xff\xff\xff\x7f\xff\xff\xff\x7f", 16);
  folder.Write("lying.pcap", lying + "abc");
  ExpectOneMessage(RunCommand({"make", folder.Path("lying.pcap"), "--out", folder.Path("out2")}), "warning: ", 0);
}

TEST(CommandTest, PrintsTheFilesThatItWrote) {
  TemporaryFolder folder;
  const CommandResult result = RunCommand(Make(folder.Path("a/b"), {"--format", "csv,tab,csv"}));
  EXPECT_EQ(result.exit_status, 0) << result.messages;
  EXPECT_EQ(result.messages, "");
  EXPECT_TRUE(folder.Has("a/b/csv/Node Statistics-IP.csv"));
  EXPECT_TRUE(folder.Has("a/b/tab/Node Statistics-IP.txt"));
  EXPECT_THAT(result.output, HasSubstr(folder.Path("a/b/csv/Node Statistics-IP.csv") + " ("));
  EXPECT_EQ(RunCommand(Make(folder.Path("a/b/csv"))).exit_status, 0);
  const std::vector<std::string> lines = Lines(folder.Read("a/b/csv/Node Statistics-IP.csv"));
  EXPECT_EQ(std::ranges::count_if(lines, [](const std::string& line) { return line.starts_with("Time Saved"); }), 1);
  EXPECT_EQ(lines.size() % 2, 1U) << "the second report adds as many rows as the first";
}

TEST(CommandTest, AnXmlReportTakesItsKindAndTemplates) {
  TemporaryFolder folder;
  std::filesystem::create_directories(folder.Path("templates/Reports"));
  folder.Write("templates/Reports/Report.htm", "the page");
  const CommandResult full =
      RunCommand(Make(folder.Path("full"), {"--format", "xml", "--templates", folder.Path("templates")}));
  EXPECT_EQ(full.exit_status, 0) << full.messages;
  EXPECT_THAT(full.messages, HasSubstr("templates/Reports: AdditionalExec_WChannelStats.xsl and "));
  EXPECT_EQ(folder.Read("full/Report.htm"), "the page");
  EXPECT_TRUE(folder.Has("full/ProtocolsMenu.htm"));
  EXPECT_THAT(full.output, HasSubstr(folder.Path("full/StatsReport.xml") + " ("));

  // The kind changes the preferences of the report that it is for, and of no other.
  const CommandResult both =
      RunCommand(Make(folder.Path("both"), {"--format", "xml,csv", "--report", "expert-summary"}));
  EXPECT_EQ(both.exit_status, 0) << both.messages;
  EXPECT_EQ(both.messages, "");
  EXPECT_FALSE(folder.Has("both/xml/ProtocolsMenu.htm"));
  // Templates come with the command.
  EXPECT_THAT(folder.Read("both/xml/Report.htm"), HasSubstr("MainMenu.htm"));
  EXPECT_TRUE(folder.Has("both/xml/Images/logo.gif"));
  EXPECT_TRUE(folder.Has("both/csv/Node Statistics-IP.csv"));
}

TEST(CommandTest, APdfReportStandsBesideOthersAndSaysWhyItCannotBeSaved) {
  TemporaryFolder folder;
  fs::create_directories(folder.Path("a/pdf/Report.pdf"));
  const std::vector<std::string> make = Make(folder.Path("a"), {"--format", "pdf,csv,xml"});
  ExpectOneMessage(RunCommand(make), folder.Path("a/pdf/Report.pdf") + ": ");
  EXPECT_TRUE(folder.Has("a/csv/Node Statistics-IP.csv")) << "the other reports are written";
  EXPECT_TRUE(folder.Has("a/xml/StatsReport.xml"));
  fs::remove(folder.Path("a/pdf/Report.pdf"));
  const CommandResult written = RunCommand(make);
  EXPECT_EQ(written.exit_status, 0) << written.messages;
  EXPECT_THAT(folder.Read("a/pdf/Report.pdf"), StartsWith("%PDF-"));

  // A page of graphs goes missing without its folder of pictures, and nothing else does.
  fs::remove(folder.Path("a/pdf/Temp"));
  folder.Write("a/pdf/Temp", "in the way");
  const CommandResult without_charts = RunCommand(make);
  EXPECT_EQ(without_charts.exit_status, 1);
  ExpectOneMessage(without_charts, folder.Path("a/pdf/Temp/TrafficGraph.png") + " (and 9 more): ");
  EXPECT_THAT(without_charts.output, HasSubstr(folder.Path("a/pdf/Report.pdf") + " ("));
  EXPECT_EQ(folder.Read("a/pdf/Temp"), "in the way");
}

TEST(CommandTest, AFilterLeavesOutWhatItDoesNotHoldFor) {
  TemporaryFolder folder;
  auto nodes = [&](const std::string& filter) {
    const CommandResult result = RunCommand(Make(folder.Path(filter), {"--filter", filter}));
    EXPECT_EQ(result.exit_status, 0);
    EXPECT_EQ(result.messages, "");
    return folder.Read(filter + "/Node Statistics-IP.csv");
  };
  EXPECT_THAT(nodes("host 192.0.2.22"), AllOf(HasSubstr("192.0.2.22,"), testing::Not(HasSubstr("0.0.0.0,"))));
  EXPECT_EQ(Lines(nodes("ether host 02:99:99:99:99:99")).size(), 1U) << "nothing but the header";
  ExpectOneMessage(RunCommand(Make(folder.Path("w"), {"--filter", "wlan type mgt subtype beacon"})),
                   "the filter: packets of link type 1 (EN10MB) are left out", 0);
}

TEST(CommandTest, OutputFoldersThatCannotBeHadAreOneLineAndStatusOne) {
  TemporaryFolder folder;
  folder.Write("file", "");
  ExpectOneMessage(RunCommand(Make(folder.Path("file/out"))), "file/out");
  ExpectOneMessage(RunCommand(Make(folder.Path("file"))), "file");
  if (geteuid() != 0) {
    fs::create_directory(folder.Path("closed"));
    chmod(folder.Path("closed").c_str(), 0555);
    ExpectOneMessage(RunCommand(Make(folder.Path("closed"))), "closed: cannot be written");
  }
}

TEST(CommandTest, OneCauseIsOneLineHoweverManyFilesItStops) {
  TemporaryFolder folder;
  for (const char* name : {"Node Statistics-IP.csv", "Node Statistics-IPv6.csv", "Summary Statistics.csv"}) {
    fs::create_directory(folder.Path(name));
  }
  ExpectOneMessage(RunCommand(Make(folder.Path())), "Summary Statistics.csv (and 2 more): ");
}

TEST(CommandTest, AFileThatCannotBeWrittenIsNamedAndTheOthersAreWritten) {
  TemporaryFolder folder;
  fs::create_directory(folder.Path("Node Statistics-IP.csv"));
  ExpectOneMessage(RunCommand(Make(folder.Path())), folder.Path("Node Statistics-IP.csv") + ": ");
  EXPECT_TRUE(folder.Has("Node Statistics-IPv6.csv"));
}

TEST(CommandTest, AReportWritesOnlyPlainFiles) {
  TemporaryFolder folder;
  fs::create_symlink("elsewhere", folder.Path("Node Statistics-IP.csv"));
  ExpectOneMessage(RunCommand(Make(folder.Path())), folder.Path("Node Statistics-IP.csv") + ": is a symbolic link");
  EXPECT_FALSE(folder.Has("elsewhere"));

  fs::remove(folder.Path("Node Statistics-IP.csv"));
  ASSERT_EQ(mkfifo(folder.Path("Node Statistics-IP.csv").c_str(), 0600), 0);
  ExpectOneMessage(RunCommand(Make(folder.Path())), folder.Path("Node Statistics-IP.csv") + ": is not a regular file");
}

TEST(CommandTest, SettingsGoRoundTripAndTellWhatIsWrong) {
  TemporaryFolder folder;
  const CommandResult template_document =
      RunCommand({"settings", "--set", "NodeTypeIPv6=0", "--set", "NodePackets=-7"});
  ASSERT_EQ(template_document.exit_status, 0) << template_document.messages;
  folder.Write("settings.xml", template_document.output);
  EXPECT_EQ(RunCommand({"settings", "--settings", folder.Path("settings.xml")}).output, template_document.output);
  EXPECT_THAT(template_document.output, AllOf(HasSubstr("NodeTypeIPv6=\"0\""), HasSubstr("NodePackets=\"-7\"")));
  // Every switch has its sentence.
  int switches = 0;
  for (const std::string& line : Lines(template_document.output)) {
    const std::size_t name_end = line.find("=\"");
    if (!line.starts_with("      ") || name_end == line.npos) continue;
    EXPECT_THAT(template_document.output, HasSubstr("\n" + line.substr(0, name_end) + ": "));
    ++switches;
  }
  EXPECT_EQ(switches, 126);

  EXPECT_EQ(RunCommand(Make(folder.Path("out"), {"--settings", folder.Path("settings.xml")})).exit_status, 0);
  EXPECT_FALSE(folder.Has("out/Node Statistics-IPv6.csv"));

  folder.Write("not-xml", "<StatsOutputPrefs><NodeStats");
  folder.Write("other.xml", "<other/>");
  folder.Write("no-number.xml", "<StatsOutputPrefs><NodeStats NodeName='1' NodePackets='many'/></StatsOutputPrefs>");
  folder.Write("long.xml",
               "<StatsOutputPrefs><NodeStats NodePackets='" + std::string(9999, '9') + "'/></StatsOutputPrefs>");
  folder.Write("huge.xml", "<StatsOutputPrefs>" + std::string(2 << 20, ' ') + "</StatsOutputPrefs>");
  ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  const std::pair<const char*, const char*> broken[] = {
      {"not-xml", "XML"},
      {"other.xml", "no settings"},
      {"no-number.xml", "NodePackets=\"many\""},
      {"long.xml", "99...\" is no whole number"},
      {"huge.xml", "too large for a settings file"},
      {"pipe", "not a regular file"},
      {"missing.xml", "missing.xml"},
  };
  for (const auto& [name, message] : broken) {
    ExpectOneMessage(RunCommand({"settings", "--settings", folder.Path(name)}), message);
  }
}

TEST(CommandTest, NamesInSettingsThatAreNoSettingsAreToldOf) {
  TemporaryFolder folder;
  const struct {
    const char* document;
    std::vector<std::string> warnings;
  } cases[] = {
      {"<OrvoSettings xmlns='urn:x'><statsoutput "
       "keep='3'/><StatsOutputPrefs><Graphs/></StatsOutputPrefs></OrvoSettings>",
       {}},
      {"<statsoutput outptInterval='5' Keep='3' colour='red'/>",
       {"statsoutput has no attribute outptInterval, it is passed over; did you mean outputInterval?",
        "statsoutput has no attribute Keep, it is passed over; did you mean keep?",
        "statsoutput has no attribute colour, it is passed over"}},
      {"<OrvoSettings><statsoutput/><StatsOutputPref/><StatsOutputPrefs OutputGraphs='0'><NodeStat/><Graphs/><Graphs/>"
       "<ProtocolStats NodePackets='0'/></StatsOutputPrefs></OrvoSettings>",
       {"there is no element StatsOutputPref in OrvoSettings, it is passed over; did you mean StatsOutputPrefs?",
        "StatsOutputPrefs has no attribute OutputGraphs, it is passed over; it belongs to Graphs",
        "there is no element NodeStat in StatsOutputPrefs, it is passed over; did you mean NodeStats?",
        "Graphs stands more than once in StatsOutputPrefs; only the first counts",
        "ProtocolStats has no attribute NodePackets, it is passed over; it belongs to NodeStats"}},
  };
  const std::string file = folder.Path("s.xml");
  for (const auto& one : cases) {
    folder.Write("s.xml", one.document);
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"settings"},
          {"make", kSample, "--out", folder.Path("out"), "--format", "csv,tab"}}) {
      std::vector<std::string> arguments = words;
      arguments.insert(arguments.end(), {"--settings", file});
      const CommandResult result = RunCommand(arguments);
      EXPECT_EQ(result.exit_status, 0);
      std::vector<std::string> expected;
      for (const std::string& warning : one.warnings) {
        expected.push_back("orvo-report: warning: " + file + ": " + warning);
      }
      EXPECT_EQ(Lines(result.messages), expected);
    }
  }
  std::string many = "<statsoutput";
  for (int i = 0; i < 20'000; ++i) many += " outputIntervals" + std::to_string(i) + "='1'";
  folder.Write("s.xml", many + "/>");
  const std::vector<std::string> messages = Lines(RunCommand({"settings", "--settings", file}).messages);
  ASSERT_EQ(messages.size(), 11U);
  EXPECT_THAT(messages.back(), HasSubstr(": 19990 more names are passed over"));
  ExpectOneMessage(RunCommand({"settings", "--set", "NodePacket=0"}), "no such switch; did you mean NodePackets?", 2);
}

TEST(CommandTest, LimitsFoldAwayAndAreToldInTheSummary) {
  TemporaryFolder folder;
  const std::vector<std::string> limits = {"--limit",         "conversations=9", "--limit",
                                           "conversations=2", "--limit",         "names=0"};
  ASSERT_EQ(RunCommand(Make(folder.Path("out"), limits)).exit_status, 0);
  EXPECT_EQ(Lines(folder.Read("out/Node-Protocol Detail Statistics.csv")).size(), 3U);
  const std::string summary = folder.Read("out/Summary Statistics.csv");
  for (const char* statistic : {"Packets of Conversations Not Listed,-,", "Names Not Listed,"}) {
    const std::size_t at = summary.find(statistic);
    ASSERT_NE(at, std::string::npos) << statistic;
    EXPECT_NE(summary[at + std::string_view(statistic).size()], '0') << statistic;
  }
}

TEST(CommandTest, NamesComeFromTheHostsFileAndTheCapture) {
  TemporaryFolder folder;
  const auto addresses = [&](const std::string& name, const std::vector<std::string>& options) {
    EXPECT_EQ(RunCommand(Make(folder.Path(name), options)).exit_status, 0);
    std::vector<std::string> found;
    for (const std::string& line : Lines(folder.Read(name + "/Node Statistics-IP.csv"))) {
      found.push_back(line.substr(line.find(',') + 1, line.find(',', line.find(',') + 1) - line.find(',') - 1));
    }
    return found;
  };
  EXPECT_THAT(addresses("plain", {"--no-names"}), AllOf(Contains("192.0.2.21"), Contains("192.0.2.10")));
  folder.Write("hosts", "192.0.2.21 desk # a remark\n");
  const std::vector<std::string> named = addresses("named", {"--hosts", folder.Path("hosts")});
  EXPECT_THAT(named, AllOf(Contains("desk"), Not(Contains("192.0.2.21")))) << "a line of the file";
  EXPECT_THAT(named, Contains("www.example.com")) << "an answer in the capture";
  ExpectOneMessage(RunCommand(Make(folder.Path("x"), {"--hosts", folder.Path("no")})), folder.Path("no"));
  EXPECT_FALSE(folder.Has("x"));
}

TEST(CommandTest, ClassesAreFoundBesideTheCommandAndInTheRegistry) {
  TemporaryFolder folder;
  const std::vector<std::pair<std::string, std::string>> registry = {
      {"ORVO_REGISTRY", folder.Path("deep/registry.xml")}};
  const CommandResult beside = RunCommand({"classes"}, registry);
  EXPECT_EQ(beside.exit_status, 0) << beside.messages;
  EXPECT_THAT(beside.output,
              AllOf(HasSubstr("CSVStatsOutput"), HasSubstr("StatsOutputPrefs"), HasSubstr("beside the command")));
  EXPECT_FALSE(folder.Has("deep")) << "looking makes no registry";

  EXPECT_EQ(RunCommand({"register"}, registry).exit_status, 0);
  EXPECT_EQ(RunCommand({"register"}, registry).exit_status, 0) << "again changes nothing";
  const CommandResult registered = RunCommand({"classes"}, registry);
  EXPECT_THAT(registered.output,
              AllOf(HasSubstr("OrvoReports.1"), HasSubstr("registered: "), Not(HasSubstr("beside"))));
  EXPECT_EQ(RunCommand(Make(folder.Path("out")), registry).exit_status, 0);

  EXPECT_EQ(RunCommand({"unregister"}, registry).exit_status, 0);
  EXPECT_EQ(RunCommand({"classes"}, registry).output, beside.output);
}

TEST(CommandTest, ADamagedRegistryIsNamedAndDoesNotHideTheLibraryBesideTheCommand) {
  TemporaryFolder folder;
  const std::vector<std::pair<std::string, std::string>> registry = {{"ORVO_REGISTRY", folder.Path("registry.xml")}};
  for (const char* damage : {"", "<registry version='1'><key", "<registry version='2'/>", "<other/>"}) {
    folder.Write("registry.xml", damage);
    for (const std::string verb : {"classes", "register", "unregister"}) {
      ExpectOneMessage(RunCommand({verb}, registry), folder.Path("registry.xml") + ": is no registry");
    }
    EXPECT_EQ(folder.Read("registry.xml"), damage) << "what cannot be read is not overwritten";
    EXPECT_EQ(RunCommand(Make(folder.Path("out")), registry).exit_status, 0);
  }
}

TEST(CommandTest, ARegistryThatCannotBeWrittenIsNamed) {
  ExpectOneMessage(RunCommand({"register"}, {{"ORVO_REGISTRY", "/proc/none/registry.xml"}}),
                   "cannot be registered in /proc/none/registry.xml: ");
}

TEST(CommandTest, ARegisteredLibraryThatIsGoneIsNamed) {
  TemporaryFolder folder;
  const std::vector<std::pair<std::string, std::string>> registry = {{"ORVO_REGISTRY", folder.Path("registry.xml")}};
  folder.Write("registry.xml",
               "<registry version='1'><key name='CLSID'><key name='{8B1DB8B2-D286-4AEE-92AC-5780C0DCC60E}'>"
               "<key name='InprocServer32' default='\\gone\\OrvoReports.so'/></key></key></registry>");
  EXPECT_THAT(RunCommand({"classes"}, registry).output, HasSubstr("registered: /gone/OrvoReports.so, not available: "));
  ExpectOneMessage(RunCommand(Make(folder.Path("out")), registry), "orvo-report classes");
}

TEST(CommandTest, OutputThatCannotBePrintedIsAFailure) {
  for (const std::string closed : {"> /dev/full", ">&-"}) {
    const CommandResult result =
        RunProgram("/bin/sh", {"-c", std::string(ORVO_BINARY_DIR) + "/bin/orvo-report settings " + closed});
    ExpectOneMessage(result, "standard output");
  }
}

TEST(CommandTest, MessagesThatCannotBePrintedChangeNothingElse) {
  TemporaryFolder folder;
  const std::string capture = FileBytes(kClassic);
  folder.Write("cut.pcap", capture.substr(0, capture.size() - 7));
  const std::string command = std::string(ORVO_BINARY_DIR) + "/bin/orvo-report make --out " + folder.Path("out") + " ";
  for (const std::string closed : {" 2> /dev/full", " 2>&-", " <&- 2>&-"}) {
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", command + "/nonexistent.pcap" + closed}).exit_status, 1) << closed;
    EXPECT_EQ(RunProgram("/bin/sh", {"-c", command + folder.Path("cut.pcap") + closed}).exit_status, 0) << closed;
  }
  EXPECT_THAT(folder.Read("out/Node Statistics-IP.csv"), Not(HasSubstr("warning")));
}

}  // namespace
}  // namespace orvo::test
