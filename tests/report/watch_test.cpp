// `orvo-report watch` as its users meet it. Captures are replayed at once, or so slowly that a test has all the time
// that it needs; only the last test waits for the clock.

#include <gmock/gmock.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/xml_interfaces.h"
#include "tests/support/command.h"
#include "tests/support/echo.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kSample = ORVO_SOURCE_DIR "/samples/office.pcapng";
constexpr const char* kRunning = ": the next report comes at ";

using Words = std::vector<std::string>;

/// A watch of the sample, with further words.
Words Replay(const std::string& out, const Words& more, const std::string& speed = "1000000000") {
  Words words = {"watch", "--replay", kSample, "--speed", speed, "--out", out};
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

/// A watch that has seen the first packet of the sample, and waits an hour for the next.
Words Endless(const std::string& out, const Words& more) {
  return Replay(out, more, "0.001");
}

/// All regular files below a folder, by their path from there.
std::map<std::string, std::string> Files(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files[entry.path().lexically_relative(folder)] = FileBytes(entry.path());
  }
  return files;
}

TEST(WatchTest, WordsThatCannotBeMeantAreRefused) {
  TemporaryFolder folder;
  const std::string out = folder.Path("out");
  const auto settings = [&folder](const std::string& name, const std::string& attributes) {
    return folder.Write(name, "<OrvoSettings><statsoutput " + attributes + "/></OrvoSettings>");
  };
  const struct {
    Words words;
    int status;
    std::string message;
  } cases[] = {
      {{"watch", "--out", out}, 2, "--interface"},
      {{"watch", "--out", out, "--interface", "lo", "--replay", kSample}, 2, "--interface"},
      {{"watch", "--replay", kSample}, 2, "--out"},
      {{"watch", "--interface", "lo", "--speed", "2", "--out", out}, 2, "--speed requires --replay"},
      {Replay(out, {"--every", "1w"}), 2, "--every 1w: must be a whole number and its unit"},
      {Replay(out, {"--every", "h"}), 2, "--every h: must be a whole number and its unit"},
      {Replay(out, {"--every", "1hour"}), 2, "--every 1hour: must be a whole number and its unit"},
      {Replay(out, {"--every", "-1h"}), 2, "--every -1h: must be a whole number and its unit"},
      {Replay(out, {"--every", "0m"}), 2, "--every 0m: is too short; the shortest is 5s"},
      {Replay(out, {"--every", "4s"}), 2, "--every 4s: is too short"},
      {Replay(out, {"--every", "50d"}), 2, "--every 50d: is too long to wait for; the longest is 49d"},
      {Replay(out, {"--every", "99999999999s"}), 2, "--every 99999999999s: is too long"},
      {Replay(out, {"--new-set", "4294967s"}), 2, "--new-set 4294967s: is too long"},
      {Replay(out, {"--keep", "0"}), 2, "--keep 0: must be a whole number from 1 on, or all"},
      {Replay(out, {"--keep", "many"}), 2, "--keep many: must be"},
      {Replay(out, {"--format", "csv,tab"}), 2, "--format: watch writes one format"},
      {Replay(out, {"--on-report", "no such program"}), 2, "--on-report no such program: there is no such program"},
      {Replay(out, {"--on-report", "/etc"}), 2, "--on-report /etc: there is no such program"},
      {Replay(out, {"--on-report", folder.Write("plain", "x")}), 2, "plain: may not be executed; chmod"},
      {Replay(out, {}, "0"), 2, "--speed"},
      {Replay(out, {"--filter", "tcp prot 80"}), 2, "--filter tcp prot 80"},
      {Replay(out, {"--settings", settings("long.xml", "outputInterval='72000' outputIntervalUnit='2'")}), 1,
       "long.xml: outputInterval=\"72000\" with outputIntervalUnit=\"2\" is 4320000 seconds, too long to wait for"},
      {Replay(out, {"--settings", settings("set.xml", "newSetInterval='50' newSetIntervalUnit='4'")}), 1,
       "set.xml: newSetInterval=\"50\""},
      {Replay(out, {"--settings", settings("zero.xml", "outputInterval='0'")}), 1, "outputInterval=\"0\" must be 1"},
      {Replay(out, {"--settings", settings("word.xml", "keep='lots'")}), 1,
       "word.xml: keep=\"lots\" is no whole number"},
      {Replay(out, {"--settings", settings("minus.xml", "outputInterval='-5'")}), 1,
       "minus.xml: outputInterval=\"-5\" is no whole number from 0 to 4294967295"},
      {Replay(out, {"--settings", settings("type.xml", "keep='3000000000' outputType='csv'")}), 1,
       "type.xml: outputType=\"csv\" is no whole number of 32 bits"},
      {Replay(out, {"--settings", settings("path.xml", "reportPath='a/b'")}), 1,
       "path.xml: reportPath=\"a/b\" cannot be made below the folder of --out"},
      {Replay(out, {"--settings", settings("drive.xml", "reportPath='C:\\b' newSetEnabled='0'")}), 1,
       "drive.xml: reportPath=\"C:\\b\" cannot be made"},
      {{"watch", "--replay", "/nonexistent.pcap", "--out", out}, 1, "/nonexistent.pcap"},
      {{"watch", "--interface", "orvo-none", "--out", out}, 1, "orvo-none: "},
  };
  for (const auto& one : cases) {
    const CommandResult result = RunCommand(one.words);
    EXPECT_EQ(result.exit_status, one.status) << one.message << ": " << result.messages;
    EXPECT_THAT(result.messages, AllOf(StartsWith("orvo-report: "), HasSubstr(one.message)));
    EXPECT_EQ(std::ranges::count(result.messages, '\n'), 1) << result.messages;
    EXPECT_EQ(result.output, "");
  }
}

