#include "platform/variant.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>

namespace orvo {
namespace {

struct Case {
  Variant source;
  VariantType target;
  Status status;
  Variant expected;  // when the status is S_OK
};

template <class T>
Variant V(T value) {
  return Variant(value);
}

void CheckAll(const std::vector<Case>& cases) {
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    Variant out(std::int8_t{99});
    ASSERT_EQ(ChangeType(&out, c.source, c.target), c.status) << "case " << i;
    if (c.status == S_OK) {
      EXPECT_EQ(out.type(), c.target) << "case " << i;
      EXPECT_TRUE(out.value() == c.expected.value()) << "case " << i;
    } else {
      EXPECT_TRUE(out.value() == Variant(std::int8_t{99}).value()) << "case " << i << " changed its target";
    }
  }
}

constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t kMaxU64 = std::numeric_limits<std::uint64_t>::max();

TEST(VariantTest, SixtyFourBitIntegersFromAndToText) {
  CheckAll({
      {V(u"72803"), VT_UI8, S_OK, V(std::uint64_t{72803})},
      {V(u" \t-5 "), VT_I8, S_OK, V(std::int64_t{-5})},
      {V(u"+7"), VT_I8, S_OK, V(std::int64_t{7})},
      {V(u"18446744073709551615"), VT_UI8, S_OK, V(kMaxU64)},
      {V(u"18446744073709551616"), VT_UI8, E_INVALIDARG, {}},
      {V(u"-9223372036854775808"), VT_I8, S_OK, V(kMin64)},
      {V(u"9223372036854775808"), VT_I8, E_INVALIDARG, {}},
      {V(u"-1"), VT_UI8, E_INVALIDARG, {}},
      {V(u"-0"), VT_UI8, S_OK, V(std::uint64_t{0})},
      {V(u""), VT_I8, E_INVALIDARG, {}},
      {V(u"-"), VT_I8, E_INVALIDARG, {}},
      {V(u"many"), VT_UI8, E_INVALIDARG, {}},
      {V(u"+-5"), VT_I8, E_INVALIDARG, {}},
      {V(u"\u0663"), VT_I8, E_INVALIDARG, {}},
      {V(kMin64), VT_BSTR, S_OK, V(u"-9223372036854775808")},
      {V(kMaxU64), VT_BSTR, S_OK, V(u"18446744073709551615")},
  });
}

TEST(VariantTest, SixtyFourBitIntegersFromAndToOtherIntegers) {
  CheckAll({
      {V(std::int32_t{-1}), VT_I8, S_OK, V(std::int64_t{-1})},
      {V(std::int8_t{-1}), VT_UI8, S_OK, V(kMaxU64)},
      {V(std::uint32_t{0xFFFFFFFF}), VT_I8, S_OK, V(std::int64_t{0xFFFFFFFF})},
      {V(std::uint16_t{0xFFFF}), VT_UI8, S_OK, V(std::uint64_t{0xFFFF})},
      {V(std::int64_t{-1}), VT_UI8, DISP_E_OVERFLOW, {}},
      {V(static_cast<std::uint64_t>(kMax64) + 1), VT_I8, DISP_E_OVERFLOW, {}},
      {V(static_cast<std::uint64_t>(kMax64)), VT_I8, S_OK, V(kMax64)},
      {V(std::int64_t{0x1'8000'0001}), VT_I4, S_OK, V(std::int32_t{-0x7FFFFFFF})},
      {V(std::uint64_t{0x5'0000'0007}), VT_UI4, S_OK, V(std::uint32_t{7})},
      {V(std::int64_t{40000}), VT_I2, DISP_E_OVERFLOW, {}},
      {V(1e19), VT_I8, DISP_E_OVERFLOW, {}},
      {V(1e19), VT_UI8, S_OK, V(std::uint64_t{10'000'000'000'000'000'000U})},
      {V(-0.5), VT_UI8, S_OK, V(std::uint64_t{0})},
  });
}

TEST(VariantTest, TextReadsAsNumberInCNotation) {
  CheckAll({
      {V(u" 42 "), VT_I4, S_OK, V(std::int32_t{42})},
      {V(u"2.5"), VT_I4, S_OK, V(std::int32_t{2})},
      {V(u"3.5"), VT_I4, S_OK, V(std::int32_t{4})},
      {V(u"-2.5"), VT_I4, S_OK, V(std::int32_t{-2})},
      {V(u"-3.5"), VT_I4, S_OK, V(std::int32_t{-4})},
      {V(u"1e3"), VT_UI4, S_OK, V(std::uint32_t{1000})},
      {V(u"+.5e1"), VT_I4, S_OK, V(std::int32_t{5})},
      {V(u"2147483647.4"), VT_I4, S_OK, V(std::int32_t{0x7FFFFFFF})},
      {V(u"2147483647.5"), VT_I4, DISP_E_OVERFLOW, {}},
      {V(u"-2147483648.5"), VT_I4, S_OK, V(std::numeric_limits<std::int32_t>::min())},
      {V(u"4294967295"), VT_UI4, S_OK, V(std::uint32_t{0xFFFFFFFF})},
      {V(u"-1"), VT_UI4, DISP_E_OVERFLOW, {}},
      {V(u"1e999"), VT_R8, DISP_E_OVERFLOW, {}},
      {V(u"1e300"), VT_R4, DISP_E_OVERFLOW, {}},
      {V(u"0.25"), VT_R4, S_OK, V(0.25F)},
      {V(u"0"), VT_BOOL, S_OK, V(false)},
      {V(u"-1"), VT_BOOL, S_OK, V(true)},
      {V(u""), VT_I4, DISP_E_TYPEMISMATCH, {}},
      {V(u"1,5"), VT_I4, DISP_E_TYPEMISMATCH, {}},
      {V(u"12x"), VT_I4, DISP_E_TYPEMISMATCH, {}},
      {V(u"0x10"), VT_I4, DISP_E_TYPEMISMATCH, {}},
      {V(u"inf"), VT_R8, DISP_E_TYPEMISMATCH, {}},
      {V(u"nan(1)"), VT_R8, DISP_E_TYPEMISMATCH, {}},
      {V(u"\uFF11"), VT_I4, DISP_E_TYPEMISMATCH, {}},
  });
}

TEST(VariantTest, OtherConversionsKeepTheValueOrFail) {
  CheckAll({
      {Variant(), VT_I4, S_OK, V(std::int32_t{0})},
      {Variant(), VT_UI8, S_OK, V(std::uint64_t{0})},
      {Variant(), VT_BSTR, S_OK, V(u"")},
      {Variant(), VT_BOOL, S_OK, V(false)},
      {V(true), VT_I4, S_OK, V(std::int32_t{-1})},
      {V(true), VT_BSTR, S_OK, V(u"-1")},
      {V(false), VT_BSTR, S_OK, V(u"0")},
      {V(std::uint32_t{300}), VT_UI1, DISP_E_OVERFLOW, {}},
      {V(std::int8_t{-5}), VT_BSTR, S_OK, V(u"-5")},
      {V(1.5), VT_BSTR, S_OK, V(u"1.5")},
      {V(std::numeric_limits<double>::quiet_NaN()), VT_I4, DISP_E_OVERFLOW, {}},
      {V(u"text"), VT_BSTR, S_OK, V(u"text")},
      {V(u"text"), VT_EMPTY, DISP_E_TYPEMISMATCH, {}},
      {V(u"1"), static_cast<VariantType>(9), DISP_E_TYPEMISMATCH, {}},
  });
}

TEST(VariantTest, RoundingDoesNotDependOnTheThreadsMode) {
  int old = std::fegetround();
  std::fesetround(FE_UPWARD);
  Variant out;
  Status status = ChangeType(&out, V(u"2.4"), VT_I4);
  std::fesetround(old);
  ASSERT_EQ(status, S_OK);
  EXPECT_TRUE(out.value() == V(std::int32_t{2}).value());
}

}  // namespace
}  // namespace orvo
