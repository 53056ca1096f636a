// Sums.
#include <cmath>

#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArraySums : public RuntimeTest {};

TEST_F(ArraySums, EveryUnboxedKind) {
  for (const long long size : {0, 1, 4, 100}) {
    forEachArray(size, [&](const Handle& array, const std::string& element, bool) {
      if (element == "Object") return;
      const long long sum = element == "Boolean" ? (size + 1) / 2 : size * (size + 1) / 2;
      const ArrayState before(array);
      EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), sum);
      EXPECT_EQ(vorn_collections_Array_sumF64Fast(array), static_cast<double>(sum));
      EXPECT_ARRAY_UNTOUCHED(array, before);
    });
  }
}

TEST_F(ArraySums, NullAndEmptyArrays) {
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(nullptr), 0);
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(nullptr), 0.0);
  const Handle empty = newArray("Array", 0);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(empty), 0);
  EXPECT_FALSE(std::signbit(vorn_collections_Array_sumF64Fast(empty)));
  EXPECT_NOTHING_RAISED();
}

TEST_F(ArraySums, I64_Wraps) {
  for (const char* element : {"Long", "ULong"}) {
    EXPECT_EQ(vorn_collections_Array_sumI64Fast(intArray(arrayType(element), {kHighest, 1})), kLowest);
    EXPECT_EQ(vorn_collections_Array_sumI64Fast(intArray(arrayType(element), {kLowest, -1})), kHighest);
  }
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(arrayOf("Array", {integer("Long", kHighest), integer("Int", 1)})),
            kLowest);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(doubleArray("Array<Double>", {-0x1p63, -1.0})), kHighest);
}

TEST_F(ArraySums, I64_NarrowKindsDoNotWrapAtTheirWidth) {
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(intArray("Array<Byte>", Integers(1000, 255))), 255000);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(intArray("Array<SByte>", Integers(1000, -128))), -128000);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(intArray("Array<Int>", Integers(100, INT32_MAX))), 100LL * INT32_MAX);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(intArray("Array<UInt>", Integers(100, -1))), 429496729500);
}

TEST_F(ArraySums, I64_FloatingElementsAreTruncatedEach) {
  for (const char* element : {"Double", "Float"}) {
    EXPECT_EQ(vorn_collections_Array_sumI64Fast(doubleArray(arrayType(element), {0.75, 0.75, -0.75, 2.5})), 2);
    EXPECT_EQ(vorn_collections_Array_sumI64Fast(doubleArray(arrayType(element), {std::nan(""), 1.0})), kLowest + 1);
  }
}

TEST_F(ArraySums, F64_AddsInOrder) {
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(doubleArray("Array<Double>", {1e16, 1.0, -1e16})), 0.0);
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(doubleArray("Array<Double>", {1e16, -1e16, 1.0})), 1.0);
  const Handle sixty = doubleArray("Array<Double>", Doubles(60, 0.1));
  double expected = 0.0;
  for (int i = 0; i < 60; ++i) expected += 0.1;
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(sixty), expected);
  EXPECT_TRUE(std::isnan(vorn_collections_Array_sumF64Fast(doubleArray("Array<Double>", {1.0, std::nan(""), 2.0}))));
  EXPECT_TRUE(std::isnan(vorn_collections_Array_sumF64Fast(doubleArray("Array<Float>", {HUGE_VAL, -HUGE_VAL}))));
}

TEST_F(ArraySums, F64_BeginsAtPositiveZero) {
  EXPECT_FALSE(std::signbit(vorn_collections_Array_sumF64Fast(doubleArray("Array<Double>", {-0.0, -0.0}))));
  EXPECT_FALSE(std::signbit(vorn_collections_Array_sumF64Fast(arrayOf("Array", {floating("Double", -0.0)}))));
}

TEST_F(ArraySums, F64_FloatsAreWidened) {
  double expected = 0.0;
  for (int i = 0; i < 10; ++i) expected += static_cast<double>(0.1F);
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(doubleArray("Array<Float>", Doubles(10, 0.1))), expected);
}

TEST_F(ArraySums, F64_UnsignedLongsAsTheirIntegerReading) {
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(intArray("Array<ULong>", {-1})), -1.0);
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(intArray("Array<Long>", {1LL << 53, 1, 1})), 0x1p53)
      << "each term is added by itself";
}

TEST_F(ArraySums, BooleanBytes_OtherThanOneCountOnce) {
  const Handle array = newArray("Array<Boolean>", 40);
  for (int i = 0; i < 40; ++i) recordOf(array).primitive.data[i] = static_cast<unsigned char>(i);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), 39);
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(array), 39.0);
}

TEST_F(ArraySums, Handles_AddTheValuesOfTheirBoxes) {
  for (const bool synchronised : {false, true}) {
    const Handle array = arrayOf(arrayType("", synchronised), {integer("Int", 1), floating("Double", 2.9),
                                                               integer("Char", 65), string("text"), text("plain")});
    EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), 68);
    EXPECT_EQ(vorn_collections_Array_sumF64Fast(array), 68.9);
    EXPECT_NOTHING_RAISED();
    EXPECT_ARRAY_AT_REST(array);
  }
}

// There is no shortcut by the registered integer: an unsigned box is a number of its own type.
TEST_F(ArraySums, F64_HandlesAreReadAsDoubles) {
  const Handle array = arrayOf("Array", {integer("ULong", -1)});
  EXPECT_EQ(vorn_collections_Array_sumF64Fast(array), 0x1p64);
  EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), -1);
}

TEST_F(ArraySums, NullHandleRaises) {
  for (const bool synchronised : {false, true}) {
    for (const std::vector<Handle>& elements : {std::vector<Handle>{nullptr},
                                                {integer("Int", 5), nullptr, integer("Int", 6)},
                                                {integer("Int", 5), nullptr}}) {
      const Handle array = arrayOf(arrayType("", synchronised), elements);
      const ArrayState before(array);
      EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), 0);
      EXPECT_RAISED(kSumError);
      EXPECT_EQ(vorn_collections_Array_sumF64Fast(array), 0.0);
      EXPECT_RAISED(kSumError);
      EXPECT_ARRAY_UNTOUCHED(array, before);
    }
  }
}

}  // namespace
}  // namespace vorn::tests
