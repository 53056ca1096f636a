// Errors that user hooks raise, or that were pending before, while values are compared.
#include "collections/core/equality/element_order.h"
#include "collections/core/port/text.h"
#include "tests/core/core_test_support.h"
#include "tests/core/user_classes.h"

namespace vorn::tests {
namespace {

// What the hooks of coretest.Fussy do: compare gives "later" while `mood` is 0 and raises while it is 1.
int compareCalls = 0;
int equalsCalls = 0;
int toStringCalls = 0;
bool equalsRaises = false;

Handle fussy(std::int64_t mood) {
  static const bool defined = [] {
    const vorn_field_definition fields[] = {{"mood", VORN_FIELD_INTEGER}};
    vorn_class_definition definition{};
    definition.name = "coretest.Fussy";
    definition.fields = fields;
    definition.field_count = 1;
    definition.equals = [](void*, void*, void*) {
      ++equalsCalls;
      if (equalsRaises) vorn_raise("ValueException", "equality refused");
      return false;
    };
    definition.compare = [](void* self, void*, bool* comparable, void*) {
      ++compareCalls;
      *comparable = true;
      std::int64_t mine = 0;
      vorn_field_get_integer(self, "mood", &mine);
      if (mine == 1) vorn_raise("ValueException", "order refused");
      return 1;
    };
    definition.to_string = [](void*, void*) -> void* {
      ++toStringCalls;
      return nullptr;
    };
    defineClass(definition);
    return true;
  }();
  (void)defined;
  Handle result = object("coretest.Fussy");
  EXPECT_EQ(vorn_field_set_integer(result, "mood", mood), 1);
  return result;
}

class ElementOrderErrors : public RuntimeTest {
 protected:
  void SetUp() override {
    compareCalls = equalsCalls = toStringCalls = 0;
    equalsRaises = false;
  }

  static Handle listOf(const Handle& element) { return list("ArrayList", {element}); }
};

TEST_F(ElementOrderErrors, OrderOfObjectsWhoseHookRaisesIsZeroWithTheErrorLeftPending) {
  EXPECT_EQ(compareListValues(fussy(1), fussy(1)), 0);
  const std::vector<std::string> errors = takeErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors.front(), "ValueException: order refused");
}

TEST_F(ElementOrderErrors, ErrorInTheFirstDirectionEndsTheComparison) {
  Handle left = listOf(fussy(1));
  Handle right = listOf(fussy(0));
  compareCalls = 0;
  EXPECT_EQ(compareListValues(left, right), 0);
  EXPECT_RAISED("ValueException: order refused");
  EXPECT_EQ(compareCalls, 1) << "the other direction was asked although an error was pending";
}

TEST_F(ElementOrderErrors, ErrorInTheSecondDirectionGivesZero) {
  Handle left = listOf(fussy(0));
  Handle right = listOf(fussy(1));
  compareCalls = 0;
  EXPECT_EQ(compareListValues(left, right), 0) << "neither the type name nor the address may decide now";
  EXPECT_RAISED("ValueException: order refused");
  EXPECT_EQ(compareCalls, 2);
}

TEST_F(ElementOrderErrors, WithoutAnErrorTheSamePairIsOrdered) {
  Handle left = listOf(fussy(0));
  Handle right = listOf(fussy(0));
  EXPECT_NE(compareListValues(left, right), 0);
}

TEST_F(ElementOrderErrors, AnErrorPendingBeforeCountsOnceTheFirstIsNotLess) {
  Handle one = listOf(integer("Int", 1));
  Handle two = listOf(integer("Int", 2));
  vorn_raise("Exception", "from before");
  EXPECT_EQ(compareListValues(one, two), -1) << "less is decided before the error is looked at";
  EXPECT_EQ(compareListValues(two, one), 0);
  EXPECT_RAISED("Exception: from before");
  EXPECT_EQ(compareListValues(two, one), 1);
}

TEST_F(ElementOrderErrors, AnErrorPendingBeforeDoesNotTouchTheOtherRules) {
  Handle one = listOf(integer("Int", 1));
  Handle same = listOf(integer("Int", 1));
  vorn_raise("Exception", "from before");
  EXPECT_LT(compareListValues(integer("Int", 1), integer("Int", 2)), 0);
  EXPECT_GT(compareListValues(integer("Int", 2), integer("Int", 1)), 0);
  EXPECT_EQ(compareListValues(text("b"), text("a")), 1);
  EXPECT_EQ(compareListValues(boolean(true), boolean(false)), 1);
  EXPECT_EQ(compareListValues(boolean(true), floating("Double", 0.5)), 1);
  EXPECT_EQ(compareListValues(one, same), 0);
  EXPECT_TRUE(listValuesEqual(one, same));
  EXPECT_TRUE(listValuesEqual(integer("Int", 1), floating("Double", 1.0)));
  EXPECT_RAISED("Exception: from before");
}

TEST_F(ElementOrderErrors, EqualityReachesUserHooksAndLeavesTheirErrorsPending) {
  Handle left = fussy(0);
  Handle right = fussy(0);
  EXPECT_FALSE(listValuesEqual(left, right));
  EXPECT_EQ(equalsCalls, 1);
  equalsRaises = true;
  EXPECT_FALSE(listValuesEqual(left, right));
  EXPECT_RAISED("ValueException: equality refused");
}

TEST_F(ElementOrderErrors, CheapRulesRunNoUserCode) {
  Handle self = fussy(1);
  EXPECT_TRUE(listValuesEqual(self, self));
  EXPECT_EQ(compareListValues(self, self), 0);
  for (const Handle& value : {Handle(), text("a")}) {
    EXPECT_FALSE(listValuesEqual(self, value));
    EXPECT_FALSE(listValuesEqual(value, self));
    EXPECT_EQ(compareListValues(self, value), 1);
    EXPECT_EQ(compareListValues(value, self), -1);
  }
  EXPECT_FALSE(listValuesEqual(self, string("a")));
  EXPECT_FALSE(listValuesEqual(string("a"), self));
  EXPECT_TRUE(listValuesEqual(self, floating("Double", 0.0)));
  EXPECT_EQ(compareListValues(floating("Double", 0.5), self), 1);
  EXPECT_EQ(stringObjectTextOrNull(self), nullptr);
  EXPECT_EQ(compareCalls + equalsCalls + toStringCalls, 0);
}

TEST_F(ElementOrderErrors, StringObjectTextIsTheStringsOwn) {
  Handle value = string("abc");
  EXPECT_EQ(stringObjectTextOrNull(value), Vorn_objectToString(value));
  EXPECT_EQ(stringObjectTextOrNull(nullptr), nullptr);
  EXPECT_EQ(stringObjectTextOrNull(text("abc")), nullptr);
}

TEST_F(ElementOrderErrors, HooksThatAllocateDoNotLoseTheValues) {
  const int count = onStressHeap() ? 5 : 50;
  Handle target = object("ArrayList");
  for (int i = 0; i < count; ++i) record(target).objectPushBack(fussy(0));
  for (int i = 0; i + 1 < count; ++i) {
    Handle left = listOf(record(target).objects.data[i]);
    Handle right = listOf(record(target).objects.data[i + 1]);
    EXPECT_NE(compareListValues(left, right), 0);
    EXPECT_FALSE(listValuesEqual(left, right));
  }
}

}  // namespace
}  // namespace vorn::tests
