#include "capture/source/merged_source.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

namespace orvo {
namespace {

/// Packets at given times.
class ListedSource final : public PacketSource {
 public:
  explicit ListedSource(std::vector<std::uint64_t> times) : times_(std::move(times)) {}
  bool Next(Packet* packet) override {
    if (next_ == times_.size()) return false;
    *packet = Packet{.time = times_[next_++], .bytes = {}, .interface_number = 1};
    return true;
  }
  SourceProgress progress() const override { return {next_, times_.size()}; }
  std::uint64_t dropped() const override { return times_.size(); }
  const SourceError& warning() const override { return warning_; }

 private:
  std::vector<std::uint64_t> times_;
  std::size_t next_ = 0;
  SourceError warning_;
};

TEST(MergedSourceTest, DeliversInTheOrderOfTime) {
  ListedSource first({1, 5, 4, 9});  // runs backwards once
  ListedSource second({2, 5, 5});
  ListedSource none({});
  MergedSource merged({&first, &none, &second});
  std::vector<std::pair<std::uint64_t, int>> order;
  for (Packet packet; merged.Next(&packet);) {
    EXPECT_EQ(packet.interface_number % 65'536, 1U);
    order.emplace_back(packet.time, packet.interface_number < 65'536 ? 1 : 2);
  }
  using Pair = std::pair<std::uint64_t, int>;
  EXPECT_THAT(order,
              testing::ElementsAre(Pair(1, 1), Pair(2, 2), Pair(5, 1), Pair(4, 1), Pair(5, 2), Pair(5, 2), Pair(9, 1)));
  EXPECT_EQ(merged.progress().bytes_read, 7U);
  EXPECT_EQ(merged.dropped(), 7U);
  Packet packet;
  EXPECT_FALSE(merged.Next(&packet)) << "the end stays the end";
}

}  // namespace
}  // namespace orvo
