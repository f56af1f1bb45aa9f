#include "util/byte_stream.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "platform/error.h"
#include "util/stream_on_byte_stream.h"

namespace orvo {
namespace {

struct Shape {
  std::uint32_t position, length, capacity;
  bool operator==(const Shape&) const = default;
};

void PrintTo(const Shape& shape, std::ostream* out) {
  *out << "position " << shape.position << " length " << shape.length << " capacity " << shape.capacity;
}

Shape ShapeOf(const CByteStream& stream) {
  return {stream.position(), stream.length(), stream.capacity()};
}

std::string Content(const CByteStream& stream) {
  return {reinterpret_cast<const char*>(stream.buffer()), stream.length()};
}

TEST(ByteStream, WritesReadsAndFindsItsEnd) {
  CByteStream stream;
  EXPECT_TRUE(stream.IsAtEnd());
  EXPECT_EQ(stream.buffer(), nullptr);
  EXPECT_FALSE(stream.Write("x", 0));
  EXPECT_EQ(ShapeOf(stream), (Shape{0, 0, 0}));

  EXPECT_TRUE(stream.Write("abcdefgh", 8));
  EXPECT_EQ(ShapeOf(stream), (Shape{8, 8, 1024}));
  stream.Seek(2, CByteStream::kFromStart);
  EXPECT_TRUE(stream.Write("XY", 2));
  EXPECT_TRUE(stream.Write(nullptr, 3));
  EXPECT_EQ(Content(stream), "abXYefgh");
  EXPECT_EQ(stream.position(), 7U);

  stream.Seek(0, CByteStream::kFromStart);
  std::array<char, 16> bytes{};
  EXPECT_FALSE(stream.Read(nullptr, 1));
  EXPECT_FALSE(stream.Read(bytes.data(), 0));
  EXPECT_EQ(stream.position(), 0U);
  for (std::uint32_t count : {1U, 2U, 4U}) EXPECT_TRUE(stream.Read(bytes.data() + stream.position(), count));
  EXPECT_STREQ(bytes.data(), "abXYefg");
  EXPECT_FALSE(stream.Read(bytes.data(), 2)) << "more than is left";
  EXPECT_STREQ(bytes.data(), "abXYefg");
  EXPECT_TRUE(stream.IsAtEnd());
}

TEST(ByteStream, SeeksWithinItsLength) {
  const struct {
    std::uint32_t begin, offset, origin, expected;
  } cases[] = {
      {3, 0, CByteStream::kFromStart, 0},
      {3, 10, CByteStream::kFromStart, 10},
      {3, 11, CByteStream::kFromStart, 10},
      {3, 0xFFFFFFFF, CByteStream::kFromStart, 10},
      {3, 4, CByteStream::kFromCurrent, 7},
      {3, 8, CByteStream::kFromCurrent, 10},
      {3, 0xFFFFFFFF, CByteStream::kFromCurrent, 10},
      {3, 0, CByteStream::kFromEnd, 10},
      {3, 4, CByteStream::kFromEnd, 6},
      {3, 10, CByteStream::kFromEnd, 0},
      {3, 11, CByteStream::kFromEnd, 0},
      {3, 5, 3, 3},
  };
  CByteStream stream;
  stream.SetLength(10);
  for (const auto& c : cases) {
    stream.Seek(c.begin, CByteStream::kFromStart);
    stream.Seek(c.offset, c.origin);
    EXPECT_EQ(stream.position(), c.expected) << "offset " << c.offset << " origin " << c.origin;
  }
}

TEST(ByteStream, GrowsAndShrinksInSteps) {
  CByteStream stream(65536);
  stream.SetLength(10);
  EXPECT_EQ(ShapeOf(stream), (Shape{0, 10, 65536}));
  stream.SetLength(70010);
  EXPECT_EQ(ShapeOf(stream), (Shape{0, 70010, 131072}));
  stream.Seek(70000, CByteStream::kFromStart);
  stream.SetLength(65537);
  EXPECT_EQ(ShapeOf(stream), (Shape{65537, 65537, 131072})) << "above capacity less one step nothing is given back";
  stream.SetLength(65536);
  EXPECT_EQ(ShapeOf(stream), (Shape{65536, 65536, 65536})) << "a multiple of the step stays as it is";
  stream.SetLength(131072);
  stream.SetLength(131072);
  EXPECT_EQ(stream.capacity(), 131072U);
  stream.SetLength(10);
  EXPECT_EQ(ShapeOf(stream), (Shape{10, 10, 65536}));
  stream.Reserve(65526);
  EXPECT_EQ(stream.capacity(), 65536U);
  stream.Reserve(65527);
  EXPECT_EQ(stream.capacity(), 131072U);
  stream.SetLength(0);
  EXPECT_EQ(ShapeOf(stream), (Shape{0, 0, 0}));
  EXPECT_EQ(stream.buffer(), nullptr);
  EXPECT_TRUE(stream.Write("again", 5));
  EXPECT_EQ(Content(stream), "again");
}

TEST(ByteStream, RefusesMoreThan32Bits) {
  CByteStream stream;
  stream.Write("abc", 3);
  try {
    stream.Reserve(0xFFFFFFFF);
    FAIL() << "4 GiB fit";
  } catch (const StatusError& error) {
    EXPECT_EQ(error.status(), E_OUTOFMEMORY);
  }
  EXPECT_EQ(ShapeOf(stream), (Shape{3, 3, 1024}));
  EXPECT_EQ(Content(stream), "abc");
}

TEST(ByteStream, LeavesTheCallersBytesTheirSize) {
  std::array<std::uint8_t, 4> bytes{'a', 'b', 'c', 'd'};
  CByteStream stream(bytes.data(), bytes.size());
  EXPECT_TRUE(stream.IsAtEnd());
  EXPECT_TRUE(stream.Write("12", 2));
  EXPECT_FALSE(stream.Write("345", 3));
  EXPECT_EQ(ShapeOf(stream), (Shape{2, 2, 4}));
  stream.SetLength(0);
  stream.SetLength(100);
  stream.Reserve(100);
  EXPECT_EQ(ShapeOf(stream), (Shape{2, 2, 4}));
  EXPECT_TRUE(stream.Write("34", 2));
  EXPECT_EQ(Content(stream), "1234");
}

TEST(StreamOnByteStream, AnswersStreamInterfacesOnly) {
  CStreamOnCByteStream stream;
  auto* itself = static_cast<IStream*>(&stream);
  for (const Guid& iid : {IStream::kIid, ISequentialStream::kIid, IUnknown::kIid}) {
    void* found = nullptr;
    EXPECT_EQ(stream.QueryInterface(iid, &found), S_OK);
    EXPECT_EQ(found, itself);
  }
  void* found = itself;
  EXPECT_EQ(stream.QueryInterface("0000010C-0000-0000-C000-000000000046"_guid, &found), E_NOINTERFACE);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(stream.QueryInterface(IStream::kIid, nullptr), E_POINTER);
  EXPECT_EQ(stream.AddRef(), 1U);
  EXPECT_EQ(stream.Release(), 1U);
  EXPECT_EQ(stream.Release(), 1U);
}

TEST(StreamOnByteStream, CarriesBytesFromWriterToReader) {
  CStreamOnCByteStream stream;
  std::uint32_t done = 99;
  EXPECT_EQ(stream.Write(nullptr, 5, &done), E_POINTER);
  EXPECT_EQ(stream.Write("", 0, &done), S_OK);
  EXPECT_EQ(done, 0U);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{0, 0, 0}));