TEST(WatchTest, TheLastReportOfAReplayIsTheReportOfTheCapture) {
  TemporaryFolder folder;
  const std::string tab = folder.Write("tab.xml", "<statsoutput outputType='1' newSetEnabled='0'/>");
  const struct {
    Words words;
    const char* format;
    bool in_set;
  } cases[] = {
      {{}, "csv", true},
      {{"--every", "15m", "--new-set", "never"}, "csv", false},
      {{"--settings", tab}, "tab", false},
      {{"--settings", tab, "--format", "csv", "--filter", "tcp", "--set", "NodeFirstTime=0"}, "csv", false},
  };
  int number = 0;
  for (const auto& one : cases) {
    const std::string out = folder.Path("out" + std::to_string(++number));
    const std::string expected = folder.Path("expected" + std::to_string(number));
    const CommandResult result = RunCommand(Replay(out, one.words));
    EXPECT_EQ(result.exit_status, 0) << result.messages;
    Words make = {"make", kSample, "--out", expected, "--format", one.format};
    if (number == 4) make.insert(make.end(), {"--filter", "tcp", "--set", "NodeFirstTime=0"});
    ASSERT_EQ(RunCommand(make).exit_status, 0);

    fs::path written = out;
    if (one.in_set) {
      const std::vector<fs::path> sets(fs::directory_iterator(out), {});
      ASSERT_THAT(sets, SizeIs(1));
      written = sets.front();
      EXPECT_THAT(written.filename().string(), MatchesRegex("[0-9-]{10} 00[.]00[.]00 - [0-9-]{10} 00[.]00[.]00"));
    }
    EXPECT_EQ(Files(written), Files(expected)) << number;
    EXPECT_THAT(result.output, MatchesRegex("[0-9-]{10} [0-9:]{8} info Statistics output to .*/\n"));
    EXPECT_THAT(result.output, HasSubstr(written.string() + "/\n"));
  }
}

/// A watch of the first packets, ended by a signal that is sent twice, as some programs do, so long after its begin.
CommandResult EndBySignal(const std::string& out, int signal, std::chrono::milliseconds after) {
  RunningCommand watch(Endless(out, {"--new-set", "never"}));
  EXPECT_TRUE(watch.WaitFor(kRunning));
  watch.ReadFor(after);
  for (int time = 0; time < 2; ++time) watch.Signal(signal);
  return watch.Finish();
}

TEST(WatchTest, ASignalEndsItWithALastReport) {
  for (const int signal : {SIGINT, SIGTERM}) {
    TemporaryFolder folder;
    // The signal may be faster than the first packet; then there is nothing to report.
    CommandResult result = EndBySignal(folder.Path("out"), signal, std::chrono::milliseconds(0));
    for (int tries = 1; tries < 10 && result.output.empty(); ++tries) {
      result = EndBySignal(folder.Path("out"), signal, tries * std::chrono::milliseconds(100));
    }
    EXPECT_EQ(result.exit_status, 0) << result.messages;
    EXPECT_THAT(result.output, HasSubstr(" info Statistics output to "));
    EXPECT_THAT(FileBytes(folder.Path("out/Summary Statistics.csv")), HasSubstr("Total Packets,-,"));
  }
}

