// concat and repeat: elements, the class and storage of the result, and counts that cannot be had.
#include <new>
#include <stdexcept>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"

namespace vorn::tests {
namespace {

class Concat : public RuntimeTest {};
class Repeat : public RuntimeTest {};

Handle concat(void* list, void* other) { return vorn_collections_ArrayList_concat(list, other); }
Handle repeat(void* list, long long count) { return vorn_collections_ArrayList_repeat(list, count); }

TEST_F(Concat, EveryStorage_WithItself) {
  forEachList([](void* target) {
    const Snapshot before(target);
    const Handle result = concat(target, target);
    Elements expected = elementsOf(target);
    const Elements once = expected;
    expected.insert(expected.end(), once.begin(), once.end());
    EXPECT_EQ(elementsOf(result), expected);
    EXPECT_EQ(storageOf(result), storageOf(target));
    EXPECT_STREQ(vorn_type_name(result), vorn_type_name(target));
    EXPECT_EQ(declaredTypeOf(result), declaredTypeOf(target));
    EXPECT_UNTOUCHED(target, before);
    EXPECT_AT_REST(result);
  });
}

TEST_F(Concat, EveryReceiverWithAnotherType_IsBoxedInOrder) {
  const Handle other = list("LinkedListSync", {string("x"), nullptr});
  forEachList([&](void* target) {
    const Snapshot before(target);
    const Handle result = concat(target, other);
    Elements expected = elementsOf(target);
    expected.insert(expected.end(), {"String x", "null"});
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(elementsOf(result), expected);
    EXPECT_EQ(storageOf(result), getListData(target)->linked ? "linked" : "objects");
    EXPECT_STREQ(vorn_type_name(result), vorn_type_name(target));
    const Handle swapped = concat(other, target);
    EXPECT_EQ(familyOf(swapped), "LinkedListSync");
    EXPECT_EQ(elementsOf(swapped)[2], elementsOf(target)[0]);
    EXPECT_UNTOUCHED(target, before);
    EXPECT_AT_REST(result);
    EXPECT_AT_REST(swapped);
  });
}

TEST_F(Concat, SameKindAndName_StaysUnboxedUnderIt) {
  const Handle result =
      concat(rawList("ArrayList", "UShort", {1, 2}), rawList("ArrayListSync<UShort>", "UShort", {65535}));
  EXPECT_EQ(storageOf(result), "UShort");
  EXPECT_EQ(declaredTypeOf(result), "UShort");
  EXPECT_EQ(familyOf(result), "ArrayList");
  EXPECT_EQ(elementsOf(result), (Elements{"UShort 1", "UShort 2", "UShort 65535"}));
  EXPECT_AT_REST(result);
}

TEST_F(Concat, SameKindUnderAnotherName_IsBoxed) {
  const Handle result = concat(rawList("ArrayList", "UShort", {1}), rawList("ArrayList", "CodeUnit", {2}));
  EXPECT_EQ(storageOf(result), "objects");
  EXPECT_EQ(elementsOf(result), (Elements{"UShort 1", "CodeUnit 2"}));
}

TEST_F(Concat, OtherKind_IsBoxedByItsOwnType) {
  const Handle result = concat(intList("ArrayList<Int>", {1}), rawDoubles("ArrayList<Double>", "Double", {2.5}));
  EXPECT_EQ(storageOf(result), "objects");
  EXPECT_EQ(elementsOf(result), (Elements{"Int 1", "Double 2.5"}));
}

TEST_F(Concat, EmptyUnboxedSides_StayUnboxed) {
  const Handle empty = vorn_collections_ArrayList_primitiveLiteral0("Int");
  const Handle result = concat(empty, intList("ArrayList<Int>", {1}));
  EXPECT_EQ(storageOf(result), "Int");
  EXPECT_EQ(elementsOf(result), Elements{"Int 1"});
}

TEST_F(Concat, EmptyBoxedOther_IsBoxed) {
  const Handle result = concat(intList("ArrayList<Int>", {1}), object("ArrayList"));
  EXPECT_EQ(storageOf(result), "objects");
  EXPECT_EQ(elementsOf(result), Elements{"Int 1"});
  EXPECT_VALID_LIST(result);
}

TEST_F(Concat, NullReceiver_GivesAPlainArrayList) {
  const Handle result = concat(nullptr, intList("LinkedListSync", {1, 2}));
  EXPECT_EQ(familyOf(result), "ArrayList");
  EXPECT_EQ(elementsOf(result), (Elements{"Int 1", "Int 2"}));
  const Handle nothing = concat(nullptr, nullptr);
  EXPECT_EQ(familyOf(nothing), "ArrayList");
  EXPECT_EQ(vorn_collections_ArrayList_size(nothing), 0);
  EXPECT_NOTHING_RAISED();
}

TEST_F(Concat, NullOther_GivesABoxedCopy) {
  forEachList([](void* target) {
    const Handle result = concat(target, nullptr);
    EXPECT_EQ(elementsOf(result), elementsOf(target));
    EXPECT_EQ(storageOf(result), getListData(target)->linked ? "linked" : "objects");
    EXPECT_STREQ(vorn_type_name(result), vorn_type_name(target));
    EXPECT_NOTHING_RAISED();
    EXPECT_AT_REST(result);
  });
}

TEST_F(Concat, BoxedSides_ShareTheHandles) {
  const Handle a = string("a");
  const Handle b = item(1);
  const Handle result = concat(list("LinkedList", {a, nullptr}), list("ArrayList", {b}));
  EXPECT_EQ(handlesOf(result), (std::vector<const void*>{a, nullptr, b}));
  EXPECT_EQ(familyOf(result), "LinkedList");
}

TEST_F(Repeat, EveryStorage_InOrder) {
  forEachList([](void* target) {
    const Snapshot before(target);
    const Elements once = elementsOf(target);
    Elements expected;
    for (const long long count : {1LL, 2LL, 3LL}) {
      expected.insert(expected.end(), once.begin(), once.end());
      const Handle result = repeat(target, count);
      EXPECT_NE(result.get(), target);
      EXPECT_EQ(elementsOf(result), expected);
      EXPECT_EQ(familyOf(result), familyOf(target));
      EXPECT_EQ(storageOf(result), storageOf(target));
      if (kindOf(target) != ListData::PrimitiveKind::None) {
        EXPECT_EQ(declaredTypeOf(result), declaredTypeOf(target));
      }
      EXPECT_AT_REST(result);
    }
    EXPECT_UNTOUCHED(target, before);
  });
}

TEST_F(Repeat, CountBelow1_GivesAnEmptyListOfTheFamily) {
  forEachList([](void* target) {
    for (const long long count : {0LL, -1LL, LLONG_MIN}) {
      const Handle result = repeat(target, count);
      EXPECT_EQ(familyOf(result), familyOf(target));
      EXPECT_EQ(getListData(result)->synchronized, getListData(target)->synchronized);
      EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
      EXPECT_NOTHING_RAISED();
      EXPECT_AT_REST(result);
    }
  });
}

TEST_F(Repeat, NullReceiver_GivesAnEmptyPlainList) {
  for (const long long count : {-1LL, 0LL, 3LL, LLONG_MAX}) {
    const Handle result = repeat(nullptr, count);
    EXPECT_EQ(familyOf(result), "ArrayList");
    EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
  }
  EXPECT_NOTHING_RAISED();
}

TEST_F(Repeat, BoxedElements_AreTheSameHandles) {
  for (const bool linked : {false, true}) {
    const Handle a = string("a");
    const Handle result = repeat(list(className(linked, true), {a, nullptr}), 2);
    EXPECT_EQ(handlesOf(result), (std::vector<const void*>{a, nullptr, a, nullptr}));
  }
}

TEST_F(Repeat, EmptyList_StaysEmptyForEveryCount) {
  for (const bool linked : {false, true}) {
    const Handle result = repeat(object(className(linked, false)), LLONG_MAX);
    EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
  }
  const Handle unboxed = vorn_collections_ArrayList_primitiveLiteral0("Int");
  const Handle result = repeat(unboxed, LLONG_MAX);
  EXPECT_EQ(vorn_collections_ArrayList_size(result), 0);
}

TEST_F(Repeat, CountTooLarge_ThrowsAndChangesNothing) {
  forEachList([](void* target) {
    const Snapshot before(target);
    for (const long long count : {LLONG_MAX, LLONG_MAX / 2, 1LL << 61}) {
      try {
        repeat(target, count);
        ADD_FAILURE() << "a list of " << count << " copies";
      } catch (const std::bad_alloc&) {
      } catch (const std::length_error&) {
      }
      EXPECT_NOTHING_RAISED();
      EXPECT_UNTOUCHED(target, before);
    }
  });
}

}  // namespace
}  // namespace vorn::tests
