// PDF reports of the samples as other programs read them: the outline and the text of every page, compared with
// reviewed files. ORVO_REWRITE_EXPECTED=1 in the environment writes the files anew instead; read the difference before
// committing it, and look at the pages.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/pdf/pdf_judge.h"
#include "tests/support/command.h"
#include "tests/support/pdf_pages.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

struct PdfSample {
  const char* name;     // of the reviewed file
  const char* capture;  // below samples/
  std::vector<std::string> options;
};

std::ostream& operator<<(std::ostream& out, const PdfSample& sample) {
  return out << sample.name;
}

class WholePdfReportTest : public testing::TestWithParam<PdfSample> {};

/// Outline and text of a report. Pages are set apart by a line, and the blanks that fill lines up are left out.
std::string TextOf(const std::string& report) {
  std::string text;
  for (const std::string& entry : PdfOutlineOf(report)) text += entry + "\n";
  const CommandResult pages = RunProgram("/usr/bin/pdftotext", {"-layout", report, "-"});
  EXPECT_EQ(pages.exit_status, 0) << pages.messages;
  EXPECT_EQ(pages.messages, "");
  text += "--- page\n";
  std::size_t end_of_text = text.size();
  for (char one : pages.output) {
    if (one == '\f') {
      text.resize(end_of_text);
      text += "\n--- page\n";
    } else if (one == '\n') {
      text.resize(text.find_last_not_of(' ') + 1);
      text += '\n';
    } else {
      text += one;
      if (one != ' ') end_of_text = text.size();
    }
  }
  return text.substr(0, text.rfind("--- page\n"));
}

TEST_P(WholePdfReportTest, IsTheReviewedOne) {
  TemporaryFolder folder;
  std::vector<std::string> arguments = {"make",      ORVO_SOURCE_DIR "/samples/" + std::string(GetParam().capture),
                                        "--out",     folder.Path(),
                                        "--format",  "pdf",
                                        "--no-names"};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  const CommandResult result = RunCommand(arguments);
  ASSERT_EQ(result.exit_status, 0) << result.messages;
  EXPECT_EQ(result.messages, "");
  EXPECT_THAT(result.output, HasSubstr(folder.Path("Report.pdf") + " ("));
  EXPECT_THAT(folder.Names(), ElementsAre("Report.pdf", "Temp"));
  EXPECT_TRUE(fs::is_empty(folder.Path("Temp")));

  const std::string report = folder.Path("Report.pdf");
  ExpectSound(report);
  const std::string facts = RunProgram("/usr/bin/pdfinfo", {report}).output;
  EXPECT_THAT(facts, HasSubstr("(A4)"));
  EXPECT_THAT(facts, HasSubstr("Pages:           " + std::to_string(PdfPages(report).size()) + "\n"));

  const fs::path expected = fs::path(ORVO_SOURCE_DIR "/tests/report/expected/pdf") / GetParam().name;
  const std::string text = TextOf(report);
  if (std::getenv("ORVO_REWRITE_EXPECTED")) {
    fs::create_directories(expected.parent_path());
    std::ofstream(expected, std::ios::binary) << text;
    return;
  }
  std::ifstream file(expected, std::ios::binary);
  EXPECT_EQ(Lines(text), Lines({std::istreambuf_iterator<char>(file), {}}));
}

INSTANTIATE_TEST_SUITE_P(Samples, WholePdfReportTest,
                         testing::Values(PdfSample{"office.txt", "office.pcapng", {}},
                                         PdfSample{"office-german.txt",
                                                   "office.pcapng",
                                                   {"--locale", "de_DE", "--set", "OutputExpertStats=0", "--set",
                                                    "NodePackets=0", "--set", "OutputGraphs=0"}},
                                         PdfSample{"wireless.txt", "wireless.pcap", {}},
                                         PdfSample{"voice.txt", "voice-lossy.pcap", {}}),
                         [](const auto& sample) {
                           std::string name = fs::path(sample.param.name).stem();
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
}  // namespace orvo::test
