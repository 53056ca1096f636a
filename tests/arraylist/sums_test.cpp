// sumInt, sumI64Fast and sumF64Fast, and the snapshot of a list's values.
#include "collections/arraylist/snapshots.h"

#include <limits>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {
namespace {

class Sum : public RuntimeTest {};
class ListSnapshot : public RuntimeTest {};

void expectIntegerSum(void* list, long long expected) {
  EXPECT_EQ(vorn_collections_ArrayList_sumInt(list), expected);
  EXPECT_EQ(vorn_collections_ArrayList_sumI64Fast(list), expected);
}

void expectSums(void* list, long long whole, double real) {
  expectIntegerSum(list, whole);
  EXPECT_EQ(vorn_collections_ArrayList_sumF64Fast(list), real);
  EXPECT_NOTHING_RAISED();
  EXPECT_AT_REST(list);
}

TEST_F(Sum, NullAndEmptyLists_Are0) {
  expectIntegerSum(nullptr, 0);
  EXPECT_EQ(vorn_collections_ArrayList_sumF64Fast(nullptr), 0.0);
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const char* element : {"", "Int", "Double"}) {
        expectSums(object(className(linked, synchronised, element)), 0, 0.0);
      }
    }
  }
  const Handle unboxed = vorn_collections_ArrayListSync_primitiveLiteral0("Double");
  expectSums(unboxed, 0, 0.0);
}

TEST_F(Sum, TextsBesideNumbers_CountAsNothing) {
  for (const bool linked : {false, true}) {
    expectSums(list(className(linked, false), {text("7"), integer("Int", 2), string("9")}), 2, 2.0);
  }
}

TEST_F(Sum, EveryIntegerKind_ExtendsByItsSign) {
  for (const bool synchronised : {false, true}) {
    const auto expect = [&](const char* kind, const std::vector<long long>& values, long long sum) {
      SCOPED_TRACE(kind);
      expectSums(rawList(className(false, synchronised, kind), kind, values), sum, static_cast<double>(sum));
    };
    expect("SByte", {-128, -128, 127}, -129);
    expect("Byte", {255, 255, 1}, 511);
    expect("Short", {-32768, -32768, 1}, -65535);
    expect("UShort", {65535, 65535}, 131070);
    expect("CodeUnit", {65535, 1}, 65536);
    expect("Int", {INT_MAX, INT_MAX, 1}, 4294967295LL);
    expect("Int", {INT_MIN, INT_MIN}, -4294967296LL);
    expect("UInt", {0xFFFFFFFFLL, 0xFFFFFFFFLL}, 0x1FFFFFFFELL);
    expect("Char", {0x10FFFF, 1}, 0x110000);
    expect("Long", {1LL << 40, -1}, (1LL << 40) - 1);
    expect("ULong", {LLONG_MIN}, LLONG_MIN);
  }
}

TEST_F(Sum, Overflow_WrapsAround) {
  expectSums(rawList("ArrayList<Long>", "Long", {LLONG_MAX, 1}), LLONG_MIN, -0x1p63);
  expectSums(rawList("ArrayList<ULong>", "ULong", {-1, 2}), 1, 1.0);
  for (const bool linked : {false, true}) {
    expectIntegerSum(list(className(linked, false), {integer("Long", LLONG_MAX), integer("Int", 1)}), LLONG_MIN);
    expectIntegerSum(list(className(linked, true), {integer("Long", LLONG_MIN), integer("Int", -1)}), LLONG_MAX);
  }
}

TEST_F(Sum, Booleans_CountTheTrueOnes) {
  const Handle target = list("ArrayListSync<Boolean>", {boolean(true), boolean(false), boolean(true)});
  ASSERT_EQ(storageOf(target), "Boolean");
  expectSums(target, 2, 2.0);
}

