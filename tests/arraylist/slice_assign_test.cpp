// sliceAssign: element-wise assignment, replaced ranges, and every error.
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class SliceAssign : public RuntimeTest {};

// A list of this type filled with unboxed values of that element type.
struct Filler {
  const char* type;
  const char* element;
};

constexpr const char* kIntTypes[] = {"ArrayList<Int>", "ArrayListSync<Int>", "LinkedList<Int>", "LinkedListSync<Int>"};

TEST_F(SliceAssign, SameCount_ReplacesElementsAndKeepsTheStorage) {
  for (const char* type : kIntTypes) {
    SCOPED_TRACE(type);
    const Handle target = intList(type, {0, 1, 2, 3, 4});
    const std::string storage = storageOf(target);
    sliceAssign(target, 1, 3, 1, intList("ArrayList", {10, 20}));
    EXPECT_EQ(elementsOf(target), (Elements{"Int 0", "Int 10", "Int 20", "Int 3", "Int 4"}));
    EXPECT_EQ(storageOf(target), storage);
    EXPECT_EQ(declaredTypeOf(target), "Int");
    sliceAssign(target, kOmitted, kOmitted, 1, intList("LinkedList", {5, 6, 7, 8, 9}));
    EXPECT_EQ(elementsOf(target), (Elements{"Int 5", "Int 6", "Int 7", "Int 8", "Int 9"}));
    EXPECT_EQ(storageOf(target), storage);
    EXPECT_NOTHING_RAISED();
    EXPECT_AT_REST(target);
  }
}

// The refused value is a box of its own, which must outlive those of the values before it.
TEST_F(SliceAssign, SameCount_OfUnboxedValuesIntoNodes_StopsAtTheOneThatIsRefused) {
  const Handle target = intList("LinkedListSync<Byte>", {});
  for (int i = 0; i < 4; ++i) vorn_collections_ArrayList_add(target, integer("Byte", i));
  const Handle bytes = intList("ArrayList<Int>", {11, 12, 300, 14});
  sliceAssign(target, kOmitted, kOmitted, 1, bytes);
  EXPECT_RAISED(listTypeError("Byte", "vorn.Int"));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 11", "Int 12", "Byte 2", "Byte 3"}));
  EXPECT_AT_REST(target);
}

TEST_F(SliceAssign, SameCount_ConvertsLikeASingleWrite) {
  const Handle doubles = rawDoubles("ArrayList<Double>", "Double", {0.5, 1.5, 2.5});
  sliceAssign(doubles, 0, 2, 1, intList("ArrayList", {7, 8}));
  EXPECT_EQ(elementsOf(doubles), (Elements{"Double 7", "Double 8", "Double 2.5"}));
  EXPECT_EQ(storageOf(doubles), "Double");
  const Handle untyped = rawList("ArrayList", "Int", {1, 2, 3});
  sliceAssign(untyped, 0, 2, 1, list("ArrayList", {integer("Int", 9), string("x")}));
  EXPECT_EQ(elementsOf(untyped), (Elements{"Int 9", "String x", "Int 3"}));
  EXPECT_EQ(storageOf(untyped), "objects");
  EXPECT_VALID_LIST(untyped);
}

