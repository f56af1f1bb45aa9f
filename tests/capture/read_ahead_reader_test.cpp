#include "capture/source/read_ahead_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <vector>

namespace orvo::test {
namespace {

/// Counts upwards in bytes, a piece at a time, and then ends as it is told to.
class CountingReader final : public ByteReader {
 public:
  CountingReader(std::size_t length, std::size_t piece, bool fails) : length_(length), piece_(piece), fails_(fails) {}

  std::size_t Read(std::uint8_t* room, std::size_t size) override {
    const std::size_t count = std::min({size, piece_, length_ - static_cast<std::size_t>(position_)});
    if (count == 0 && fails_) throw std::bad_alloc();
    if (count == 0) problem_ = "it is over";
    for (std::size_t i = 0; i < count; ++i) room[i] = ByteAt(position_++);
    return count;
  }
  std::uint64_t position() const override { return position_; }
  std::uint64_t size() const override { return length_; }
  const std::string& problem() const override { return problem_; }

  static std::uint8_t ByteAt(std::uint64_t position) { return static_cast<std::uint8_t>(position * 7 ^ position >> 8); }

 private:
  const std::size_t length_;
  const std::size_t piece_;
  const bool fails_;
  std::uint64_t position_ = 0;
  std::string problem_;
};

std::unique_ptr<ByteReader> ReadAhead(std::size_t length, std::size_t piece, bool fails = false) {
  return MakeReadAheadReader(std::make_unique<CountingReader>(length, piece, fails));
}

constexpr std::size_t kMuch = 5'000'001;  // several times what is read ahead

TEST(ReadAheadReader, GivesTheBytesAndTheEndOfTheStream) {
  const std::pair<std::size_t, std::size_t> streams[] = {
      {0, 1}, {1, 1}, {1 << 18, 1 << 18}, {(1 << 18) + 1, 1 << 18}, {kMuch, 999}, {kMuch, kMuch}};
  for (const auto& [length, piece] : streams) {
    SCOPED_TRACE(testing::Message() << length << " bytes by " << piece);
    const std::unique_ptr<ByteReader> reader = ReadAhead(length, piece);
    EXPECT_EQ(reader->size(), length);
    std::vector<std::uint8_t> room(100'000);
    std::uint64_t total = 0;
    bool right = true;
    while (const std::size_t count = reader->Read(room.data(), room.size())) {
      for (std::size_t i = 0; i < count; ++i) right = right && room[i] == CountingReader::ByteAt(total + i);
      total += count;
      EXPECT_GE(reader->position(), total);
      EXPECT_LE(reader->position(), length);
    }
    EXPECT_TRUE(right);
    EXPECT_EQ(total, length);
    EXPECT_EQ(reader->problem(), "it is over");
    EXPECT_EQ(reader->Read(room.data(), room.size()), 0U) << "it stays over";
  }
}

TEST(ReadAheadReader, HandsOnWhatIsRaisedBehindWhatWasRead) {
  const std::unique_ptr<ByteReader> reader = ReadAhead(kMuch, 4096, /*fails=*/true);
  std::vector<std::uint8_t> room(100'000);
  std::size_t total = 0;
  auto read_all = [&] {
    while (const std::size_t count = reader->Read(room.data(), room.size())) total += count;
  };
  EXPECT_THROW(read_all(), std::bad_alloc);
  EXPECT_EQ(total, kMuch);
}

TEST(ReadAheadReader, EndsBeforeItsStreamAndManyMayReadAtOnce) {
  std::vector<std::unique_ptr<ByteReader>> readers;
  std::uint8_t byte = 1;
  for (int i = 0; i < 10; ++i) {
    readers.push_back(ReadAhead(kMuch, 4096));
    EXPECT_EQ(readers.back()->Read(&byte, 1), 1U);
    EXPECT_EQ(byte, 0);
    EXPECT_EQ(readers.back()->problem(), "");
  }
}

}  // namespace
}  // namespace orvo::test