TEST(WatchTest, HangupReadsTheSettingsAgain) {
  TemporaryFolder folder;
  const std::string settings = folder.Write("s.xml", "<statsoutput outputInterval='2'/>");
  RunningCommand watch(Endless(folder.Path("out"), {"--settings", settings}));
  ASSERT_TRUE(watch.WaitFor(kRunning));

  folder.Write("s.xml", "<statsoutput outputInterval='200' outputIntervalUnit='4' newSetEnabled='0'/>");
  watch.Signal(SIGHUP);
  EXPECT_TRUE(watch.WaitFor("SIGHUP: " + settings + ": outputInterval=\"200\""));
  EXPECT_TRUE(watch.WaitFor("the settings stay as they are"));

  folder.Write("s.xml",
               "<OrvoSettings><statsoutput newSetEnabled='0' outputType='1'/>"
               "<StatsOutputPrefs><NodeStats OutputNodeStats='0'/></StatsOutputPrefs></OrvoSettings>");
  watch.Signal(SIGHUP);
  EXPECT_TRUE(watch.WaitFor("outputType was changed from 0 to 1, which takes a restart"));
  EXPECT_TRUE(watch.WaitFor(kRunning, 2));
  watch.Signal(SIGTERM);
  const CommandResult result = watch.Finish();
  EXPECT_EQ(result.exit_status, 0) << result.messages;
  EXPECT_TRUE(folder.Has("out/Summary Statistics.csv"))
      << "sets have been switched off, and the type is the old one: " << result.output;
  EXPECT_FALSE(folder.Has("out/Node Statistics-IP.csv")) << "and nodes";

  RunningCommand without(Endless(folder.Path("out2"), {}));
  ASSERT_TRUE(without.WaitFor(kRunning));
  without.Signal(SIGHUP);
  EXPECT_TRUE(without.WaitFor("SIGHUP: there are no settings to read again"));
  without.Signal(SIGTERM);
  EXPECT_EQ(without.Finish().exit_status, 0);
}

