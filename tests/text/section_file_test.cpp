// How the files of a text report come about, grow, and survive what happens to them.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

#include "platform/code_page.h"
#include "platform/error.h"
#include "tests/text/text_report_fixture.h"
#include "text/section_file.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kIpFile = "Node Statistics-IP.csv";

class SectionFileTest : public TextReportTest {
 protected:
  SectionFileTest() {
    OnlySection(kSwitchOutputNodeStats);
    AddNode(u"10.0.0.1", u"first");
  }

  void AddNode(const char16_t* address, const char16_t* name) {
    NodeEntry node;
    node.address = engine.live.AddIp(10, 0, 0, static_cast<std::uint8_t>(engine.live.nodes.size() + 1));
    engine.live.nodes.push_back(node);
    engine.names[address] = name;
  }
};

TEST_F(SectionFileTest, LaterRunsAppendUnderTheHeaderOfTheFirst) {
  ASSERT_EQ(Output(), S_OK);
  Switch(kSwitchNodePackets, 0);
  ASSERT_EQ(Output(), S_OK);
  std::vector<std::string> lines = FileLines(kIpFile);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines[0], HasSubstr("Packets Sent"));
  EXPECT_EQ(std::ranges::count(lines[2], ','), std::ranges::count(lines[1], ',') - 2);
}

TEST_F(SectionFileTest, ExistenceNotContentDecidesAboutTheHeader) {
  folder.Write(kIpFile, "");
  EXPECT_THAT(Reported().FileLines(kIpFile), ElementsAre(HasSubstr(",first,")));
}

TEST_F(SectionFileTest, APartialRowOfAKilledRunIsEndedFirst) {
  folder.Write(kIpFile, "header\nrow,of,a,kil");
  EXPECT_THAT(Reported().FileLines(kIpFile), ElementsAre("header", "row,of,a,kil", HasSubstr(",first,")));
}

TEST_F(SectionFileTest, SeparatorsLineEndsAndBytesAreExact) {
  SetFormat(u".txt", u"\t");
  engine.names[u"10.0.0.1"] = u"a,b";
  ASSERT_EQ(Output(), S_OK);
  const std::string bytes = folder.Read("Node Statistics-IP.txt");
  EXPECT_THAT(bytes, StartsWith("Time Saved\tAddress\t"));
  EXPECT_THAT(bytes, HasSubstr("\ta,b\t"));
  EXPECT_EQ(bytes.find('\r'), std::string::npos);
}

TEST_F(SectionFileTest, NamesAreWrittenInTheCodePage) {
  engine.names[u"10.0.0.1"] = u"Zürich 東京";
  ASSERT_EQ(SetCodePage("windows-1252"), S_OK);
  ASSERT_EQ(Output(), S_OK);
  ASSERT_EQ(SetCodePage("UTF-8"), S_OK);
  EXPECT_THAT(Reported().FileLines(kIpFile),
              ElementsAre(testing::_, HasSubstr(",Z\xFCrich ??,"), HasSubstr(",Zürich 東京,")));
}

TEST_F(SectionFileTest, AFileThatAnotherHoldsFailsAlone) {
  ASSERT_EQ(Output(), S_OK);
  int held = open(folder.Path(kIpFile).c_str(), O_RDWR);
  ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
  engine.files.clear();
  ASSERT_EQ(Output(), S_OK);
  close(held);
  EXPECT_EQ(FileStatus(kIpFile), StatusFromError(kErrorSharingViolation));
  EXPECT_EQ(FileStatus("Node Statistics-IPv6.csv"), S_OK);
  EXPECT_EQ(FileLines(kIpFile).size(), 2U);
}

