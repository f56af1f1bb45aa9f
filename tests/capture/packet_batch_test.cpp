// Packets by the batch are the packets one by one, and the bytes of all stay in place.

#include <gtest/gtest.h>

#include "capture/source/merged_source.h"
#include "capture/source/packet_filter.h"
#include "tests/capture/capture_bytes.h"

namespace orvo::test {
namespace {

struct Copied {
  std::uint64_t time;
  std::uint32_t interface_number;
  Buffer bytes;
  bool operator==(const Copied&) const = default;
};

Copied Copy(const Packet& packet) {
  return {packet.time, packet.interface_number, Buffer(packet.bytes.begin(), packet.bytes.end())};
}

std::vector<Copied> OneByOne(PacketSource& source) {
  std::vector<Copied> all;
  for (Packet packet; source.Next(&packet);) all.push_back(Copy(packet));
  return all;
}

/// Copies a batch only when it is whole.
std::vector<Copied> ByTheBatch(PacketSource& source, std::size_t most, std::size_t* largest) {
  std::vector<Copied> all;
  std::vector<Packet> room(most);
  while (const std::size_t count = source.NextBatch(room)) {
    EXPECT_LE(count, most);
    *largest = std::max(*largest, count);
    for (std::size_t i = 0; i < count; ++i) all.push_back(Copy(room[i]));
  }
  EXPECT_EQ(source.NextBatch(room), 0U) << "the end stays the end";
  return all;
}

/// Frames that differ, of lengths up to some thousand, in several times what a reader keeps in memory.
Buffer NumberedFrame(unsigned number) {
  Buffer frame = Ethernet(Mac(2), Mac(static_cast<std::uint8_t>(number)), 0x88B5, Zeros(number * 7919 % 3000));
  for (std::size_t i = 14; i < frame.size(); ++i) frame[i] = static_cast<std::uint8_t>(number + i);
  return frame;
}

constexpr unsigned kFrames = 3000;

Buffer LargePcap(bool cut_off) {
  const CaptureBytes file;
  Buffer bytes = file.PcapHeader();
  for (unsigned i = 0; i < kFrames; ++i) {
    const Buffer record = file.PcapRecord(1'577'836'800 + i, 0, NumberedFrame(i));
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  if (cut_off) bytes.resize(bytes.size() - 5);
  return bytes;
}

/// Sections of both byte orders, blocks between the packets, and packets that are left out.
Buffer LargePcapng() {
  Buffer bytes;
  for (bool big : {false, true, false}) {
    const CaptureBytes file(big);
    bytes = bytes + file.Section() + file.Interface() + file.Interface();
    for (unsigned i = 0; i < kFrames / 3; ++i) {
      Buffer block = file.Enhanced(i % 3, i, NumberedFrame(i));  // interface 2 is not there
      if (i % 10 == 0) block = block + file.Statistics(0, {}) + file.Block(99, Zeros(40));
      bytes.insert(bytes.end(), block.begin(), block.end());
    }
  }
  return bytes;
}

TEST(PacketBatch, HoldsWhatReadingOneByOneGives) {
  const CaptureFolder folder;
  struct {
    const char* name;
    Buffer bytes;
    std::size_t packets;
  } const cases[] = {{"pcap", LargePcap(false), kFrames},
                     {"cut off", LargePcap(true), kFrames - 1},
                     {"pcapng", LargePcapng(), kFrames / 3 * 2 + 1}};
  for (const auto& one : cases) {
    const std::string path = folder.Write(one.bytes);
    const auto open = [&path] {
      SourceError error;
      return OpenCaptureFile(path, &error);
    };
    const auto filter = [] {
      SourceError error;
      return PacketFilter::Make("less 1500", &error);
    };
    auto single = open();
    const std::vector<Copied> expected = OneByOne(*single);
    EXPECT_NEAR(static_cast<double>(expected.size()), static_cast<double>(one.packets), 2) << one.name;
    for (std::size_t most : {std::size_t{1}, std::size_t{7}, std::size_t{5000}}) {
      std::size_t largest = 0;
      auto plain = open();
      EXPECT_TRUE(ByTheBatch(*plain, most, &largest) == expected) << one.name << ", " << most;
      EXPECT_GE(largest, std::min<std::size_t>(most, 100)) << one.name;
      EXPECT_EQ(plain->warning().message, single->warning().message);

      auto merged_one = open();
      MergedSource merged({merged_one.get()});
      EXPECT_TRUE(ByTheBatch(merged, most, &largest) == expected) << one.name << ", merged";

      auto unfiltered = open(), filtered = open();
      auto filter_one = filter(), filter_other = filter();
      FilteredSource reference(unfiltered.get(), filter_one.get()), tested(filtered.get(), filter_other.get());
      EXPECT_TRUE(ByTheBatch(tested, most, &largest) == OneByOne(reference)) << one.name << ", filtered";
    }
  }
}

// As soon as only one source is left, the rest comes by the batch, under the right interfaces.
TEST(PacketBatch, OfTwoSourcesIsInTheOrderOfTime) {
  const CaptureFolder folder;
  const CaptureBytes file;
  const std::string path = folder.Write(LargePcap(false));
  const std::string other_path =
      folder.Write(file.PcapHeader() + file.PcapRecord(1'577'836'810, 0, NumberedFrame(1)), "other");
  const auto read = [&](std::size_t most) {
    SourceError error;
    auto one = OpenCaptureFile(path, &error), other = OpenCaptureFile(other_path, &error);
    MergedSource merged({other.get(), one.get()});
    std::size_t largest = 0;
    return most == 0 ? OneByOne(merged) : ByTheBatch(merged, most, &largest);
  };
  const std::vector<Copied> expected = read(0);
  EXPECT_EQ(expected.size(), kFrames + 1U);
  EXPECT_TRUE(read(64) == expected);
}

}  // namespace
}  // namespace orvo::test