TEST(WatchTest, TheProgramOfEachReportIsGivenItsWordsAsTheyAre) {
  const Words names = {"plain",
                       "two words",
                       "$(touch hacked)`touch hacked`;touch hacked",
                       "-rf *",
                       "line\nbreak\t\"quoted\" 'single' \\n %s",
                       "\xC3\xA4\xE2\x82\xAC"};
  for (const std::string& name : names) {
    TemporaryFolder folder;
    // The program has a name like that, too.
    const fs::path program = folder.Path("program " + name);
    std::ofstream(program) << R"(#!/bin/sh
printf '%s\0' "$#" "$@" >"$0.words"
while read -r line; do case $line in SigBlk*) echo "$line" ;; esac; done </proc/$$/status >"$0.signals"
readlink /proc/$$/fd/* >"$0.files"
exit 3
)";
    fs::permissions(program, fs::perms::owner_all);
    const std::string out = folder.Path(name) + "/";
    const CommandResult result = RunCommand(Replay(out, {"--new-set", "never", "--on-report", program}));
    EXPECT_EQ(result.exit_status, 0) << result.messages;
    std::string expected = "2\n0\nStatistics output to " + out + "\n";
    std::ranges::replace(expected, '\n', '\0');
    if (name.find('\n') != std::string::npos) expected[expected.find(std::string("line\0", 5)) + 4] = '\n';
    EXPECT_EQ(FileBytes(program.string() + ".words"), expected);
    EXPECT_THAT(FileBytes(program.string() + ".files"), Not(HasSubstr("office"))) << "files of the command's";
    EXPECT_THAT(FileBytes(program.string() + ".signals"), HasSubstr("0000000000000000"));
    EXPECT_THAT(result.messages, HasSubstr(": ended with status 3\n"));
    // One line on each stream for each thing that is told, whatever is in it.
    EXPECT_EQ(std::ranges::count(result.output, '\n'), 1) << result.output;
    for (const fs::path& place : {fs::path(folder.Path()), fs::path(out), fs::current_path()}) {
      EXPECT_FALSE(fs::exists(place / "hacked")) << place;
    }
  }
}

TEST(WatchTest, AReportThatFailsIsToldAndTheStatusShowsIt) {
  TemporaryFolder folder;
  fs::create_directories(folder.Path("out/Summary Statistics.csv"));
  const CommandResult result = RunCommand(Replay(folder.Path("out"), {"--new-set", "never"}));
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_THAT(result.messages, HasSubstr("Summary Statistics.csv: The path names a folder"));
  EXPECT_TRUE(folder.Has("out/Node Statistics-IP.csv")) << "the other files are written";

  const std::string settings = folder.Write("s.xml", "<statsoutput newSetEnabled='0' reportPath='file'/>");
  const std::string program = folder.Write("program", "#!/orvo-none\n");
  fs::permissions(program, fs::perms::owner_all);
  folder.Write("out/file", "");
  const CommandResult without_folder =
      RunCommand(Replay(folder.Path("out"), {"--settings", settings, "--on-report", program}));
  EXPECT_EQ(without_folder.exit_status, 1);
  EXPECT_THAT(without_folder.messages,
              HasSubstr("orvo-report: " + folder.Path("out/file") + ": this folder cannot be made ("));
  EXPECT_THAT(without_folder.messages,
              HasSubstr("cannot be started: the interpreter that its first line names does not exist"));

  folder.Write("s.xml", "<statsoutput newSetEnabled='0' reportPath='file' notify='0'/>");
  const CommandResult untold = RunCommand(Replay(folder.Path("out"), {"--settings", settings, "--on-report", program}));
  EXPECT_EQ(untold.exit_status, 1);
  EXPECT_EQ(untold.output, "");
  EXPECT_THAT(untold.messages,
              AllOf(HasSubstr("/out/file: this folder cannot be made ("), Not(HasSubstr("--on-report"))));
}

bool IsWellFormed(const fs::path& path) {
  ComPtr<IXmlDocument> document;
  return Succeeded(CreateXmlDocument(document.Out())) &&
         Succeeded(document->Load(PathFromSystem(path.string()).c_str()));
}

/// Waits until so many files below the folder have changed, or the command has ended.
void WaitForChanges(const fs::path& folder, const std::map<std::string, std::string>& before, std::size_t changes,
                    RunningCommand& command) {
  for (int look = 0; look < 10'000; ++look) {
    std::size_t changed = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied)) {
      std::error_code gone;
      const auto found = before.find(entry.path().lexically_relative(folder));
      const std::uintmax_t size = entry.is_regular_file(gone) ? entry.file_size(gone) : 0;
      changed += found == before.end() || found->second.size() != size ? 1U : 0U;
    }
    if (changed >= changes) return;
    command.ReadFor(std::chrono::milliseconds(1));
    if (kill(command.process(), 0) != 0) return;
  }
}

TEST(WatchTest, WhatWasReportedOutlivesBeingKilledInTheMiddleOfTheNextReport) {
  for (const std::string format : {"csv", "xml"}) {
    TemporaryFolder folder;
    const Words more = {"--new-set", "never", "--format", format};
    ASSERT_EQ(RunCommand(Replay(folder.Path(), more)).exit_status, 0);
    const auto first = Files(folder.Path());
    ASSERT_GT(first.size(), 3U);
    for (const std::size_t changes : {0U, 1U, 2U, 4U, 7U}) {
      const auto before = Files(folder.Path());
      RunningCommand watch(Endless(folder.Path(), more));
      ASSERT_TRUE(watch.WaitFor(kRunning));
      watch.Signal(SIGTERM);
      WaitForChanges(folder.Path(), before, changes, watch);
      watch.Signal(SIGKILL);
      watch.Finish();
      for (const auto& [name, bytes] : Files(folder.Path())) {
        const auto earlier = before.find(name);
        if (name.ends_with(".csv") && earlier != before.end()) {
          EXPECT_THAT(bytes, StartsWith(earlier->second)) << name << " after " << changes;
        }
        if (name.ends_with(".xml")) {
          EXPECT_TRUE(IsWellFormed(folder.Path(name))) << name << " after " << changes;
        }
      }
    }
    const CommandResult again = RunCommand(Replay(folder.Path(), more));
    EXPECT_EQ(again.exit_status, 0) << again.messages;
    for (const auto& [name, bytes] : Files(folder.Path())) {
      if (format != "csv" || !first.contains(name)) continue;
      EXPECT_THAT(bytes, StartsWith(first.at(name))) << name;
    }
  }
}

/// The value of a line of /proc/PROCESS/status.
std::string ProcessStatus(pid_t process, const std::string& name) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name + ":\t")) return line.substr(name.size() + 2);
  }
  return {};
}

/// The one test that waits: twenty seconds at the shortest interval.
TEST(WatchTest, TwentySecondsOfLoopbackTrafficMakeTheSetsThatWereAskedFor) {
  TemporaryFolder folder;
  const bool root = geteuid() == 0;
  constexpr uid_t kNobody = 65534;
  fs::create_directory(folder.Path("out"));
  if (root) {
    ASSERT_EQ(chmod(folder.Path().c_str(), 0755), 0);
    ASSERT_EQ(chown(folder.Path("out").c_str(), kNobody, kNobody), 0);
  }
  const Echo echo;
  RunningCommand watch({"watch", "--interface", "lo", "--out", folder.Path("out"), "--every", "5s", "--new-set", "10s",
                        "--keep", "2", "--filter", echo.Filter(), "--on-report", "true"});
  if (!watch.WaitFor(kRunning)) {
    const CommandResult result = watch.Finish();
    if (result.messages.find("CAP_NET_RAW") == std::string::npos) FAIL() << result.messages;
    GTEST_SKIP() << "this process may not capture: " << result.messages;
  }
  for (const char* set : {"CapPrm", "CapEff", "CapInh", "CapAmb"}) {
    EXPECT_EQ(ProcessStatus(watch.process(), set), "0000000000000000") << set;
  }
  EXPECT_EQ(ProcessStatus(watch.process(), "NoNewPrivs"), "1");
  const std::string uid = std::to_string(root ? kNobody : geteuid());
  EXPECT_EQ(ProcessStatus(watch.process(), "Uid"), uid + "\t" + uid + "\t" + uid + "\t" + uid);

  int sent = 0;
  for (; sent < 100; ++sent) {
    echo.Send("watched");
    watch.ReadFor(std::chrono::milliseconds(200));
  }
  const std::string process = std::to_string(watch.process());
  const std::string children = "/proc/" + process + "/task/" + process + "/children";
  for (int look = 0; look < 50 && !FileBytes(children).empty(); ++look) watch.ReadFor(std::chrono::milliseconds(100));
  EXPECT_EQ(FileBytes(children), "") << "programs that have ended are left as zombies";
  watch.Signal(SIGTERM);
  const CommandResult result = watch.Finish();
  EXPECT_EQ(result.exit_status, 0) << result.messages;

  std::vector<std::string> reports;
  for (const std::string& line : Lines(result.output)) {
    EXPECT_THAT(line, MatchesRegex("[0-9-]{10} [0-9:]{8} info Statistics output to .*/[0-9-]{10} [0-9.]{8} - .*/"));
    reports.push_back(fs::path(line.substr(line.find('/'))).parent_path().filename());
  }
  // One every five seconds, and the last; two in each set of ten seconds.
  EXPECT_THAT(reports.size(), testing::AllOf(testing::Ge(4U), testing::Le(6U))) << result.output;
  EXPECT_TRUE(std::ranges::is_sorted(reports));
  std::vector<std::string> sets = reports;
  sets.erase(std::ranges::unique(sets).begin(), sets.end());
  EXPECT_GE(sets.size(), 2U);
  for (const std::string& set : sets) {
    EXPECT_THAT(set, MatchesRegex("[0-9-]{10} [0-9]{2}[.][0-9]{2}[.][0-5]0 - .*[0-9]{2}[.][0-9]{2}[.][0-5]0"));
    EXPECT_LE(std::ranges::count(reports, set), 3) << set;
  }
  // The last two are kept; a set that has begun and holds no report yet may be among them.
  std::vector<std::string> kept;
  for (const auto& entry : fs::directory_iterator(folder.Path("out"))) kept.push_back(entry.path().filename());
  std::ranges::sort(kept);
  EXPECT_LE(kept.size(), 2U);
  ASSERT_FALSE(kept.empty());
  EXPECT_EQ(kept.back(), sets.back());
  const fs::path summary = folder.Path("out/" + kept.back() + "/Summary Statistics.csv");
  EXPECT_THAT(FileBytes(summary), HasSubstr("Total Packets,-," + std::to_string(sent) + ","));
  struct stat details {};
  ASSERT_EQ(stat(summary.c_str(), &details), 0);
  EXPECT_EQ(std::to_string(details.st_uid), uid);
}

}  // namespace
}  // namespace orvo::test
