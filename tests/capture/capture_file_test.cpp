#include "capture/source/capture_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "platform/clock.h"
#include "tests/capture/capture_bytes.h"

namespace orvo::test {
namespace {

using testing::HasSubstr;

constexpr std::uint32_t k2020 = 1'577'836'800;  // kNewYear in seconds since 1970

Buffer Frame() {
  return Ethernet(Mac(2), Mac(1), 0x0806, Arp());
}

TEST(CaptureFileTest, GivesPacketsWithTheirTimes) {
  Buffer truncated = Frame();
  truncated.resize(20);
  struct {
    std::uint32_t magic, seconds, fraction;
    std::uint64_t time;
  } const cases[] = {
      {0xA1B2C3D4, k2020, 123456, kNewYear + 123'456'000},
      {0xA1B23C4D, k2020, 123456789, kNewYear + 123'456'789},
      {0xA1B2C3D4, 0xFFFFFFFF, 0, kUnixEpoch + 0xFFFFFFFFULL * kSecond},  // the year 2106, not 1969
      {0xA1B2C3D4, k2020, 0xFFFFFFFF, kNewYear},                          // no fraction of a second
  };
  const CaptureFolder folder;
  for (bool big : {false, true}) {
    const CaptureBytes file(big);
    for (const auto& one : cases) {
      const ReadCapture read(folder.Write(file.PcapHeader(one.magic) +
                                          file.PcapRecord(one.seconds, one.fraction, Frame()) +
                                          file.PcapRecord(one.seconds, one.fraction, truncated, 20, 42)));
      ASSERT_EQ(read.packets.size(), 2U) << read.error.message;
      EXPECT_EQ(read.packets[0].packet.time, one.time);
      EXPECT_EQ(read.packets[0].bytes, Frame());
      EXPECT_EQ(read.packets[0].packet.original_length, 42U);
      EXPECT_EQ(read.packets[0].packet.link_type, kLinkEthernet);
      EXPECT_EQ(read.packets[1].bytes, truncated);
      EXPECT_EQ(read.packets[1].packet.original_length, 42U);
      EXPECT_TRUE(read.ended);
      EXPECT_EQ(read.warning.message, "");
      EXPECT_EQ(read.progress.bytes_read, read.progress.bytes_total);
      EXPECT_EQ(read.progress.bytes_total, std::filesystem::file_size(folder.Path("capture")));
    }
  }
}

TEST(CaptureFileTest, HeadersMayBeOldOrTellMoreThanTheLinkType) {
  const CaptureBytes file;
  Buffer truncated = Frame();
  truncated.resize(20);
  const Buffer captured_first = file.PcapRecord(1, 0, truncated, 20, 42);
  const Buffer original_first = file.PcapRecord(1, 0, truncated, 42, 20);
  struct {
    std::uint32_t link_type;
    std::uint16_t minor;
    Buffer record;
    std::uint32_t expected_link;
  } const cases[] = {
      {1, 4, captured_first, 1},    {1, 2, original_first, 1},           {1, 3, original_first, 1},
      {1, 3, captured_first, 1},    {0x4400'0001, 4, captured_first, 1},  // a check sequence of 4 bytes
      {101, 4, captured_first, 12},                                       // raw IP has another number in files
  };
  const CaptureFolder folder;
  for (const auto& one : cases) {
    const ReadCapture read(folder.Write(file.PcapHeader(0xA1B2C3D4, one.link_type, one.minor) + one.record));
    ASSERT_EQ(read.packets.size(), 1U) << read.error.message << read.warning.message;
    EXPECT_EQ(read.packets[0].bytes, truncated);
    EXPECT_EQ(read.packets[0].packet.original_length, 42U);
    EXPECT_EQ(read.packets[0].packet.link_type, one.expected_link);
  }
}

TEST(CaptureFileTest, DamageKeepsWhatCouldBeRead) {
  const CaptureBytes file;
  const Buffer one = file.PcapRecord(1, 0, Frame()), two = one + one;
  auto without_last = [](Buffer bytes, std::size_t count) {
    bytes.resize(bytes.size() - count);
    return bytes;
  };
  struct {
    const char* what;
    Buffer records;
    std::size_t packets;
    const char* warning;
    std::uint32_t last_original = 42;
  } const cases[] = {
      {"no packets", {}, 0, ""},
      {"sound", two, 2, ""},
      {"cut off in a frame", without_last(two, 1), 1, "reading stopped after packet 1"},
      {"cut off in a record's header", without_last(two, 50), 1, "reading stopped after packet 1"},
      {"a length beyond every capture", one + file.PcapRecord(1, 0, Frame(), 0x7FFFFFFF, 42), 1, "after packet 1"},
      {"a length beyond all sums", one + file.PcapRecord(1, 0, Frame(), 0xFFFFFFFF, 42), 1, "after packet 1"},
      {"a length beyond the file", one + file.PcapRecord(1, 0, Frame(), 5000, 5000), 1, "after packet 1"},
      {"longer than any link carries", file.PcapRecord(1, 0, Frame(), 42, 0xFFFFFFF0), 1, "claims to be 4294967280"},
      {"captured more than there was", file.PcapRecord(1, 0, Frame(), 42, 7), 1, ""},
      {"an empty frame", file.PcapRecord(1, 0, {}, 0, 0), 1, "", 0},
  };
  const CaptureFolder folder;
  for (const auto& c : cases) {
    const ReadCapture read(folder.Write(file.PcapHeader() + c.records));
    ASSERT_TRUE(read.opened) << c.what << ": " << read.error.message;
    ASSERT_EQ(read.packets.size(), c.packets) << c.what;
    EXPECT_TRUE(read.packets.empty() || read.packets.back().packet.original_length == c.last_original) << c.what;
    EXPECT_EQ(Failed(read.warning.status), *c.warning != '\0') << c.what;
    EXPECT_THAT(read.warning.message, HasSubstr(c.warning)) << c.what;
  }
}

TEST(CaptureFileTest, ATimeFarAwayIsBelievedOfTwoInARow) {
  const CaptureBytes file;
  const CaptureFolder folder;
  constexpr std::uint32_t kYear = 365 * 86'400;
  struct {
    std::vector<std::uint32_t> claimed, counted;
    const char* warning;
  } const cases[] = {
      {{1, 9, 9 + kYear, 9 + 2 * kYear, 9 + kYear}, {1, 9, 9 + kYear, 9 + 2 * kYear, 9 + kYear}, ""},
      {{5, 7, 6, 8 + kYear, 8, 9 + kYear, 9}, {5, 7, 6, 6, 8, 8, 9}, "packet 4 claims to be 365 days later"},
      {{5, 7 + kYear, 8 + kYear, 9 + kYear}, {5, 5, 8 + kYear, 9 + kYear}, "packet 2 claims to be 365 days later"},
      {{5 + kYear, 1, 6 + kYear}, {5 + kYear, 5 + kYear, 6 + kYear}, "packet 2 claims to be 365 days earlier"},
      {{5 + kYear, 1, 2, 3}, {5 + kYear, 5 + kYear, 2, 3}, "packet 2 claims to be 365 days earlier"},
  };
  for (const auto& one : cases) {
    Buffer pcap = file.PcapHeader();
    Buffer pcapng = file.Section() + file.Interface(1, file.Option(9, {0}));
    for (std::uint32_t second : one.claimed) {
      pcap = pcap + file.PcapRecord(second, 0, Frame());
      pcapng = pcapng + file.Enhanced(0, second, Frame());
    }
    for (const Buffer& bytes : {pcap, pcapng}) {
      const ReadCapture read(folder.Write(bytes));
      std::vector<std::uint32_t> counted;
      for (const ReadPacket& packet : read.packets) {
        counted.push_back(static_cast<std::uint32_t>((packet.packet.time - kUnixEpoch) / 1'000'000'000));
      }
      EXPECT_EQ(counted, one.counted);
      EXPECT_THAT(read.warning.message, HasSubstr(one.warning));
      EXPECT_EQ(Failed(read.warning.status), *one.warning != '\0') << read.warning.message;
    }
  }
}

TEST(CaptureFileTest, PacketsAreWholeWhereverABlockOfTheFileEnds) {
  const CaptureBytes file;
  Buffer bytes = file.PcapHeader();
  std::size_t count = 0;
  for (; bytes.size() < 3'300'000; ++count) {
    const Buffer record = file.PcapRecord(1, 0, Buffer(count * 97 % 60'000, static_cast<std::uint8_t>(count)));
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  const CaptureFolder folder;
  const ReadCapture read(folder.Write(bytes));
  ASSERT_EQ(read.packets.size(), count);
  for (std::size_t i = 0; i < count; ++i) {
    ASSERT_EQ(read.packets[i].bytes, Buffer(i * 97 % 60'000, static_cast<std::uint8_t>(i))) << i;
  }
}

TEST(CaptureFileTest, RefusesWhatIsNoCaptureAndSaysWhy) {
  const CaptureBytes file;
  const CaptureFolder folder;
  const std::string letter = "This is a letter, and no capture at all.";
  const std::string text = folder.Write(Buffer(letter.begin(), letter.end()), "text");
  const std::pair<std::string, const char*> cases[] = {
      {folder.Path("missing"), "No such file or directory); check the path"},
      {text + "/below", "Not a directory"},
      {folder.Path(""), "is a folder"},
      {"/dev/null", "is neither a file nor a pipe"},
      {folder.Write({}, "empty"), "is empty"},
      {text, "is not a capture file"},
      {folder.Write({0xD4}, "byte"), "is not a capture file"},
      {folder.Write({0xD4, 0xC3, 0xB2, 0xA1, 2}, "cut"), "is not a capture file that can be read (its header is cut"},
      {folder.Write(file.PcapHeader(0xA1B2CD34), "modified"), "its records are of a modified form"},
      {folder.Write(file.PcapHeader(0xA1B2C3D4, 1, 5), "later"), "its version is 2.5"},
      {folder.Write(file.Section(2), "section"), "version 2 instead of 1"},
      {folder.Path("new\nline"), "new?line: cannot be opened"},
  };
  for (const auto& [path, message] : cases) {
    SourceError error;
    EXPECT_FALSE(OpenCaptureFile(path, &error)) << path;
    EXPECT_TRUE(Failed(error.status)) << path;
    EXPECT_THAT(error.message, HasSubstr(message));
    EXPECT_EQ(error.message.find('\n'), std::string::npos);
  }
}

TEST(CaptureFileTest, APipeFlows) {
  const CaptureBytes file;
  const CaptureFolder folder;
  const std::string path = folder.Path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const Buffer record = file.PcapRecord(1, 0, Frame());
  // The pipe stays open until the first packet has been seen: it must not wait for a full block.
  std::ofstream writer;
  std::thread opener([&] {
    writer.open(path, std::ios::binary);
    const Buffer bytes = file.PcapHeader() + record;
    writer.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size())).flush();
  });
  SourceError error;
  auto source = OpenCaptureFile(path, &error);
  opener.join();
  ASSERT_TRUE(source) << error.message;
  Packet packet;
  EXPECT_TRUE(source->Next(&packet));
  writer.write(reinterpret_cast<const char*>(record.data()), static_cast<std::streamsize>(record.size())).flush();
  EXPECT_TRUE(source->Next(&packet));
  writer.close();
  EXPECT_FALSE(source->Next(&packet));
  EXPECT_EQ(source->warning().message, "");
  EXPECT_EQ(source->progress().bytes_total, 0U);
}

}  // namespace
}  // namespace orvo::test
