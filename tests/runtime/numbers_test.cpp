// Reading numbers and comparing them exactly, by value and for sorting.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "collections/core/port/comparison.h"
#include "tests/runtime/comparisons.h"
#include "tests/runtime/special_numbers.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {
namespace {

using Numbers = RuntimeTest;
using Kind = NativeNumericValue::Kind;

NativeNumericValue i64(std::int64_t value) { return {Kind::Signed, static_cast<std::uint64_t>(value)}; }
NativeNumericValue u64(std::uint64_t value) { return {Kind::Unsigned, value}; }
NativeNumericValue f64(double value) { return {Kind::Floating, std::bit_cast<std::uint64_t>(value)}; }

constexpr auto kMinimum = std::numeric_limits<std::int64_t>::min();
constexpr auto kMaximum = std::numeric_limits<std::int64_t>::max();
constexpr auto kUnsignedMaximum = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t kTwo53 = std::int64_t{1} << 53;
constexpr std::uint64_t kTwo63 = std::uint64_t{1} << 63;

// Numbers in ascending order; those in one row are equal.
const std::vector<std::vector<NativeNumericValue>>& ladder() {
  static const std::vector<std::vector<NativeNumericValue>> rows = {
      {f64(-kInfinity)},
      {f64(-1e300)},
      {f64(std::nextafter(-0x1p63, -kInfinity))},
      {i64(kMinimum), f64(-0x1p63)},
      {i64(kMinimum + 1)},
      {f64(std::nextafter(-0x1p63, 0.0))},
      {i64(-kTwo53 - 1)},
      {i64(-kTwo53), f64(-0x1p53)},
      {f64(-1.5)},
      {i64(-1), f64(-1.0)},
      {f64(-0.5)},
      {f64(-std::numeric_limits<double>::denorm_min())},
      {i64(0), u64(0), f64(0.0), f64(-0.0)},
      {f64(std::numeric_limits<double>::denorm_min())},
      {f64(0.5)},
      {i64(1), u64(1), f64(1.0)},
      {f64(1.5)},
      {i64(kTwo53), u64(kTwo53), f64(0x1p53)},
      {i64(kTwo53 + 1), u64(kTwo53 + 1)},
      {f64(0x1p53 + 2), i64(kTwo53 + 2)},
      {f64(std::nextafter(0x1p63, 0.0))},
      {i64(kMaximum - 1)},
      {i64(kMaximum), u64(kTwo63 - 1)},
      {u64(kTwo63), f64(0x1p63)},
      {u64(kTwo63 + 1)},
      {f64(std::nextafter(0x1p64, 0.0))},
      {u64(kUnsignedMaximum)},
      {f64(0x1p64)},
      {f64(1e300)},
      {f64(kInfinity)},
  };
  return rows;
}

TEST_F(Numbers, EveryPairOfTheLadder_ComparesByItsRows) {
  for (std::size_t i = 0; i < ladder().size(); ++i) {
    for (std::size_t j = 0; j < ladder().size(); ++j) {
      const int expected = (i > j) - (i < j);
      for (const NativeNumericValue& left : ladder()[i]) {
        for (const NativeNumericValue& right : ladder()[j]) {
          EXPECT_EQ(sign(compareNativeNumericValues(left, right)), expected) << i << " " << j;
          EXPECT_EQ(sign(compareNativeNumericValuesForSort(left, right)), expected) << i << " " << j;
        }
      }
    }
  }
}

TEST_F(Numbers, Nan_EqualsNothing) {
  EXPECT_NE(compareNativeNumericValues(f64(kNan), f64(kNan)), 0);
  for (const auto& row : ladder()) {
    for (const NativeNumericValue& number : row) {
      EXPECT_GT(compareNativeNumericValues(f64(kNan), number), 0);
      EXPECT_LT(compareNativeNumericValues(number, f64(kNan)), 0);
    }
  }
}

TEST_F(Numbers, ForSorting_NansAreEqualAndLast) {
  const double negativeNan = std::copysign(kNan, -1.0);
  EXPECT_EQ(compareNativeNumericValuesForSort(f64(kNan), f64(negativeNan)), 0);
  EXPECT_EQ(compareNativeNumericValuesForSort(f64(kNan), f64(kNan)), 0);
  for (const auto& row : ladder()) {
    for (const NativeNumericValue& number : row) {
      for (const double nan : {kNan, negativeNan}) {
        EXPECT_GT(compareNativeNumericValuesForSort(f64(nan), number), 0);
        EXPECT_LT(compareNativeNumericValuesForSort(number, f64(nan)), 0);
      }
    }
  }
}

TEST_F(Numbers, ZeroInitialised_IsTheSignedZero) {
  EXPECT_EQ(compareNativeNumericValues(NativeNumericValue{}, i64(0)), 0);
}

TEST_F(Numbers, IntegerBoxes_ReadAsSignedAndULongAsUnsigned) {
  for (const char* type : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long"}) {
    for (const std::int64_t value : {kMinimum, std::int64_t{-1}, std::int64_t{0}, kMaximum}) {
      NativeNumericValue number = f64(1.0);
      ASSERT_TRUE(tryReadNativeNumericValue(integer(type, value), number)) << type;
      EXPECT_EQ(number.kind, Kind::Signed) << type;
      EXPECT_EQ(compareNativeNumericValues(number, i64(value)), 0) << type;
    }
  }
  NativeNumericValue number{};
  ASSERT_TRUE(tryReadNativeNumericValue(integer("ULong", -1), number));
  EXPECT_EQ(compareNativeNumericValues(number, u64(kUnsignedMaximum)), 0);
}

TEST_F(Numbers, FloatingBoxes_ReadAsTheirDouble) {
  for (const char* type : {"Float", "Double"}) {
    for (const double value : {0.5, double{0.1F}, -0.0, kInfinity}) {
      NativeNumericValue number{};
      ASSERT_TRUE(tryReadNativeNumericValue(floating(type, value), number)) << type;
      EXPECT_EQ(number.kind, Kind::Floating);
      EXPECT_EQ(number.payload, std::bit_cast<std::uint64_t>(value)) << type;
    }
  }
}

TEST_F(Numbers, EverythingElse_IsNoNumber) {
  for (const Handle& handle : {Handle(nullptr), boolean(true), integer("Char", '1'), integer("CodeUnit", '1'),
                               string("1"), text("1"), object("ArrayList"), object("Object")}) {
    NativeNumericValue number = u64(7);
    EXPECT_FALSE(tryReadNativeNumericValue(handle, number));
    EXPECT_EQ(number.payload, 7U);
  }
}

}  // namespace
}  // namespace vorn::tests
