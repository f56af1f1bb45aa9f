#include "capture/source/capture_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/clock.h"
#include "tests/capture/frames.h"

namespace orvo::test {
namespace {

class CaptureFileTest : public testing::Test {
 protected:
  CaptureFileTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "capture-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~CaptureFileTest() override { std::filesystem::remove_all(folder_); }

  std::string Write(const Buffer& bytes) {
    std::string path = folder_ + "/a.pcap";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

  std::string folder_;
};

Buffer Frame() {
  return Ethernet(Mac(2), Mac(1), 0x0806, Arp());
}

TEST_F(CaptureFileTest, GivesPacketsWithTheirTimes) {
  Buffer truncated = Frame();
  truncated.resize(20);
  struct {
    std::uint32_t magic, seconds, fraction;
    std::uint64_t time;
  } cases[] = {
      {0xA1B2C3D4, 1'577'836'800, 123456, kNewYear + 123'456'000},
      {0xA1B23C4D, 1'577'836'800, 123456789, kNewYear + 123'456'789},
      {0xA1B2C3D4, 0xFFFFFFFF, 0, kUnixEpoch + 0xFFFFFFFFULL * kSecond},  // the year 2106, not 1969
      {0xA1B2C3D4, 1'577'836'800, 0xFFFFFFFF, kNewYear},                  // no fraction of a second
  };
  for (const auto& c : cases) {
    std::string path = Write(PcapHeader(1, c.magic) + PcapRecord(c.seconds, c.fraction, Frame()) +
                             PcapRecord(c.seconds, c.fraction, truncated, 20, 42));
    SourceError error;
    auto source = OpenCaptureFile(path, &error);
    ASSERT_TRUE(source) << error.message;
    Packet packet;
    ASSERT_TRUE(source->Next(&packet));
    EXPECT_EQ(packet.time, c.time);
    EXPECT_EQ(Buffer(packet.bytes.begin(), packet.bytes.end()), Frame());
    EXPECT_EQ(packet.original_length, 42U);
    EXPECT_EQ(packet.link_type, kLinkEthernet);
    ASSERT_TRUE(source->Next(&packet));
    EXPECT_EQ(packet.bytes.size(), 20U);
    EXPECT_EQ(packet.original_length, 42U);
    EXPECT_FALSE(source->Next(&packet));
    EXPECT_FALSE(source->Next(&packet));
    EXPECT_EQ(source->warning().message, "");
    EXPECT_EQ(source->progress().bytes_read, std::filesystem::file_size(path));
    EXPECT_EQ(source->progress().bytes_total, std::filesystem::file_size(path));
  }
}

TEST_F(CaptureFileTest, ReadsPcapng) {
  // Section header, an interface with nanosecond times, an enhanced packet block.
  Buffer section = Le32(0x0A0D0D0A) + Le32(28) + Le32(0x1A2B3C4D) + Buffer{1, 0, 0, 0} + Buffer(8, 0xFF) + Le32(28);
  Buffer interface =
      Le32(1) + Le32(32) + Buffer{1, 0, 0, 0} + Le32(0) + Buffer{9, 0, 1, 0, 9, 0, 0, 0} + Le32(0) + Le32(32);
  std::uint64_t stamp = 1'577'836'800ULL * kSecond + 5;
  Buffer frame = Frame();
  Buffer body = Le32(0) + Le32(static_cast<std::uint32_t>(stamp >> 32)) + Le32(static_cast<std::uint32_t>(stamp)) +
                Le32(42) + Le32(42) + frame + Zeros(2);
  auto length = static_cast<std::uint32_t>(body.size() + 12);
  SourceError error;
  auto source = OpenCaptureFile(Write(section + interface + Le32(6) + Le32(length) + body + Le32(length)), &error);
  ASSERT_TRUE(source) << error.message;
  Packet packet;
  ASSERT_TRUE(source->Next(&packet));
  EXPECT_EQ(packet.time, kNewYear + 5);
  EXPECT_EQ(Buffer(packet.bytes.begin(), packet.bytes.end()), frame);
  EXPECT_FALSE(source->Next(&packet));
  EXPECT_EQ(source->warning().message, "");

  // A second interface, of another link type.
  Buffer other = Le32(1) + Le32(20) + Buffer{101, 0, 0, 0} + Le32(0) + Le32(20);
  source = OpenCaptureFile(Write(section + interface + Le32(6) + Le32(length) + body + Le32(length) + other), &error);
  ASSERT_TRUE(source) << error.message;
  EXPECT_TRUE(source->Next(&packet));
  EXPECT_FALSE(source->Next(&packet));
  EXPECT_NE(source->warning().message.find("split the file by interface"), std::string::npos)
      << source->warning().message;
}

TEST_F(CaptureFileTest, DamageKeepsWhatCouldBeRead) {
  Buffer one = PcapRecord(1, 0, Frame());
  Buffer two = one + one;
  auto without_last = [](Buffer bytes, std::size_t count) {
    bytes.resize(bytes.size() - count);
    return bytes;
  };
  struct {
    const char* what;
    Buffer records;
    int packets;
    const char* warning;
    std::uint32_t last_original = 42;
  } cases[] = {
      {"no packets", {}, 0, ""},
      {"sound", two, 2, ""},
      {"cut off in a frame", without_last(two, 1), 1, "reading stopped after packet 1"},
      {"cut off in a record's header", without_last(two, 50), 1, "reading stopped after packet 1"},
      {"a length beyond every capture", one + PcapRecord(1, 0, Frame(), 0x7FFFFFFF, 42), 1, "after packet 1"},
      {"a length beyond the file", one + PcapRecord(1, 0, Frame(), 5000, 5000), 1, "after packet 1"},
      {"longer than any link carries", PcapRecord(1, 0, Frame(), 42, 0xFFFFFFF0), 1,
       "packet 1 claims to be 4294967280"},
      {"captured more than there was", PcapRecord(1, 0, Frame(), 42, 7), 1, ""},
      {"an empty frame", PcapRecord(1, 0, {}, 0, 0), 1, "", 0},
  };
  for (const auto& c : cases) {
    SourceError error;
    auto source = OpenCaptureFile(Write(PcapHeader() + c.records), &error);
    ASSERT_TRUE(source) << c.what << ": " << error.message;
    Packet packet;
    int packets = 0;
    while (source->Next(&packet)) ++packets;
    EXPECT_EQ(packets, c.packets) << c.what;
    EXPECT_EQ(packet.original_length, packets > 0 ? c.last_original : 0) << c.what;
    const SourceError& warning = source->warning();
    EXPECT_EQ(Failed(warning.status), *c.warning != '\0') << c.what;
    EXPECT_NE(warning.message.find(c.warning), std::string::npos) << warning.message;
  }
}

TEST_F(CaptureFileTest, RefusesWhatIsNoCaptureAndSaysWhy) {
  std::string pcap = Write(PcapHeader(147));
  std::string text = folder_ + "/text";
  std::ofstream(text) << "This is a letter, and no capture at all.";
  std::string cut = folder_ + "/cut";
  std::ofstream(cut, std::ios::binary) << "\xD4\xC3\xB2\xA1\x02";
  std::ofstream(folder_ + "/empty").close();
  struct {
    std::string path;
    const char* message;
  } cases[] = {
      {folder_ + "/missing", "No such file or directory); check the path"},
      {text + "/below", "Not a directory"},
      {folder_, "is a folder"},
      {"/dev/null", "is neither a file nor a pipe"},
      {folder_ + "/empty", "is empty"},
      {text, "is not a capture file"},
      {cut, "is not a capture file"},
      {pcap, "has link type 147"},
      {folder_ + "/new\nline", "new?line: cannot be opened"},
  };
  for (const auto& c : cases) {
    SourceError error;
    EXPECT_FALSE(OpenCaptureFile(c.path, &error)) << c.path;
    EXPECT_TRUE(Failed(error.status)) << c.path;
    EXPECT_NE(error.message.find(c.message), std::string::npos) << error.message;
    EXPECT_EQ(error.message.find('\n'), std::string::npos);
  }
}

TEST_F(CaptureFileTest, ReadsAPipe) {
  std::string path = folder_ + "/pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&path] {
    Buffer bytes = PcapHeader() + PcapRecord(1, 0, Frame());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  });
  SourceError error;
  auto source = OpenCaptureFile(path, &error);
  writer.join();
  ASSERT_TRUE(source) << error.message;
  Packet packet;
  EXPECT_TRUE(source->Next(&packet));
  EXPECT_FALSE(source->Next(&packet));
  EXPECT_EQ(source->progress().bytes_total, 0U);
}

}  // namespace
}  // namespace orvo::test