  EXPECT_EQ(stream.Write("0123456789", 10, &done), S_OK);
  EXPECT_EQ(done, 10U);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{10, 10, 65536}));
  std::string many(70000, 'z');
  EXPECT_EQ(stream.Write(many.data(), 70000, nullptr), S_OK);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{70010, 70010, 131072}));

  EXPECT_EQ(stream.Seek(4, IStream::kFromStart, nullptr), S_OK);
  EXPECT_EQ(stream.Write("AB", 2, &done), S_OK);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{6, 70010, 131072}));

  stream.Seek(0, IStream::kFromStart, nullptr);
  std::vector<char> bytes(80000);
  EXPECT_EQ(stream.Read(nullptr, 1, &done), E_POINTER);
  EXPECT_EQ(stream.Read(bytes.data(), 80000, &done), S_OK);
  EXPECT_EQ(done, 70010U);
  EXPECT_EQ(std::string(bytes.data(), done), "0123AB6789" + many);
  EXPECT_EQ(stream.Read(bytes.data(), 1, &done), S_OK);
  EXPECT_EQ(done, 0U);
}

TEST(StreamOnByteStream, Seeks) {
  constexpr std::int64_t kTwo32 = std::int64_t{1} << 32;
  const struct {
    std::int64_t move;
    std::uint32_t origin;
    Status status;
    std::uint64_t position;
  } cases[] = {
      {5, IStream::kFromStart, S_OK, 5},
      {100, IStream::kFromStart, S_OK, 10},
      {kTwo32 + 2, IStream::kFromStart, S_OK, 2},
      {-1, IStream::kFromStart, E_INVALIDARG, 3},
      {INT64_MIN, IStream::kFromStart, E_INVALIDARG, 3},
      {4, IStream::kFromCurrent, S_OK, 7},
      {100, IStream::kFromCurrent, S_OK, 10},
      {-3, IStream::kFromCurrent, S_OK, 0},
      {-4, IStream::kFromCurrent, E_INVALIDARG, 3},
      {-kTwo32 - 1, IStream::kFromCurrent, S_OK, 2},
      {0, IStream::kFromEnd, S_OK, 10},
      {-10, IStream::kFromEnd, S_OK, 0},
      {-11, IStream::kFromEnd, E_INVALIDARG, 3},
      {1, IStream::kFromEnd, S_OK, 10},
      {0, 3, STG_E_INVALIDFUNCTION, 3},
  };
  CStreamOnCByteStream stream;
  stream.SetSize(10);
  for (const auto& c : cases) {
    stream.Seek(3, IStream::kFromStart, nullptr);
    std::uint64_t position = 0xFFFF'FFFF'FFFF'FFFF;
    EXPECT_EQ(stream.Seek(c.move, c.origin, &position), c.status) << c.move << " from " << c.origin;
    if (c.status == S_OK) {
      EXPECT_EQ(position, c.position) << c.move << " from " << c.origin;
    }
    EXPECT_EQ(stream.bytes().position(), c.position) << c.move << " from " << c.origin;
  }
}

TEST(StreamOnByteStream, SizesWithin32Bits) {
  CStreamOnCByteStream stream;
  EXPECT_EQ(stream.SetSize(131072), S_OK);
  EXPECT_EQ(stream.Seek(0, IStream::kFromEnd, nullptr), S_OK);
  EXPECT_EQ(stream.SetSize(std::uint64_t{1} << 32), E_INVALIDARG);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{131072, 131072, 131072}));
  std::uint32_t written = 99;
  char byte = 0;
  EXPECT_EQ(stream.Write(&byte, 0xFFFFFFFF, &written), STG_E_MEDIUMFULL);
  EXPECT_EQ(written, 0U);
  EXPECT_EQ(stream.SetSize(10), S_OK);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{10, 10, 65536}));
  EXPECT_EQ(stream.SetSize(0), S_OK);
  EXPECT_EQ(ShapeOf(stream.bytes()), (Shape{0, 0, 0}));
}

}  // namespace
}  // namespace orvo
