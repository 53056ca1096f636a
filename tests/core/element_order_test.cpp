// Equality and ordering, case by case, with results written by hand.
#include "collections/core/equality/element_order.h"

#include "tests/core/element_order_oracle.h"

namespace vorn::tests {
namespace {

class ElementOrder : public RuntimeTest {};

// Expects one equality and one order, and the mirrored ones the other way round.
void expectPair(const Handle& left, const Handle& right, bool equal, int order) {
  SCOPED_TRACE(describeValue(left) + " and " + describeValue(right));
  EXPECT_EQ(listValuesEqual(left, right), equal);
  EXPECT_EQ(listValuesEqual(right, left), equal);
  EXPECT_EQ(signOf(compareListValues(left, right)), order);
  EXPECT_EQ(signOf(compareListValues(right, left)), -order);
}

// Where both directions give the same sign.
void expectBothWays(const Handle& left, const Handle& right, bool equal, int order) {
  SCOPED_TRACE(describeValue(left) + " and " + describeValue(right));
  EXPECT_EQ(listValuesEqual(left, right), equal);
  EXPECT_EQ(listValuesEqual(right, left), equal);
  EXPECT_EQ(compareListValues(left, right), order);
  EXPECT_EQ(compareListValues(right, left), order);
}

TEST_F(ElementOrder, NullEqualsOnlyNullAndSortsFirst) {
  expectPair(Handle(), Handle(), true, 0);
  expectPair(Handle(), text(""), false, -1);
  expectPair(Handle(), text("a"), false, -1);
  expectPair(Handle(), string(""), false, -1);
  expectPair(Handle(), integer("Int", -5), false, -1);
  expectPair(Handle(), floating("Double", kNaN), false, -1);
  expectPair(Handle(), boolean(false), false, -1);
  expectPair(Handle(), object("ArrayList"), false, -1);
}

TEST_F(ElementOrder, TextsCompareByBytes) {
  expectPair(text("a"), text("a"), true, 0);
  expectPair(text("a"), text("b"), false, -1);
  expectPair(text("a"), text("ab"), false, -1);
  expectPair(text(""), text("a"), false, -1);
  expectPair(text("Z"), text("a"), false, -1);
  expectPair(text("z"), text("\xC3\xA9"), false, -1);
  EXPECT_EQ(compareListValues(text("z"), text("a")), 1) << "exactly one, not the difference of the bytes";
  EXPECT_EQ(compareListValues(text("a"), text("z")), -1);
}

TEST_F(ElementOrder, TextEqualsAStringObjectButSortsBeforeIt) {
  expectPair(text("a"), string("a"), true, -1);
  expectPair(text("z"), string("a"), false, -1);
  expectPair(text(""), string(""), true, -1);
}

TEST_F(ElementOrder, StringObjectsCompareByTheirTexts) {
  expectPair(string("a"), string("a"), true, 0);
  expectPair(string("a"), string("b"), false, -1);
  expectPair(string(""), string("a"), false, -1);
}

TEST_F(ElementOrder, ANumberNeverEqualsAText) {
  expectPair(text("1"), integer("Int", 1), false, -1);
  EXPECT_FALSE(listValuesEqual(string("1"), integer("Int", 1)));
  EXPECT_FALSE(listValuesEqual(integer("Int", 1), string("1")));
  EXPECT_FALSE(listValuesEqual(string("1.0"), floating("Double", 1.0)));
  EXPECT_FALSE(listValuesEqual(floating("Double", 1.0), string("1.0")));
  EXPECT_FALSE(listValuesEqual(string("true"), boolean(true)));
}

TEST_F(ElementOrder, NumbersCompareByValueAcrossKinds) {
  expectPair(integer("Int", 3), floating("Double", 3.0), true, 0);
  expectPair(integer("Byte", 3), integer("Long", 3), true, 0);
  expectPair(integer("Int", 3), floating("Float", 3.5), false, -1);
  expectPair(integer("Int", -1), integer("UInt", 4294967295LL), false, -1);
  expectPair(integer("Long", -1), integer("ULong", -1), false, -1);
  expectPair(integer("Long", kMaxLong), integer("ULong", kMinLong), false, -1);
  expectPair(floating("Double", -0.0), floating("Double", 0.0), true, 0);
  expectPair(floating("Double", -0.0), integer("Int", 0), true, 0);
}

TEST_F(ElementOrder, LargeNumbersAreNotRounded) {
  expectPair(floating("Double", 9007199254740992.0), integer("Long", 9007199254740993LL), false, -1);
  expectPair(integer("Long", kMaxLong), floating("Double", 9223372036854775808.0), false, -1);
  expectPair(integer("Long", kMinLong), floating("Double", -9223372036854775808.0), true, 0);
  expectPair(integer("ULong", kMinLong), floating("Double", 9223372036854775808.0), true, 0);
  expectPair(integer("ULong", -1), floating("Double", 18446744073709551616.0), false, -1);
}

TEST_F(ElementOrder, NaNEqualsNothingButItsOwnHandleAndSortsLast) {
  Handle nan = floating("Double", kNaN);
  EXPECT_TRUE(listValuesEqual(nan, nan));
  EXPECT_EQ(compareListValues(nan, nan), 0);
  EXPECT_FALSE(listValuesEqual(nan, floating("Double", kNaN)));
  EXPECT_FALSE(listValuesEqual(nan, floating("Float", kNaN)));
  expectPair(floating("Double", kInfinity), nan, false, -1);
  expectPair(integer("ULong", -1), nan, false, -1);
  expectPair(floating("Float", -kInfinity), nan, false, -1);
}

TEST_F(ElementOrder, NaNSortsAfterANonNumberFromEitherSide) {
  expectBothWays(floating("Double", kNaN), boolean(true), false, 1);
  expectBothWays(floating("Float", kNaN), integer("Char", 65), false, 1);
  expectBothWays(floating("Double", kNaN), object("ArrayList"), false, 1);
  expectBothWays(floating("Double", kNaN), string("a"), false, 1);
}

TEST_F(ElementOrder, BooleansMeetNumbersAsOneAndZero) {
  expectPair(boolean(true), integer("Int", 1), true, 0);
  expectPair(boolean(false), integer("Long", 0), true, 0);
  expectPair(boolean(true), integer("Byte", 2), false, -1);
  expectPair(boolean(true), floating("Double", 1.0), true, 0);
  expectPair(boolean(true), floating("Float", 1.5), false, -1);
  expectPair(boolean(false), floating("Double", -0.5), false, 1);
  expectPair(boolean(false), boolean(true), false, -1);
}

TEST_F(ElementOrder, AFloatingBoxMeetsAnyObjectByItsIntegerField) {
  expectPair(floating("Double", 97.0), integer("Char", 97), true, 0);
  expectPair(floating("Double", 96.5), integer("CodeUnit", 97), false, -1);
  expectPair(floating("Double", 7.0), holder(7), true, 0);
  expectPair(floating("Float", 7.5), holder(7), false, 1);
  expectPair(floating("Double", 0.0), object("ArrayList"), true, 0);
  expectPair(floating("Double", -1.0), object("ArrayList"), false, -1);
}

TEST_F(ElementOrder, AnIntegerBoxMeetsOtherObjectsStructurally) {
  EXPECT_FALSE(listValuesEqual(integer("Int", 97), integer("Char", 97)));
  EXPECT_FALSE(listValuesEqual(integer("Char", 97), integer("Int", 97)));
  EXPECT_FALSE(listValuesEqual(integer("Int", 7), holder(7)));
  EXPECT_FALSE(listValuesEqual(integer("Int", 0), object("ArrayList")));
  EXPECT_EQ(compareListValues(integer("Int", 0), object("ArrayList")), 0) << "nothing orders them";
  EXPECT_EQ(compareListValues(object("ArrayList"), integer("Int", 0)), 0);
}

TEST_F(ElementOrder, CharactersOfOneTypeAreEqualByValue) {
  EXPECT_TRUE(listValuesEqual(integer("Char", 97), integer("Char", 97)));
  EXPECT_FALSE(listValuesEqual(integer("Char", 97), integer("Char", 98)));
  EXPECT_TRUE(listValuesEqual(integer("CodeUnit", 97), integer("CodeUnit", 97)));
}

TEST_F(ElementOrder, ListsCompareByContent) {
  expectPair(list("ArrayList", {integer("Int", 1)}), list("ArrayList", {integer("Int", 1)}), true, 0);
  expectPair(list("ArrayList", {integer("Int", 1)}), list("ArrayList", {integer("Int", 2)}), false, -1);
  expectPair(list("ArrayList", {integer("Int", 1)}), list("ArrayList", {integer("Int", 1), integer("Int", 0)}), false,
             -1);
  expectPair(object("ArrayList"), list("ArrayList", {Handle()}), false, -1);
}

TEST_F(ElementOrder, UserObjectsWithHooksCompareByThem) {
  expectPair(ranked(2), ranked(2), true, 0);
  expectPair(ranked(1), ranked(2), false, -1);
}

TEST_F(ElementOrder, ObjectsWithoutHooksAreEqualForSortingOnly) {
  definePlainClasses();
  expectBothWays(object("coretest.Animal"), object("coretest.Animal"), false, 0);
  expectBothWays(object("coretest.Animal"), object("coretest.Plant"), false, 0);
  expectBothWays(object("coretest.Animal"), object("ArrayList"), false, 0);
  expectBothWays(holder(1), holder(1), false, 0);
}

TEST_F(ElementOrder, PlainValuesSortBeforeEveryObject) {
  definePlainClasses();
  for (const Handle& value : {string("a"), integer("Int", -1), floating("Double", kNaN), boolean(false),
                              integer("Char", 1), object("ArrayList"), object("coretest.Animal"), ranked(1)}) {
    for (const Handle& plain : {Handle(), text("zzz")}) {
      EXPECT_EQ(compareListValues(plain, value), -1) << describeValue(value);
      EXPECT_EQ(compareListValues(value, plain), 1) << describeValue(value);
    }
  }
}

// ---- Ties -----------------------------------------------------------------------------------------------------------

int orderByAddress(const Handle& left, const Handle& right) {
  return reinterpret_cast<std::uintptr_t>(left.get()) < reinterpret_cast<std::uintptr_t>(right.get()) ? -1 : 1;
}

TEST_F(ElementOrder, TiedCollectionsOfOneTypeSortByAddress) {
  for (int i = 0; i < 5; ++i) {
    Handle left = list("ArrayList", {floating("Double", kNaN)});
    Handle right = list("ArrayList", {floating("Double", kNaN)});
    expectPair(left, right, false, orderByAddress(left, right));
  }
}

TEST_F(ElementOrder, TiedCollectionsSortByTypeNameFirst) {
  const auto nanList = [](const char* name) { return list(name, {floating("Double", kNaN)}); };
  expectPair(nanList("ArrayList"), nanList("LinkedList"), false, -1);
  expectPair(nanList("ArrayList"), nanList("ArrayListSync"), false, -1);
  expectPair(nanList("ArrayListSync"), nanList("LinkedList"), false, -1);
  // Allocated the other way round, the addresses are too.
  Handle last = nanList("LinkedListSync");
  Handle first = nanList("ArrayList");
  expectPair(first, last, false, -1);
}

// Objects that say of themselves that they come after any other.
Handle alwaysLater(const char* name) {
  static const bool defined = [] {
    vorn_class_definition definition{};
    definition.equals = [](void*, void*, void*) { return false; };
    definition.compare = [](void*, void*, bool* comparable, void*) {
      *comparable = true;
      return 1;
    };
    for (const char* className : {"coretest.LaterB", "coretest.LaterA", "coretest.LaterAA"}) {
      definition.name = className;
      defineClass(definition);
    }
    return true;
  }();
  (void)defined;
  return object(name);
}

TEST_F(ElementOrder, ObjectsOfWhichNeitherIsLessSortByTypeNameThenByAddress) {
  Handle b = alwaysLater("coretest.LaterB");
  Handle a = alwaysLater("coretest.LaterA");
  Handle aa = alwaysLater("coretest.LaterAA");
  Handle other = alwaysLater("coretest.LaterA");
  expectPair(a, b, false, -1);
  expectPair(a, aa, false, -1);
  expectPair(aa, b, false, -1);
  expectPair(a, other, false, orderByAddress(a, other));
}

}  // namespace
}  // namespace vorn::tests
