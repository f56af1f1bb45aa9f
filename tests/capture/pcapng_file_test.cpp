#include "capture/source/pcapng_file.h"

#include <gmock/gmock.h>

#include "platform/clock.h"
#include "tests/capture/capture_bytes.h"

namespace orvo::test {
namespace {

using testing::HasSubstr;

constexpr std::uint64_t k2020 = 1'577'836'800;  // kNewYear in seconds since 1970
constexpr std::uint32_t kNoBlock = 0x0BAD;

Buffer Frame(std::size_t size = 42) {
  Buffer frame = Ethernet(Mac(2), Mac(1), 0x0806, Arp());
  frame.resize(size, 0x55);
  return frame;
}

ReadCapture Read(const Buffer& bytes) {
  static const CaptureFolder folder;
  return ReadCapture(folder.Write(bytes));
}

TEST(PcapngFileTest, ReadsEveryKindOfBlockInBothByteOrders) {
  for (bool big : {false, true}) {
    const CaptureBytes file(big);
    const Buffer nanoseconds = file.Option(9, {9});
    const ReadCapture read = Read(
        file.Section() + file.Interface(1, nanoseconds + file.Option(0, {}), 20) + file.Interface(105) +
        file.Block(4, Zeros(20)) + file.Simple(Frame(20), 60) +
        file.Enhanced(0, k2020 * kSecond + 7, Frame(43), file.Option(4, file.U64(3)) + file.Option(0, {})) +
        file.Block(kNoBlock, Zeros(5)) + file.Simple(Frame(20), 42) +
        file.Obsolete(1, 2, k2020 * 1'000'000 + 7, Frame(44)) + file.Obsolete(1, 0xFFFF, k2020 * 1'000'000, Frame(0)) +
        file.Statistics(1,
                        file.Option(4, file.U64(900)) + file.Option(5, file.U64(30)) + file.Option(7, file.U64(12))));
    ASSERT_EQ(read.packets.size(), 5U) << read.error.message << read.warning.message;
    struct {
      std::uint64_t time;
      std::size_t size;
      std::uint32_t original, link_type, interface_number;
    } const expected[] = {
        {kUnixEpoch, 20, 60, 1, 0},  // no time before it
        {kNewYear + 7, 43, 43, 1, 0},       {kNewYear + 7, 20, 42, 1, 0},
        {kNewYear + 7'000, 44, 44, 105, 1}, {kNewYear, 0, 0, 105, 1},
    };
    for (std::size_t i = 0; i < read.packets.size(); ++i) {
      const ReadPacket& got = read.packets[i];
      EXPECT_EQ(got.packet.time, expected[i].time) << i;
      EXPECT_EQ(got.bytes, Frame(expected[i].size)) << i;
      EXPECT_EQ(got.packet.original_length, expected[i].original) << i;
      EXPECT_EQ(got.packet.link_type, expected[i].link_type) << i;
      EXPECT_EQ(got.packet.interface_number, expected[i].interface_number) << i;
    }
    EXPECT_TRUE(read.ended);
    EXPECT_EQ(read.dropped, 3U + 42U) << "an interface's total holds what its packets tell";
    EXPECT_EQ(read.progress.bytes_read, read.progress.bytes_total);
    EXPECT_THAT(read.warning.message, testing::Not(HasSubstr("stopped")));
  }
}

TEST(PcapngFileTest, SectionsHaveTheirOwnOrderAndInterfaces) {
  const CaptureBytes little(false), big(true);
  const ReadCapture read =
      Read(little.Section() + little.Interface() + little.Interface() + little.Enhanced(1, 0, Frame()) +
           little.Statistics(1, little.Option(5, little.U64(2))) + big.Section() + big.Interface(101) +
           big.Enhanced(0, 1, Frame()) + big.Statistics(0, big.Option(5, big.U64(40))));
  ASSERT_EQ(read.packets.size(), 2U) << read.error.message << read.warning.message;
  EXPECT_EQ(read.packets[0].packet.interface_number, 1U);
  EXPECT_EQ(read.packets[1].packet.interface_number, 2U);
  EXPECT_EQ(read.packets[1].packet.link_type, 12U) << "raw IP has another number in files";
  EXPECT_EQ(read.packets[1].packet.time, kUnixEpoch + 1000);
  EXPECT_EQ(read.dropped, 42U);
}

TEST(PcapngFileTest, TimesHaveEveryResolution) {
  constexpr std::uint64_t kMax = ~std::uint64_t{0};
  const CaptureBytes file;
  struct {
    std::uint8_t resolution;
    std::int64_t offset;
    std::uint64_t stamp;
    std::uint64_t time;
  } const cases[] = {
      {0, 0, k2020, kNewYear},
      {3, 0, k2020 * 1000 + 5, kNewYear + 5'000'000},
      {6, 3, k2020 * 1'000'000 + 5, kNewYear + 3 * kSecond + 5'000},
      {6, -3, k2020 * 1'000'000 + 5, kNewYear - 3 * kSecond + 5'000},
      {9, 0, k2020 * kSecond + 5, kNewYear + 5},
      {10, 0, k2020 * kSecond * 10 + 59, kNewYear + 5},
      {12, static_cast<std::int64_t>(k2020), 5'999, kNewYear + 5},
      {19, 0, 15'000'000'000'000'000'000U, kUnixEpoch + kSecond + kSecond / 2},
      {20, 0, 15'000'000'000'000'000'000U, kUnixEpoch + 150'000'000},
      {28, 0, kMax, kUnixEpoch + 1},
      {29, 0, kMax, kUnixEpoch},
      {127, 0, kMax, kUnixEpoch},
      {0x80, 0, k2020, kNewYear},
      {0x80 | 10, 0, k2020 * 1024 + 512, kNewYear + kSecond / 2},
      {0x80 | 32, 0, (k2020 << 32) + (1U << 30), kNewYear + kSecond / 4},
      {0x80 | 63, 0, std::uint64_t{3} << 62, kUnixEpoch + kSecond + kSecond / 2},
      {0x80 | 64, 0, std::uint64_t{1} << 63, kUnixEpoch + kSecond / 2},
      {0x80 | 127, 0, kMax, kUnixEpoch},
      // Beyond both ends of what a time value can hold, of which 0 stands for none.
      {0, 0, kMax, kMax},
      {9, 0, kMax, kMax},
      {9, INT64_MAX, 1, kMax},
      {6, INT64_MIN, k2020, 1},
      {6, -11'644'473'600, 0, 1},
      {6, -11'644'473'600, 7, 7'000},
  };
  for (const auto& one : cases) {
    const Buffer options =
        file.Option(9, {one.resolution}) + file.Option(14, file.U64(static_cast<std::uint64_t>(one.offset)));
    const ReadCapture read = Read(file.Section() + file.Interface(1, options) + file.Enhanced(0, one.stamp, Frame()));
    ASSERT_EQ(read.packets.size(), 1U) << read.error.message << read.warning.message;
    EXPECT_EQ(read.packets[0].packet.time, one.time) << int{one.resolution} << " " << one.offset << " " << one.stamp;
  }
}

TEST(PcapngFileTest, LiesCostOnlyWhatTheyStandFor) {
  const CaptureBytes file;
  const Buffer start = file.Section() + file.Interface(), good = file.Enhanced(0, 0, Frame());
  auto with = [](Buffer bytes, std::size_t at, const Buffer& patch) {
    std::copy(patch.begin(), patch.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    return bytes;
  };
  struct {
    const char* what;
    Buffer blocks;  // behind a section with one interface
    std::size_t packets;
    const char* warning;
  } const cases[] = {
      {"nothing", {}, 0, ""},
      {"an unknown interface", good + file.Enhanced(1, 0, Frame()) + good, 2, "behind packet 1 names an interface"},
      {"the same in the obsolete block", file.Obsolete(7, 0, 0, Frame()) + good, 1, "names an interface"},
      {"more captured than the block holds", file.Enhanced(0, 0, Frame(), 45, 45) + good, 1, "longer than its block"},
      {"more captured than 32 bits of sums hold", file.Enhanced(0, 0, Frame(), 0xFFFFFFFF, 42) + good, 1,
       "longer than"},
      {"the same in the obsolete block", with(file.Obsolete(0, 0, 0, Frame()), 20, file.U32(46)) + good, 1, "longer"},
      {"no room for the fixed fields", file.Block(6, Zeros(16)) + file.Block(2, Zeros(4)) + file.Block(3, {}) + good, 1,
       "too short"},
      {"a simple packet that claims more than its block", file.Simple(Frame(), 5000) + good, 2, ""},
      {"longer than any link carries", file.Enhanced(0, 0, Frame(), 42, 0x7FFFFFFF), 1, "claims to be 2147483647"},
      {"captured more than there was", file.Enhanced(0, 0, Frame(), 42, 7), 1, ""},
      {"statistics of no interface", file.Statistics(9, file.Option(5, file.U64(1))) + good, 1, ""},
      {"statistics without fields", file.Block(5, Zeros(8)) + good, 1, ""},
      {"an option that runs out of its block", file.Statistics(0, file.U16(5) + file.U16(8)) + good, 1, ""},
      {"an option of no length", file.Statistics(0, file.U16(5) + file.U16(0)) + good, 1, ""},
      {"a short interface", file.Block(1, Zeros(4)) + good, 0, "an interface description is too short"},
      {"a short section", file.Block(0x0A0D0D0A, file.U32(0x1A2B3C4D)) + good, 0, "a section header is too short"},
      {"a section of another version", good + file.Section(2) + good, 1, "version 2"},
      {"a section of no byte order", good + with(file.Section(), 8, Zeros(4)), 1, "byte order cannot be told"},
      {"a packet behind a section without interfaces", good + file.Section() + good, 1, "names an interface"},
      {"a length of nothing", good + with(good, 4, file.U32(0)), 1, "a length of 0"},
      {"a length below the smallest", good + with(good, 4, file.U32(8)), 1, "a length of 8"},
      {"a length of odd bytes", good + with(good, 4, file.U32(75)), 1, "a length of 75"},
      {"a length beyond every packet", good + with(good, 4, file.U32(0xFFFFFFFC)), 1, "a length of 4294967292"},
      {"a length beyond the file", good + with(good, 4, file.U32(5000)), 1, "ends in the middle of a block"},
      {"lengths that differ", good + with(good, good.size() - 4, file.U32(80)) + good, 1, "two lengths"},
      {"an unknown block beyond the file", good + file.U32(kNoBlock) + file.U32(0x7FFFFFFC) + Zeros(40), 1,
       "ends in the middle of a block"},
      {"zeros", good + Zeros(64), 1, "a length of 0"},
  };
  for (const auto& one : cases) {
    const ReadCapture read = Read(start + one.blocks);
    EXPECT_TRUE(read.opened) << one.what << ": " << read.error.message;
    EXPECT_EQ(read.packets.size(), one.packets) << one.what;
    for (const ReadPacket& got : read.packets) EXPECT_GE(got.packet.original_length, got.bytes.size()) << one.what;
    EXPECT_EQ(Failed(read.warning.status), *one.warning != '\0') << one.what << ": " << read.warning.message;
    EXPECT_THAT(read.warning.message, HasSubstr(one.warning)) << one.what;
    EXPECT_TRUE(read.ended) << one.what;
  }
}

TEST(PcapngFileTest, BlocksThatAreNotUsedMayBeLongerThanMemoryIsSpentOn) {
  const CaptureBytes file;
  const CaptureFolder folder;
  const Buffer good = file.Enhanced(0, 0, Frame());
  const std::string path =
      folder.Write(file.Section() + file.Interface() + good + file.Block(kNoBlock, Zeros(17 << 20)) + good);
  const ReadCapture read(path);
  EXPECT_EQ(read.packets.size(), 2U);
  EXPECT_EQ(read.warning.message, "");
}

TEST(PcapngFileTest, InterfacesAreBounded) {
  const CaptureBytes file;
  Buffer many = file.Section();
  const Buffer one = file.Interface();
  many.reserve(one.size() * 65'537 + many.size());
  for (int i = 0; i < 65'536; ++i) many.insert(many.end(), one.begin(), one.end());
  const Buffer last = file.Enhanced(65'535, 0, Frame());
  const ReadCapture full = Read(many + last + file.Section() + file.Interface() + file.Enhanced(0, 0, Frame()));
  ASSERT_EQ(full.packets.size(), 2U) << full.warning.message;
  EXPECT_EQ(full.packets[0].packet.interface_number, 65'535U);
  EXPECT_EQ(full.packets[1].packet.interface_number, 65'535U) << "later ones share the last number";
  const ReadCapture over = Read(many + one + last);
  EXPECT_EQ(over.packets.size(), 0U);
  EXPECT_THAT(over.warning.message, HasSubstr("more than 65536 interfaces"));
}

TEST(PcapngFileTest, EveryPrefixEndsSoundlyOrWithAWarning) {
  for (bool big : {false, true}) {
    const CaptureBytes file(big);
    const Buffer whole = file.Section() + file.Interface(1, file.Option(9, {9})) + file.Simple(Frame(), 42) +
                         file.Enhanced(0, 5, Frame(43), file.Option(4, file.U64(3))) + file.Block(kNoBlock, Zeros(9)) +
                         file.Obsolete(0, 2, 5, Frame()) + file.Statistics(0, file.Option(5, file.U64(1)));
    std::size_t most = 0;
    int sound = 0;
    for (std::size_t size = 1; size <= whole.size(); ++size) {
      const ReadCapture read = Read(Buffer(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
      EXPECT_EQ(read.opened, size >= file.Section().size()) << size << read.error.message;
      EXPECT_GE(read.packets.size(), most) << size;
      most = read.packets.size();
      if (read.opened) sound += Succeeded(read.warning.status);
    }
    EXPECT_EQ(most, 3U);
    EXPECT_EQ(sound, 7) << "the ends of the seven blocks";
  }
}

TEST(PcapngFileTest, FramesThatCannotBeLookedIntoAreGivenWithOneWarning) {
  const CaptureBytes file;
  Buffer bytes = file.Section() + file.Interface(195) + file.Interface(187) + file.Interface(149);
  for (std::uint32_t i = 0; i < 6; ++i) bytes = bytes + file.Enhanced(i % 2, i, Frame());
  const ReadCapture read = Read(bytes);
  ASSERT_EQ(read.packets.size(), 6U);
  EXPECT_EQ(read.packets[5].packet.link_type, 187U);
  const std::string& message = read.warning.message;
  EXPECT_THAT(message, HasSubstr("link type 195 (IEEE802_15_4)"));
  EXPECT_THAT(message, HasSubstr("link type 187 (BLUETOOTH_HCI_H4)"));
  EXPECT_EQ(message.find("195"), message.rfind("195")) << "once, and not the one without frames: " << message;
  EXPECT_EQ(message.find("149"), std::string::npos) << message;
}

}  // namespace
}  // namespace orvo::test
