// Whole reports of the samples, compared with reviewed files. ORVO_REWRITE_EXPECTED=1 in the environment writes the
// files anew instead; read the difference before committing it.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "tests/support/command.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;

struct Sample {
  const char* name;     // of the reviewed folder
  const char* capture;  // below samples/
  std::vector<std::string> options;
  int reports = 1;  // into the same folder
};

std::ostream& operator<<(std::ostream& out, const Sample& sample) {
  return out << sample.name;
}

class WholeReportTest : public testing::TestWithParam<Sample> {};

/// The files of a report. Its pictures, which stand in a folder of their own, are looked at elsewhere.
std::vector<std::string> FilesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& file : fs::directory_iterator(folder)) {
    if (file.is_regular_file()) names.push_back(file.path().filename());
  }
  std::ranges::sort(names);
  return names;
}

TEST_P(WholeReportTest, IsTheReviewedOne) {
  const fs::path expected = fs::path(ORVO_SOURCE_DIR "/tests/report/expected") / GetParam().name;
  TemporaryFolder folder;
  std::vector<std::string> arguments = {"make", ORVO_SOURCE_DIR "/samples/" + std::string(GetParam().capture), "--out",
                                        folder.Path(), "--no-names"};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  for (int i = 0; i < GetParam().reports; ++i) {
    const CommandResult result = RunCommand(arguments);
    ASSERT_EQ(result.exit_status, 0) << result.messages;
    // Reports in XML are made without pages here, and say so.
    EXPECT_THAT(result.messages, testing::AnyOf("", testing::HasSubstr("tests/report/Reports: Report.htm is missing")));
  }

  if (std::getenv("ORVO_REWRITE_EXPECTED")) {
    fs::remove_all(expected);
    fs::create_directories(expected);
    fs::copy(folder.Path(), expected);
    return;
  }
  const std::vector<std::string> reviewed = FilesIn(expected);
  EXPECT_EQ(FilesIn(folder.Path()), reviewed);
  for (const std::string& name : reviewed) {
    EXPECT_EQ(Lines(folder.Read(name)), Lines(FileBytes(expected / name))) << name;
    if (!name.ends_with(".xml") && !name.ends_with(".htm")) continue;
    const CommandResult lint = RunProgram("/usr/bin/xmllint", {"--noout", "--nonet", folder.Path(name)});
    EXPECT_EQ(lint.exit_status, 0) << name << ": " << lint.messages;
  }
}

/// Options of a report in XML, without the templates, which are the same for all.
std::vector<std::string> Xml(std::vector<std::string> further = {}) {
  further.insert(further.begin(), {"--format", "xml", "--templates", ORVO_SOURCE_DIR "/tests/report"});
  return further;
}

INSTANTIATE_TEST_SUITE_P(
    Samples, WholeReportTest,
    testing::Values(Sample{"office", "office.pcapng", {}},
                    Sample{"office-german", "office.pcapng", {"--format", "tab", "--locale", "de_DE"}},
                    Sample{"ipv6", "ipv6.pcap", {}}, Sample{"links", "links.pcapng", {}},
                    Sample{"wireless", "wireless.pcap", {"--set", "OutputNodeHierarchy=0"}},
                    Sample{"voice", "voice-lossy.pcap", {}},
                    Sample{"nanoseconds", "nanoseconds.pcap", {"--set", "OutputNodeHierarchy=0"}},
                    Sample{"xml-ipv6", "ipv6.pcap", Xml(), 2},
                    Sample{"xml-voice", "voice-lossy.pcap", Xml({"--set", "OutputVoIPOnly=1"})},
                    Sample{"xml-executive-summary", "wireless.pcap", Xml({"--report", "executive-summary"})},
                    Sample{"xml-expert-summary", "nanoseconds.pcap", Xml({"--report", "expert-summary"})},
                    Sample{"xml-additional-node", "nanoseconds.pcap", Xml({"--report", "additional-node"})},
                    Sample{"xml-conversations", "nanoseconds.pcap", Xml({"--report", "conversations"})}),
    [](const auto& sample) {
      std::string name = sample.param.name;
      std::erase(name, '-');
      return name;
    });

}  // namespace
}  // namespace orvo::test
