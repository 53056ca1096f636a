// slice: positions, the class and the storage of the result, omitted bounds and the zero step.
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {
namespace {

class Slice : public RuntimeTest {};

TEST_F(Slice, WorkedExamples) {
  const Handle target = intList("ArrayList<Int>", {0, 1, 2, 3, 4});
  const auto expect = [&](Bound start, Bound stop, long long step, const std::vector<long long>& expected) {
    const Handle result = slice(target, start, stop, step);
    Elements elements;
    for (const long long value : expected) elements.push_back("Int " + std::to_string(value));
    EXPECT_EQ(elementsOf(result), elements);
    EXPECT_AT_REST(result);
  };
  expect(kOmitted, kOmitted, 1, {0, 1, 2, 3, 4});
  expect(1, 4, 1, {1, 2, 3});
  expect(-2, kOmitted, 1, {3, 4});
  expect(kOmitted, kOmitted, 2, {0, 2, 4});
  expect(kOmitted, kOmitted, -1, {4, 3, 2, 1, 0});
  expect(3, 0, -1, {3, 2, 1});
  expect(-1, -6, -2, {4, 2, 0});
  expect(10, kOmitted, 1, {});
  expect(3, 1, 1, {});
  expect(-10, 2, 1, {0, 1});
  expect(10, kOmitted, -1, {4, 3, 2, 1, 0});
  expect(0, -6, 1, {});
  expect(kOmitted, 10, -1, {});
  expect(1, kOmitted, 100, {1});
  expect(3, kOmitted, -100, {3});
}

TEST_F(Slice, EndsOfThe64BitRange_AreExact) {
  const Handle target = intList("ArrayList<Int>", {0, 1, 2, 3, 4});
  const auto expect = [&](Bound start, Bound stop, long long step, const Elements& expected) {
    EXPECT_EQ(elementsOf(slice(target, start, stop, step)), expected);
  };
  const Elements all = {"Int 0", "Int 1", "Int 2", "Int 3", "Int 4"};
  const Elements reversed = {"Int 4", "Int 3", "Int 2", "Int 1", "Int 0"};
  expect(LLONG_MIN, LLONG_MAX, 1, all);
  expect(LLONG_MAX, LLONG_MIN, -1, reversed);
  expect(LLONG_MIN, LLONG_MAX, LLONG_MAX, {"Int 0"});
  expect(2, LLONG_MAX, LLONG_MAX, {"Int 2"});
  expect(LLONG_MAX, LLONG_MIN, LLONG_MIN, {"Int 4"});
  expect(1, LLONG_MIN, LLONG_MIN, {"Int 1"});
  expect(LLONG_MAX, LLONG_MAX, 1, {});
  expect(LLONG_MIN, LLONG_MIN, 1, {});
  expect(LLONG_MIN, LLONG_MIN, -1, {});
}

TEST_F(Slice, EveryStorage_SelectsThePositionsInVisitingOrder) {
  const Bound bounds[] = {kOmitted, 0, 1, 3, 6, -1, -3, -7};
  forEachList([&](void* target) {
    const Snapshot before(target);
    const Elements elements = elementsOf(target);
    const auto n = static_cast<long long>(elements.size());
    int number = 0;
    for (const Bound start : bounds) {
      for (const Bound stop : bounds) {
        for (const long long step : {1LL, 2LL, -1LL, -3LL}) {
          if (onStressHeap() && ++number % 16 != 0) continue;  // a sample of the 256 combinations
          Elements expected;
          for (const std::size_t position : slicePositions(n, start, stop, step)) {
            expected.push_back(elements[position]);
          }
          const Handle result = slice(target, start, stop, step);
          ASSERT_EQ(elementsOf(result), expected);
          EXPECT_AT_REST(result);
        }
      }
    }
    EXPECT_UNTOUCHED(target, before);
  });
}

TEST_F(Slice, Result_IsOfTheReceiversFamilyAndStorage) {
  forEachList([](void* target) {
    for (const bool empty : {false, true}) {
      const Handle result = slice(target, 1, empty ? 1 : 2);
      EXPECT_NE(result.get(), target);
      EXPECT_EQ(familyOf(result), familyOf(target));
      EXPECT_EQ(getListData(result)->linked, getListData(target)->linked);
      EXPECT_EQ(getListData(result)->synchronized, getListData(target)->synchronized);
      EXPECT_EQ(storageOf(result), storageOf(target));
      if (getListData(target)->linked) {
        EXPECT_STREQ(vorn_type_name(result), vorn_type_name(target));
      }
      if (kindOf(target) != ListData::PrimitiveKind::None) {
        EXPECT_EQ(declaredTypeOf(result), declaredTypeOf(target));
        vorn_collections_ArrayList_add(result, string("x"));
        EXPECT_RAISED(listTypeError(declaredTypeOf(target), "vorn.String"));
      }
      EXPECT_AT_REST(result);
    }
  });
}

TEST_F(Slice, UnboxedUntypedReceiver_GivesAListDeclaredWithItsType) {
  const Handle target = rawList("ArrayList", "Char", {'a', 'b', 'c'});
  const Handle result = slice(target, 1, kOmitted);
  EXPECT_EQ(storageOf(result), "Char");
  EXPECT_EQ(declaredTypeOf(result), "Char");
  EXPECT_EQ(elementsOf(result), (Elements{"Char 98", "Char 99"}));
}

TEST_F(Slice, ULongAboveTheSignedRange_KeepsItsBits) {
  const Handle target = rawList("ArrayList<ULong>", "ULong", {1, LLONG_MIN, -1});
  const Handle result = slice(target, kOmitted, kOmitted, -1);
  EXPECT_EQ(storageOf(result), "ULong");
  EXPECT_EQ(vorn_collections_ArrayList_getInt(result, 0), -1);
  EXPECT_EQ(vorn_collections_ArrayList_getInt(result, 1), LLONG_MIN);
  EXPECT_EQ(vorn_collections_ArrayList_getInt(result, 2), 1);
}

TEST_F(Slice, BoxedReceiver_SharesTheHandles) {
  for (const bool linked : {false, true}) {
    const Handle a = string("a");
    const Handle b = item(1);
    const Handle target = list(className(linked, true), {a, nullptr, b});
    const Handle result = slice(target, kOmitted, kOmitted, -1);
    EXPECT_EQ(handlesOf(result), (std::vector<const void*>{b, nullptr, a}));
    EXPECT_AT_REST(result);
  }
}

TEST_F(Slice, Result_IsIndependentOfTheReceiver) {
  const Handle target = intList("ArrayList<Int>", {1, 2, 3});
  const Handle result = slice(target, kOmitted, kOmitted);
  vorn_collections_ArrayList_clear(target);
  EXPECT_EQ(elementsOf(result), (Elements{"Int 1", "Int 2", "Int 3"}));
}

TEST_F(Slice, LongReceiver_KeepsEveryElement) {
  const int count = onStressHeap() ? 40 : 2000;
  for (const bool linked : {false, true}) {
    const Handle target = object(className(linked, false, "Int"));
    for (int i = 0; i < count; ++i) vorn_collections_ArrayList_addInt(target, i);
    const Handle result = slice(target, kOmitted, kOmitted, -2);
    ASSERT_EQ(vorn_collections_ArrayList_size(result), count / 2);
    for (int i = 0; i < count / 2; ++i) {
      ASSERT_EQ(vorn_collections_ArrayList_getInt(result, i), count - 1 - 2 * i);
    }
    EXPECT_AT_REST(result);
  }
}

TEST_F(Slice, EmptyReceiver_GivesNothingForEveryBound) {
  for (const bool linked : {false, true}) {
    const Handle target = object(className(linked, false));
    for (const Bound start : {kOmitted, Bound(0), Bound(3), Bound(-3)}) {
      for (const Bound stop : {kOmitted, Bound(0), Bound(3), Bound(-3)}) {
        for (const long long step : {1LL, 2LL, -1LL, -2LL}) {
          const Handle result = slice(target, start, stop, step);
          EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
        }
      }
    }
  }
}

TEST_F(Slice, StepZero_RaisesAndStillReturnsAnEmptyListOfTheFamily) {
  forEachList([](void* target) {
    const Snapshot before(target);
    const Handle result = slice(target, kOmitted, kOmitted, 0);
    EXPECT_RAISED(kStepError);
    ASSERT_NE(result.get(), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
    EXPECT_EQ(familyOf(result), familyOf(target));
    EXPECT_AT_REST(result);
    EXPECT_UNTOUCHED(target, before);
  });
  const Handle empty = object("ArrayList");
  const Handle result = slice(empty, 1, 2, 0);
  EXPECT_RAISED(kStepError);
  EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
}

TEST_F(Slice, NullReceiver_GivesAnEmptyPlainListWithoutAnError) {
  for (const long long step : {1LL, 0LL, -1LL}) {
    const Handle result = slice(nullptr, kOmitted, kOmitted, step);
    EXPECT_NOTHING_RAISED();
    ASSERT_NE(result.get(), nullptr);
    EXPECT_EQ(familyOf(result), "ArrayList");
    EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
    EXPECT_AT_REST(result);
  }
}

}  // namespace
}  // namespace vorn::tests
