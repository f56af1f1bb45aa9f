#include <gtest/gtest.h>

#include <thread>

#include "capture/decode/packet_facts.h"
#include "capture/tables/address_table.h"
#include "capture/tables/paged_vector.h"
#include "capture/tables/row_index.h"
#include "tests/capture/frames.h"

namespace orvo::test {
namespace {

constexpr std::size_t kPage = TablePages<std::uint64_t>::kItems;

PagedVector<std::uint64_t> Counting(std::size_t count) {
  PagedVector<std::uint64_t> vector;
  for (std::size_t i = 0; i < count; ++i) vector.Append(i);
  return vector;
}

TEST(PagedVector, AFrozenTableKeepsItsMoment) {
  auto vector = Counting(3 * kPage + 1);
  FrozenTable<std::uint64_t> first = vector.Freeze();
  vector.Edit(0) = 111;
  vector.Append(222);
  FrozenTable<std::uint64_t> second = vector.Freeze();
  vector.Edit(0) = 333;
  vector.Edit(3 * kPage + 1) = 444;
  for (std::size_t i = 0; i < kPage; ++i) vector.Append(i);

  ASSERT_EQ(first.size(), 3 * kPage + 1);
  for (std::size_t i = 0; i < first.size(); ++i) ASSERT_EQ(first[i], i);
  ASSERT_EQ(second.size(), 3 * kPage + 2);
  EXPECT_EQ(second[0], 111U);
  EXPECT_EQ(second[3 * kPage + 1], 222U);
  EXPECT_EQ(vector[0], 333U);
  EXPECT_EQ(vector[3 * kPage + 1], 444U);
  EXPECT_EQ(vector.size(), 4 * kPage + 2);
}

TEST(PagedVector, CopiesOnlyThePageThatIsWritten) {
  auto vector = Counting(3 * kPage);
  const std::uint64_t* before = &vector.Edit(kPage);
  FrozenTable<std::uint64_t> frozen = vector.Freeze();
  EXPECT_EQ(&frozen[kPage], before) << "freezing copies nothing";
  std::uint64_t* written = &vector.Edit(kPage);
  EXPECT_NE(written, before) << "the first write copies";
  EXPECT_EQ(&vector.Edit(kPage), written) << "the second does not";
  EXPECT_EQ(&vector[0], &frozen[0]) << "other pages stay shared";
  EXPECT_EQ(&vector[2 * kPage], &frozen[2 * kPage]);
}

TEST(PagedVector, OutlivesItsWriterAndFreezesEmpty) {
  FrozenTable<std::uint64_t> frozen;
  FrozenTable<std::uint64_t> empty;
  {
    PagedVector<std::uint64_t> vector;
    empty = vector.Freeze();
    vector.Append(7);
    frozen = vector.Freeze();
  }
  EXPECT_EQ(empty.size(), 0U);
  EXPECT_EQ(frozen[0], 7U);
}

TEST(PagedVector, ReadersNeedNoLock) {
  auto vector = Counting(4 * kPage);
  FrozenTable<std::uint64_t> frozen = vector.Freeze();
  std::thread reader([&frozen] {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < frozen.size(); ++i) sum += frozen[i];
    EXPECT_EQ(sum, frozen.size() * (frozen.size() - 1) / 2);
    frozen = {};
  });
  for (std::size_t i = 0; i < vector.size(); ++i) vector.Edit(i) = 0;
  for (std::size_t i = 0; i < 4 * kPage; ++i) vector.Append(i);
  reader.join();
}

TEST(RowIndex, TellsRowsOfOneHashApart) {
  RowIndex index;
  constexpr std::uint32_t kRows = 3000;
  for (std::uint32_t row = 0; row < kRows; ++row) {
    index.Reserve();
    index.Add(row / 10, row);
  }
  for (std::uint32_t row = 0; row < kRows; ++row) {
    EXPECT_EQ(index.Find(row / 10, [&](std::uint32_t candidate) { return candidate == row; }), row);
  }
  EXPECT_EQ(index.Find(5, [](std::uint32_t) { return false; }), kNoRow);
}

AddressRecord Physical(std::uint8_t last) {
  AddressRecord record;
  SetAddress<6>(&record, kAddressPhysical, Mac(last).data());
  return record;
}

TEST(AddressTable, KeepsIndicesAndChainsTypes) {
  AddressTable table(100);
  AddressRecord ip;
  SetAddress<4>(&ip, kAddressIp, Ip4(1).data());
  EXPECT_EQ(table.Intern(Physical(1)), 0U);
  EXPECT_EQ(table.Intern(ip), 1U);
  FrozenAddresses early = table.Freeze();
  EXPECT_EQ(table.Intern(Physical(2)), 2U);
  EXPECT_EQ(table.Intern(ProtocolRecord(0x1234)), 3U);
  EXPECT_EQ(table.Intern(Physical(1)), 0U);
  FrozenAddresses late = table.Freeze();

  EXPECT_EQ(late.first[kAddressPhysical], 0U);
  EXPECT_EQ(late.next[0], 2U);
  EXPECT_EQ(late.next[2], kNoAddress);
  EXPECT_EQ(ProtocolNumber(late.records[3]), 0x1234);
  EXPECT_EQ(early.records.size(), 2U);
  EXPECT_EQ(early.next[0], kNoAddress);
  EXPECT_EQ(early.first[kAddressProtocol], kNoAddress);
}

TEST(AddressTable, TakesProtocolsWhenItIsFull) {
  AddressTable table(1);
  EXPECT_EQ(table.Intern(ProtocolRecord(1)), 0U);
  EXPECT_EQ(table.Intern(Physical(1)), 1U);
  EXPECT_EQ(table.Intern(Physical(2)), kNoAddress);
  EXPECT_EQ(table.Intern(ProtocolRecord(2)), 2U);
  EXPECT_EQ(table.Intern(Physical(1)), 1U);
}

}  // namespace
}  // namespace orvo::test