TEST_F(SliceAssign, OtherCount_ReplacesTheRangeAndLeavesBoxedStorage) {
  struct Case {
    Bound start;
    Bound stop;
    std::vector<long long> values;
    Elements expected;
  };
  const Case cases[] = {
      {1, 3, {10}, {"Int 0", "Int 10", "Int 3", "Int 4"}},
      {1, 3, {10, 20, 30}, {"Int 0", "Int 10", "Int 20", "Int 30", "Int 3", "Int 4"}},
      {1, 3, {}, {"Int 0", "Int 3", "Int 4"}},
      {2, 2, {10, 20}, {"Int 0", "Int 1", "Int 10", "Int 20", "Int 2", "Int 3", "Int 4"}},
      {kOmitted, kOmitted, {10}, {"Int 10"}},
      {kOmitted, kOmitted, {}, {}},
      {kOmitted, 2, {10}, {"Int 10", "Int 2", "Int 3", "Int 4"}},
      {-2, kOmitted, {10}, {"Int 0", "Int 1", "Int 2", "Int 10"}},
      {-99, -3, {10}, {"Int 10", "Int 2", "Int 3", "Int 4"}},
      {99, kOmitted, {10, 20}, {"Int 0", "Int 1", "Int 2", "Int 3", "Int 4", "Int 10", "Int 20"}},
      {5, 99, {10}, {"Int 0", "Int 1", "Int 2", "Int 3", "Int 4", "Int 10"}},
      {0, -99, {10}, {"Int 10", "Int 0", "Int 1", "Int 2", "Int 3", "Int 4"}},  // a stop still negative is 0
      {LLONG_MIN, LLONG_MAX, {10}, {"Int 10"}},
  };
  for (const char* type : {"ArrayList<Int>", "ArrayListSync<Int>", "ArrayList", "LinkedList<Int>", "LinkedListSync"}) {
    for (const Case& example : cases) {
      SCOPED_TRACE(type);
      const Handle target = intList(type, {0, 1, 2, 3, 4});
      const std::string declared = declaredTypeOf(target);
      sliceAssign(target, example.start, example.stop, 1, intList("ArrayList", example.values));
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(elementsOf(target), example.expected);
      EXPECT_EQ(storageOf(target), getListData(target)->linked ? "linked" : "objects");
      EXPECT_EQ(declaredTypeOf(target), declared);
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(SliceAssign, OtherCount_KeepsHandlesAndChecksNoTypes) {
  for (const bool linked : {false, true}) {
    const Handle a = item(1);
    const Handle b = item(2);
    const Handle x = string("x");
    const Handle target = list(className(linked, false, "app.Item"), {a, b});
    sliceAssign(target, 1, 1, 1, list("ArrayList", {x, nullptr}));
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(handlesOf(target), (std::vector<const void*>{a, x, nullptr, b}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(SliceAssign, RangeThatEndsBeforeItStarts_RaisesUnlessTheSourceIsEmpty) {
  for (const char* type : kIntTypes) {
    SCOPED_TRACE(type);
    const Handle target = intList(type, {0, 1, 2, 3});
    const Snapshot before(target);
    const Handle one = intList("ArrayList", {9});
    const Handle none = object("ArrayList");
    sliceAssign(target, 3, 1, 1, one);
    EXPECT_RAISED(kRangeError);
    EXPECT_UNTOUCHED(target, before);
    sliceAssign(target, -1, -3, 1, one);
    EXPECT_RAISED(kRangeError);
    EXPECT_UNTOUCHED(target, before);
    sliceAssign(target, 1, -99, 1, one);
    EXPECT_RAISED(kRangeError);
    EXPECT_UNTOUCHED(target, before);
    sliceAssign(target, 3, 1, 1, none);
    EXPECT_NOTHING_RAISED();
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(SliceAssign, ExtendedStep_AssignsInVisitingOrder) {
  for (const char* type : kIntTypes) {
    SCOPED_TRACE(type);
    const Handle target = intList(type, {0, 1, 2, 3});
    const std::string storage = storageOf(target);
    sliceAssign(target, kOmitted, kOmitted, 2, intList("ArrayList", {10, 20}));
    EXPECT_EQ(elementsOf(target), (Elements{"Int 10", "Int 1", "Int 20", "Int 3"}));
    sliceAssign(target, kOmitted, kOmitted, -1, intList("ArrayList", {5, 6, 7, 8}));
    EXPECT_EQ(elementsOf(target), (Elements{"Int 8", "Int 7", "Int 6", "Int 5"}));
    sliceAssign(target, 3, 1, 2, object("ArrayList"));
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(storageOf(target), storage);
    EXPECT_AT_REST(target);
  }
}

TEST_F(SliceAssign, ExtendedStepWithAnotherCount_RaisesAndChangesNothing) {
  for (const char* type : kIntTypes) {
    const Handle target = intList(type, {0, 1, 2, 3});
    const Snapshot before(target);
    for (const auto& values : {std::vector<long long>{9}, {1, 2, 3}, {}}) {
      for (const long long step : {2LL, -2LL}) {
        sliceAssign(target, kOmitted, kOmitted, step, intList("ArrayList", values));
        EXPECT_RAISED(kExtendedError);
        EXPECT_UNTOUCHED(target, before);
      }
    }
    sliceAssign(target, kOmitted, kOmitted, -1, intList("ArrayList", {9}));
    EXPECT_RAISED(kExtendedError);
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(SliceAssign, StepZero_RaisesBeforeTheSourceIsLookedAt) {
  forEachList([](void* target) {
    const Snapshot before(target);
    sliceAssign(target, kOmitted, kOmitted, 0, nullptr);
    EXPECT_RAISED(kStepError);
    EXPECT_UNTOUCHED(target, before);
  });
  sliceAssign(object("ArrayList"), kOmitted, kOmitted, 0, object("ArrayList"));
  EXPECT_RAISED(kStepError);
}

TEST_F(SliceAssign, AnythingButAnOrderedCollection_Raises) {
  const std::vector<Handle> sources = {
      nullptr, integer("Int", 1), floating("Double", 1.5), boolean(true), string("ab"), text("ab"), item(1)};
  for (const char* type : kIntTypes) {
    const Handle target = intList(type, {0, 1, 2, 3});
    const Snapshot before(target);
    for (const Handle& source : sources) {
      for (const long long step : {1LL, 2LL}) {
        SCOPED_TRACE(describe(source));
        sliceAssign(target, 3, 1, step, source);
        EXPECT_RAISED(kSourceError);
        EXPECT_UNTOUCHED(target, before);
      }
    }
  }
}

TEST_F(SliceAssign, ListItselfAsSource_SeesTheListAsItWas) {
  for (const char* type : kIntTypes) {
    SCOPED_TRACE(type);
    const Handle target = intList(type, {1, 2, 3});
    sliceAssign(target, 0, 2, 1, target);
    EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2", "Int 3", "Int 3"}));
    const Handle reversed = intList(type, {1, 2, 3});
    sliceAssign(reversed, kOmitted, kOmitted, -1, reversed);
    EXPECT_EQ(elementsOf(reversed), (Elements{"Int 3", "Int 2", "Int 1"}));
    const Handle same = intList(type, {1, 2, 3});
    sliceAssign(same, kOmitted, kOmitted, 1, same);
    EXPECT_EQ(elementsOf(same), (Elements{"Int 1", "Int 2", "Int 3"}));
    EXPECT_AT_REST(target);
    EXPECT_AT_REST(reversed);
  }
}

TEST_F(SliceAssign, RefusedValue_StopsThereAndEarlierOnesStay) {
  for (const char* type : kIntTypes) {
    for (const long long step : {1LL, -1LL}) {
      SCOPED_TRACE(type);
      const Handle target = intList(type, {0, 1, 2, 3});
      const Handle source =
          list("ArrayList", {integer("Int", 10), string("x"), integer("Int", 30), floating("Double", 1.0)});
      sliceAssign(target, kOmitted, kOmitted, step, source);
      EXPECT_RAISED(listTypeError("Int", "vorn.String"));
      EXPECT_EQ(elementsOf(target), step == 1 ? (Elements{"Int 10", "Int 1", "Int 2", "Int 3"})
                                              : (Elements{"Int 0", "Int 1", "Int 2", "Int 10"}));
      EXPECT_AT_REST(target);
    }
  }
}

// The same values one by one through operator_index_eq.
Elements assignedOneByOne(void* list, const std::vector<Handle>& values) {
  for (std::size_t i = 0; i < values.size() && vorn_error_count() == 0; ++i) {
    vorn_collections_ArrayList_operator_index_eq(list, static_cast<long long>(i), values[i]);
  }
  return takeErrors();
}

// Values of all sorts in all orders of four: what fits, what is converted, what materialises, what is refused.
TEST_F(SliceAssign, SameCount_IsWhatSingleWritesAre) {
  const std::vector<Handle> palette = {
      integer("Int", 91),   integer("Byte", 92),     integer("Byte", 300),    string("x"),  nullptr,
      integer("Char", 'c'), integer("Char", 0xD800), floating("Double", 1.5), boolean(true)};
  const Filler kFillers[] = {
      {"ArrayList<Int>", "Int"},   {"ArrayList", "Int"},          {"ArrayList<Double>", "Double"},
      {"ArrayList<Byte>", "Byte"}, {"ArrayList<Byte>", "Int"},    {"ArrayList<Char>", "Char"},
      {"ArrayList", "Char"},       {"ArrayList<String>", "Int"},  {"LinkedList<Int>", "Int"},
      {"LinkedListSync", "Int"},   {"ArrayListSync", "CodeUnit"}, {"ArrayList<Object>", "Float"}};
  for (const auto& [type, element] : kFillers) {
    for (std::size_t order = 0; order < palette.size() * palette.size() * palette.size(); ++order) {
      if (onStressHeap() && order % 29 != 0) continue;
      const std::size_t n = palette.size();
      const std::vector<Handle> values = {palette[order % n], palette[order / n % n], palette[order / n / n]};
      const Handle target = rawList(type, element, {65, 66, 67, 68});
      const Handle other = rawList(type, element, {65, 66, 67, 68});
      sliceAssign(target, 0, 3, 1, tupleOf(values));
      const Elements errors = takeErrors();
      ASSERT_EQ(errors, assignedOneByOne(other, values)) << type << " " << ::testing::PrintToString(elementsOf(target));
      ASSERT_EQ(elementsOf(target), elementsOf(other)) << type << " of " << element;
      ASSERT_EQ(storageOf(target), storageOf(other)) << type;
      EXPECT_AT_REST(target);
    }
  }
}

TEST_F(SliceAssign, ValueThatWouldMaterialise_BehindARefusedOne_LeavesTheStorage) {
  const Handle target = rawList("ArrayList", "Char", {65, 66, 67});
  sliceAssign(target, kOmitted, kOmitted, 1, tupleOf({integer("Char", 97), integer("Char", 0xD800), string("x")}));
  EXPECT_RAISED(kCharError);
  EXPECT_EQ(elementsOf(target), (Elements{"Char 97", "Char 66", "Char 67"}));
  EXPECT_EQ(storageOf(target), "Char");
}

TEST_F(SliceAssign, NullList_DoesNothing) {
  sliceAssign(nullptr, kOmitted, kOmitted, 1, object("ArrayList"));
  sliceAssign(nullptr, kOmitted, kOmitted, 0, nullptr);
  sliceAssign(nullptr, kOmitted, kOmitted, 1, nullptr);
  EXPECT_NOTHING_RAISED();
}

}  // namespace
}  // namespace vorn::tests