TEST_F(SectionFileTest, NothingOutsideTheFolderIsWritten) {
  TemporaryFolder elsewhere;
  elsewhere.Write("victim", "precious");
  std::filesystem::create_symlink(elsewhere.Path("victim"), folder.Path(kIpFile));
  std::filesystem::create_symlink(elsewhere.Path("not there"), folder.Path("Node Statistics-IPv6.csv"));
  ASSERT_EQ(mkfifo(folder.Path("Node Statistics-IPX.csv").c_str(), 0666), 0);
  std::filesystem::create_directory(folder.Path("Node Statistics-DECnet.csv"));
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(elsewhere.Read("victim"), "precious");
  EXPECT_THAT(elsewhere.Names(), ElementsAre("victim"));
  for (const char* name :
       {kIpFile, "Node Statistics-IPv6.csv", "Node Statistics-IPX.csv", "Node Statistics-DECnet.csv"}) {
    EXPECT_TRUE(Failed(FileStatus(name))) << name;
  }
}

TEST_F(SectionFileTest, NothingStandsBetweenFolderAndFileName) {
  ComPtr<IStatsContext> context = engine.Context();
  EXPECT_EQ(method->Output(Bstr(folder.ReportFolder() + u"Monday ").get(), context.get(), nullptr), S_OK);
  EXPECT_TRUE(folder.Has("Monday Summary Statistics.csv"));
  EXPECT_EQ(FileLines(std::string("Monday ") + kIpFile).size(), 2U);
}

TEST_F(SectionFileTest, AFolderThatIsNotThereFailsEveryFileAndNothingElse) {
  ComPtr<IStatsContext> context = engine.Context();
  EXPECT_EQ(method->Output(Bstr(folder.ReportFolder() + u"missing\\").get(), context.get(), nullptr), S_OK);
  ASSERT_EQ(engine.files.size(), 8U);
  for (const ScriptedEngine::FileReport& file : engine.files) EXPECT_TRUE(Failed(file.status));
}

/// Writes stop at a size limit in a process of its own, as they do on a full disk.
TEST_F(SectionFileTest, AFullDiskKeepsTheRowsBeforeItAndTheNextRunGoesOn) {
  for (int i = 0; i < 20'000; ++i) {
    NodeEntry node;
    node.address = engine.live.AddIp(10, 1, static_cast<std::uint8_t>(i >> 8), static_cast<std::uint8_t>(i));
    engine.live.nodes.push_back(node);
  }
  pid_t child = fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{700'000, 700'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    _exit(Output() == S_OK && FileStatus(kIpFile) == StatusFromError(kErrorDiskFull) ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  const std::size_t kept = FileLines(kIpFile).size();
  EXPECT_GT(kept, 10'000U);

  engine.live.nodes.resize(1);
  ASSERT_EQ(Output(), S_OK);
  const std::vector<std::string> lines = FileLines(kIpFile);
  EXPECT_EQ(lines.size(), kept + 1);
  EXPECT_THAT(lines.back(), HasSubstr(",first,"));
  for (std::size_t i = 1; i + 2 < lines.size(); ++i) ASSERT_EQ(std::ranges::count(lines[i], ','), 17) << i;
}

TEST_F(SectionFileTest, OfParallelWritersOneAtATimeWritesAndTheHeaderStandsOnce) {
  constexpr int kWriters = 8;
  const std::u16string path = folder.ReportFolder() + u"contended.csv";
  std::atomic<int> written = 0;
  std::vector<std::thread> writers;
  for (int i = 0; i < kWriters; ++i) {
    writers.emplace_back([&] {
      for (int round = 0; round < 50; ++round) {
        SectionFile file;
        if (Failed(Guard([&] { file.Open(path, [] { return "header\n"; }); }))) continue;
        for (const char* row : {"one", "two"}) {
          file.row().Append(row);
          file.EndRow();
        }
        if (Succeeded(file.Close())) ++written;
      }
    });
  }
  for (std::thread& writer : writers) writer.join();
  const std::vector<std::string> lines = FileLines("contended.csv");
  ASSERT_GT(written.load(), 0);
  ASSERT_EQ(lines.size(), 1 + 2 * static_cast<std::size_t>(written.load()));
  EXPECT_EQ(lines[0], "header");
  for (std::size_t i = 1; i < lines.size(); i += 2) {
    ASSERT_EQ(lines[i], "one");
    ASSERT_EQ(lines[i + 1], "two");
  }
  EXPECT_THAT(folder.Names(), ElementsAre("contended.csv")) << "no temporary file is left behind";
}

}  // namespace
}  // namespace orvo::test