TEST_F(Sum, ManyElements_AreAllCounted) {
  for (const int count : {1, 7, 8, 31, 33, 1000}) {
    const Handle bytes =
        rawList("ArrayList<Byte>", "Byte", std::vector<long long>(static_cast<std::size_t>(count), 255));
    expectSums(bytes, 255LL * count, 255.0 * count);
    const Handle halves =
        rawDoubles("ArrayList<Float>", "Float", std::vector<double>(static_cast<std::size_t>(count), 0.5));
    expectSums(halves, count / 2, 0.5 * count);
  }
}

TEST_F(Sum, FloatingElements_AddUpBeforeTheyAreTruncated) {
  expectSums(rawDoubles("ArrayList<Double>", "Double", {1.9, 1.9}), 3, 1.9 + 1.9);
  expectSums(rawDoubles("ArrayListSync<Double>", "Double", {-1.9, -1.9}), -3, -1.9 + -1.9);
  const double wide = static_cast<double>(0.1F) + static_cast<double>(0.2F);
  expectSums(rawDoubles("ArrayList<Float>", "Float", {0.1, 0.2}), 0, wide);
  expectSums(rawDoubles("ArrayList<Float>", "Float", {16777216.0, 1.0}), 16777217, 16777217.0);
}

TEST_F(Sum, FloatingElements_AddUpInIndexOrder) {
  expectSums(rawDoubles("ArrayList<Double>", "Double", {1e16, 1.0, 1.0, -1e16}), 0, 0.0);
  expectSums(rawDoubles("ArrayList<Double>", "Double", {1e100, 1.0, -1e100, 2.0}), 2, 2.0);
}

TEST_F(Sum, FloatingTotalOutsideTheRange_IsTheMinimum) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const char* kind : {"Double", "Float"}) {
    const std::string type = className(false, false, kind);
    for (const double value : {nan, infinity, -infinity, 0x1p63, 0x1p100, -0x1p100}) {
      expectIntegerSum(rawDoubles(type, kind, {1.0, value}), LLONG_MIN);
    }
    const Handle notANumber = rawDoubles(type, kind, {1.0, nan});
    const double sum = vorn_collections_ArrayList_sumF64Fast(notANumber);
    EXPECT_NE(sum, sum);
  }
}

TEST_F(Sum, BoxedNumbers) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      const std::string type = className(linked, synchronised);
      expectSums(list(type, {integer("Int", 3), integer("Long", 1LL << 40), integer("Char", 97)}), (1LL << 40) + 100,
                 1099511627876.0);
      const Handle mixed = list(type, {integer("Int", 2), floating("Double", 1.5), floating("Float", 0.25)});
      EXPECT_EQ(vorn_collections_ArrayList_sumF64Fast(mixed), 3.75);
      EXPECT_NOTHING_RAISED();
    }
  }
}

TEST_F(Sum, NullElement_RaisesOnceAndGives0) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      const Handle one = integer("Int", 1);
      for (const Handle& target : {list(className(linked, synchronised), {one, nullptr, one, nullptr}),
                                   list(className(linked, synchronised), {nullptr})}) {
        const Snapshot before(target);
        EXPECT_EQ(vorn_collections_ArrayList_sumInt(target), 0);
        EXPECT_RAISED(kSumError);
        EXPECT_EQ(vorn_collections_ArrayList_sumI64Fast(target), 0);
        EXPECT_RAISED(kSumError);
        EXPECT_EQ(vorn_collections_ArrayList_sumF64Fast(target), 0.0);
        EXPECT_RAISED(kSumError);
        EXPECT_UNTOUCHED(target, before);
      }
    }
  }
}

TEST_F(ListSnapshot, EveryStorage_GivesTheElementsAsHandles) {
  forEachList([](void* target) {
    const Snapshot before(target);
    const Elements expected = elementsOf(target);
    const auto values = snapshotListObjectValues(*getListData(target));
    Elements elements;
    for (void* value : values) elements.push_back(describe(value));
    EXPECT_EQ(elements, expected);
    EXPECT_UNTOUCHED(target, before);
  });
  const Handle empty = object("ArrayListSync");
  EXPECT_TRUE(snapshotListObjectValues(*getListData(empty)).empty());
}

}  // namespace
}  // namespace vorn::tests
