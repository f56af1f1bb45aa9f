#include "util/array_ex.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "platform/error.h"
#include "util/typed_array_ex.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kLast = CArrayEx::kLast;
constexpr std::int32_t kNone = CArrayEx::kNone;

using Numbers = TArrayEx<std::uint32_t>;

Numbers* Fill(Numbers* array, const std::vector<std::uint32_t>& values) {
  for (std::uint32_t value : values) array->Add(value);
  return array;
}

std::vector<std::uint32_t> Content(const Numbers& array) {
  std::vector<std::uint32_t> values;
  values.reserve(static_cast<std::size_t>(array.count()));
  for (std::int32_t i = 0; i < array.count(); ++i) values.push_back(array[i]);
  return values;
}

/// Orders numbers from the largest to the smallest, and tells when it is destroyed.
class Descending : public TIntComparator<std::uint32_t> {
 public:
  explicit Descending(int* destroyed) : destroyed_(destroyed) {}
  ~Descending() override { ++*destroyed_; }
  int Compare(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const override {
    return -TIntComparator::Compare(a, b, size_a, size_b);
  }

 private:
  int* destroyed_;
};

TEST(ArrayEx, AnEmptyArrayAnswersEverything) {
  for (bool sorted_mode : {false, true}) {
    Numbers array(nullptr, sorted_mode);
    const std::uint32_t five = 5;
    std::uint32_t out = 7;
    std::uint32_t size = sizeof out;
    array.Sort();
    array.QuickSort();
    array.Remove(1, 0);
    array.Remove(1, kLast);
    EXPECT_EQ(array.Find(five), kNone);
    EXPECT_EQ(array.FindKey(&five), kNone);
    EXPECT_EQ(array.LowerBound(&five, sizeof five), kLast);
    EXPECT_EQ(array.LowerBoundKey(&five), kLast);
    EXPECT_FALSE(array.CopyElement(kLast, &out, &size));
    EXPECT_EQ(out, 7U);
    EXPECT_FALSE(array.SetElement(0, &five));
    EXPECT_EQ(array.ElementAt(kLast), nullptr);
    EXPECT_FALSE(array.RemoveValue(&five, sizeof five));
    EXPECT_EQ(array.SetRange(1, 0, &five, sizeof five), kNone);
    EXPECT_EQ(array.Buffer(), nullptr);
    EXPECT_EQ(array.capacity(), 0U);
  }
}

TEST(ArrayEx, SortedModeKeepsEverythingInOrder) {
  Numbers array(nullptr, true);
  Fill(&array, {5, 1, 3});
  EXPECT_THAT(Content(array), ElementsAre(1, 3, 5));
  const std::uint32_t two = 2;
  EXPECT_EQ(array.Insert(2, 0, &two, sizeof two), 1) << "the index that was asked for does not count";
  EXPECT_THAT(Content(array), ElementsAre(1, 2, 2, 3, 5));
  const std::uint32_t nine = 9;
  EXPECT_EQ(array.SetRange(2, 0, &nine, sizeof nine), 3);
  EXPECT_THAT(Content(array), ElementsAre(2, 3, 5, 9, 9));
  EXPECT_EQ(array.Add(0xFFFFFFFF), 5) << "values are unsigned";
  EXPECT_EQ(array.Insert(1, 0, nullptr, 0), kNone);
  EXPECT_EQ(array.SetRange(1, 0, nullptr, 0), kNone);
  EXPECT_FALSE(array.MoveBefore(0, 1));
  EXPECT_FALSE(array.MoveAfter(0, 1));
  EXPECT_THAT(Content(array), ElementsAre(2, 3, 5, 9, 9, 0xFFFFFFFF));

  ASSERT_TRUE(array.SetElement(0, &nine));
  EXPECT_EQ(array.Find(3U), 1) << "an element out of order does not hide the others";
  array.Add(4);
  EXPECT_THAT(Content(array), ElementsAre(3, 4, 5, 9, 9, 9, 0xFFFFFFFF));
}

TEST(ArrayEx, OneElementInSortedModeIsInOrder) {
  Numbers array(nullptr, true);
  const std::uint32_t two = 2;
  array.Add(1);
  array.SetRange(1, 0, &two, sizeof two);
  EXPECT_EQ(array.LowerBound(&two, sizeof two), 0);
}

TEST(ArrayEx, InsertsCopiesAtAnIndexInsideTheArray) {
  const std::tuple<std::int32_t, std::int32_t, std::int32_t, std::vector<std::uint32_t>> cases[] = {
      {1, 0, 0, {7, 1, 2}},     {2, 1, 1, {1, 7, 7, 2}}, {1, 2, 2, {1, 2, 7}},  {1, 99, 2, {1, 2, 7}},
      {1, kLast, 2, {1, 2, 7}}, {1, -5, 0, {7, 1, 2}},   {0, 1, kNone, {1, 2}}, {-1, 1, kNone, {1, 2}},
  };
  const std::uint32_t seven = 7;
  for (const auto& [count, index, result, content] : cases) {
    Numbers array;
    Fill(&array, {1, 2});
    EXPECT_EQ(array.Insert(count, index, &seven, sizeof seven), result) << count << " at " << index;
    EXPECT_EQ(Content(array), content) << count << " at " << index;
  }
}

TEST(ArrayEx, RemovesWhatLiesInsideTheArray) {
  const std::tuple<std::int32_t, std::int32_t, std::vector<std::uint32_t>> cases[] = {
      {1, 0, {2, 3, 4}}, {1, kLast, {1, 2, 3}}, {2, 1, {1, 4}},        {99, 2, {1, 2}},      {kLast, 1, {1}},
      {4, 0, {}},        {1, 4, {1, 2, 3, 4}},  {1, -1, {1, 2, 3, 4}}, {0, 0, {1, 2, 3, 4}}, {-1, 0, {1, 2, 3, 4}},
  };
  for (const auto& [count, index, left] : cases) {
    Numbers array;
    Fill(&array, {1, 2, 3, 4});
    array.Remove(count, index);
    EXPECT_EQ(Content(array), left) << count << " from " << index;
    EXPECT_EQ(array.used_bytes(), 4 * left.size());
  }
}

TEST(ArrayEx, RemovesAValueThatItFinds) {
  Numbers array;
  Fill(&array, {4, 2, 4});
  const std::uint32_t four = 4;
  EXPECT_TRUE(array.RemoveValue(&four, sizeof four));
  EXPECT_THAT(Content(array), ElementsAre(2, 4));
  EXPECT_TRUE(array.RemoveValue(&four, sizeof four));
  EXPECT_FALSE(array.RemoveValue(&four, sizeof four));
  EXPECT_THAT(Content(array), ElementsAre(2));
}

TEST(ArrayEx, OverwritesAtMostUpToTheLast) {
  Numbers array;
  Fill(&array, {1, 2, 3, 4});
  const std::uint32_t eight = 8;
  EXPECT_EQ(array.SetRange(2, 1, &eight, sizeof eight), 1);
  EXPECT_THAT(Content(array), ElementsAre(1, 8, 8, 4));
  EXPECT_EQ(array.SetRange(kLast, kLast, &eight, sizeof eight), 3);
  EXPECT_THAT(Content(array), ElementsAre(1, 8, 8, 8));
  EXPECT_EQ(array.SetRange(1, 4, &eight, sizeof eight), kNone);
  EXPECT_EQ(array.count(), 4);
}

TEST(ArrayEx, CapacityDoublesAndShrinksByWhatIsRemoved) {
  Numbers array;
  const std::uint32_t value = 1;
  const std::uint32_t expected[] = {4, 8, 16, 16, 32};
  for (std::uint32_t capacity : expected) {
    array.Add(value);
    EXPECT_EQ(array.capacity(), capacity);
  }
  array.Insert(20, kLast, &value, sizeof value);
  EXPECT_EQ(array.capacity(), 32U + 80U) << "more than double where that is needed";
  array.Remove(5, 0);
  EXPECT_EQ(array.capacity(), 112U - 20U);
  array.SetCount(2);
  EXPECT_EQ(array.used_bytes(), 8U);
  array.RemoveAll();
  EXPECT_EQ(array.capacity(), 0U);
  EXPECT_EQ(array.Buffer(), nullptr);
  array.Add(7);
  EXPECT_THAT(Content(array), ElementsAre(7));
}

TEST(ArrayEx, ACountThatNoBlockHoldsIsRefused) {
  Numbers array;
  Fill(&array, {1, 2});
  for (std::int32_t count : {0x40000000, 0x7FFFFFFE}) {
    EXPECT_EQ(Guard([&] { array.SetCount(count); }), E_OUTOFMEMORY);
    const std::uint32_t value = 3;
    EXPECT_EQ(Guard([&] { array.Insert(count, 0, &value, sizeof value); }), E_OUTOFMEMORY);
    EXPECT_THAT(Content(array), ElementsAre(1, 2));
  }
  array.SetCount(kLast);
  array.SetCount(-1);
  EXPECT_EQ(array.count(), 2);
}

TEST(ArrayEx, AValueMayLieInTheArrayItself) {
  Numbers array;
  Fill(&array, {11, 22, 33, 44});  // full to capacity: the next one moves the block
  array.Insert(3, 0, array.ElementAt(1), sizeof(std::uint32_t));
  EXPECT_THAT(Content(array), ElementsAre(22, 22, 22, 11, 22, 33, 44));
  Numbers sorted(nullptr, true);
  Fill(&sorted, {11, 22, 33, 44});
  sorted.SetRange(2, 0, sorted.ElementAt(3), sizeof(std::uint32_t));
  EXPECT_THAT(Content(sorted), ElementsAre(33, 44, 44, 44));
}

TEST(ArrayEx, SortsEveryLengthAndThenFindsByBisection) {
  for (std::uint32_t count : {1U, 2U, 8U, 9U, 12U, 13U, 36U, 37U, 120U, 121U, 1100U}) {
    Numbers array;
    std::uint32_t value = 12345;
    for (std::uint32_t i = 0; i < count; ++i) array.Add((value = value * 1664525 + 1013904223) % count);
    std::vector<std::uint32_t> expected = Content(array);
    std::ranges::sort(expected);
    array.Sort();
    ASSERT_EQ(Content(array), expected) << count;
    EXPECT_EQ(array.is_known_sorted(), count > 1);
    for (std::uint32_t wanted = 0; wanted <= count && count > 1; ++wanted) {
      const auto first = std::ranges::lower_bound(expected, wanted) - expected.begin();
      const bool there = std::ranges::binary_search(expected, wanted);
      ASSERT_EQ(array.LowerBound(&wanted, sizeof wanted), first);
      ASSERT_EQ(array.LowerBoundKey(&wanted), first);
      ASSERT_EQ(array.Find(wanted), there ? first : kNone);
      ASSERT_EQ(array.FindKey(&wanted), there ? first : kNone);
    }
  }
}

TEST(ArrayEx, AChangeThatMayBreakTheOrderEndsItsBeingKnown) {
  const std::uint32_t two = 2;
  const std::uint32_t nine = 9;
  auto sorted = [](Numbers* array) {
    Fill(array, {3, 1, 2});
    array->Sort();
    return array->is_known_sorted();
  };
  const struct {
    const char* change;
    void (*make)(Numbers& array, const std::uint32_t* value);
    const std::uint32_t* value;
    bool stays_sorted;
  } cases[] = {
      {"add", [](Numbers& array, const std::uint32_t* value) { array.Add(*value); }, &nine, false},
      {"set in order", [](Numbers& array, const std::uint32_t* value) { array.SetElement(0, value); }, &two, true},
      {"set out of order", [](Numbers& array, const std::uint32_t* value) { array.SetElement(0, value); }, &nine,
       false},
      {"set range", [](Numbers& array, const std::uint32_t* value) { array.SetRange(1, 1, value, 4); }, &two, false},
      {"longer", [](Numbers& array, const std::uint32_t*) { array.SetCount(5); }, nullptr, false},
      {"shorter", [](Numbers& array, const std::uint32_t*) { array.SetCount(2); }, nullptr, true},
      {"remove", [](Numbers& array, const std::uint32_t*) { array.Remove(1, 1); }, nullptr, true},
      {"move", [](Numbers& array, const std::uint32_t*) { array.MoveAfter(0, 2); }, nullptr, false},
  };
  for (const auto& c : cases) {
    Numbers array;
    ASSERT_TRUE(sorted(&array));
    c.make(array, c.value);
    EXPECT_EQ(array.is_known_sorted(), c.stays_sorted) << c.change;
    EXPECT_EQ(array.LowerBound(&two, sizeof two) == kLast, !c.stays_sorted) << c.change;
    for (std::uint32_t value : Content(array)) EXPECT_NE(array.Find(value), kNone) << c.change;
  }
}

TEST(ArrayEx, MovesOneElementNextToAnother) {
  const struct {
    bool before;
    std::int32_t index;
    std::int32_t other;
    std::vector<std::uint32_t> content;
  } cases[] = {
      {true, 0, 2, {1, 0, 2, 3}},      {true, 3, 1, {0, 3, 1, 2}},     {true, 1, 1, {0, 1, 2, 3}},
      {false, 0, 2, {1, 2, 0, 3}},     {false, 3, 1, {0, 1, 3, 2}},    {false, 2, 1, {0, 1, 2, 3}},
      {false, 0, kLast, {1, 2, 3, 0}}, {true, kLast, 0, {3, 0, 1, 2}},
  };
  for (const auto& c : cases) {
    Numbers array;
    Fill(&array, {0, 1, 2, 3});
    EXPECT_TRUE(c.before ? array.MoveBefore(c.index, c.other) : array.MoveAfter(c.index, c.other));
    EXPECT_EQ(Content(array), c.content) << c.index << (c.before ? " before " : " behind ") << c.other;
  }
  Numbers array;
  Fill(&array, {0, 1});
  EXPECT_FALSE(array.MoveBefore(0, 2));
  EXPECT_FALSE(array.MoveAfter(-1, 0));
}

TEST(ArrayEx, OwnsItsComparatorAndSharesTheDefaultOnes) {
  int destroyed = 0;
  {
    Numbers array(std::make_unique<Descending>(&destroyed), true);
    Fill(&array, {1, 3, 2});
    EXPECT_THAT(Content(array), ElementsAre(3, 2, 1));
    EXPECT_EQ(array.Find(2U), 1);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(ArrayEx, QuickSortTakesTheSortFunction) {
  Numbers array;
  Fill(&array, {3, 1, 2});
  array.set_sort_function([](const void* a, const void* b) {
    return TIntComparator<std::uint32_t>().Compare(a, b, sizeof(std::uint32_t), sizeof(std::uint32_t));
  });
  array.QuickSort();
  EXPECT_THAT(Content(array), ElementsAre(1, 2, 3));
  EXPECT_TRUE(array.is_known_sorted());
  Numbers without;
  Fill(&without, {3, 1, 2});
  without.QuickSort();
  EXPECT_THAT(Content(without), ElementsAre(1, 2, 3));
}

/// Elements of another size than a number are bytes.
TEST(ArrayEx, ElementsOfAnySizeAreOrderedByTheirBytes) {
  CArrayEx array(3, nullptr, true);
  for (const char* text : {"b\xFFz", "abc", "b"}) array.Add(text, static_cast<std::uint32_t>(std::string(text).size()));
  auto element = [&](std::int32_t index) { return std::string(static_cast<const char*>(array.ElementAt(index)), 3); };
  EXPECT_EQ(element(0), "abc");
  EXPECT_EQ(element(1), std::string("b\0\0", 3)) << "a short value is filled up with zeros";
  EXPECT_EQ(element(2), "b\xFFz");
  EXPECT_EQ(array.Find("a", 1), 0) << "a beginning equals what it begins";
  EXPECT_EQ(array.Find("c", 1), kNone);

  char out[5] = "----";
  std::uint32_t size = 4;
  EXPECT_TRUE(array.CopyElement(kLast, out, &size));
  EXPECT_EQ(size, 3U);
  EXPECT_STREQ(out, "b\xFFz-");
  size = 1;
  EXPECT_TRUE(array.CopyElement(0, out, &size));
  EXPECT_STREQ(out, "a\xFFz-");
  EXPECT_FALSE(array.CopyElement(3, out, &size));

  CArrayEx plain(3);
  EXPECT_EQ(plain.Add("abcd", 4), 0) << "what is longer than an element is cut";
  EXPECT_EQ(plain.Insert(1, kLast, nullptr, 0), 1);
  EXPECT_EQ(std::string(static_cast<const char*>(plain.Buffer()), plain.used_bytes()), std::string("abc\0\0\0", 6));
}

TEST(ArrayEx, NewElementsAreZero) {
  Numbers array;
  Fill(&array, {1, 2, 3});
  array.SetCount(1);
  array.SetCount(3);
  EXPECT_THAT(Content(array), ElementsAre(1, 0, 0));
  array.SetCount(0);
  EXPECT_THAT(Content(array), IsEmpty());
}

TEST(Comparators, OrderBytesAndNumbers) {
  const CComparator bytes;
  const struct {
    std::string a;
    std::string b;
    int order;
  } cases[] = {
      {"abc", "abd", -1}, {"abd", "abc", 1}, {"abc", "abc", 0}, {"ab", "abc", 0}, {"", "abc", 0}, {"\x80", "\x7F", 1},
  };
  for (const auto& c : cases) {
    const auto size_a = static_cast<std::uint32_t>(c.a.size());
    const auto size_b = static_cast<std::uint32_t>(c.b.size());
    EXPECT_EQ(bytes.Compare(c.a.data(), c.b.data(), size_a, size_b), c.order) << c.a << " and " << c.b;
    EXPECT_EQ(bytes.Equal(c.a.data(), c.b.data(), size_a, size_b), c.order == 0) << c.a << " and " << c.b;
  }
  EXPECT_EQ(bytes.CompareKey("ab", "ac", 2), -1);
  EXPECT_TRUE(bytes.EqualKey("abc", "abd", 2));

  const TIntComparator<std::uint32_t> numbers;
  const std::uint32_t values[] = {0, 1, 256, 0x7FFFFFFF, 0x80000000, std::numeric_limits<std::uint32_t>::max()};
  for (const std::uint32_t& a : values) {
    for (const std::uint32_t& b : values) {
      const int order = a < b ? -1 : static_cast<int>(a > b);
      EXPECT_EQ(numbers.Compare(&a, &b, 4, 4), order) << a << " and " << b;
      EXPECT_EQ(numbers.CompareKey(&a, &b, 4), order) << a << " and " << b;
      EXPECT_EQ(numbers.Equal(&a, &b, 4, 4), a == b);
      EXPECT_EQ(numbers.EqualKey(&a, &b, 4), a == b);
    }
  }
}

}  // namespace
}  // namespace orvo
