// `add`: when a list adopts, keeps and leaves unboxed storage.
#include <tuple>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class Append : public RuntimeTest {};

TEST_F(Append, Add_BoxedIntToIntList_StaysUnboxed) {
  const Handle target = object("ArrayList<Int>");
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(declaredTypeOf(target), "Int");
  for (int i = 0; i < 5; ++i) vorn_collections_ArrayList_add(target, integer("Int", i));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(kindOf(target), ListData::PrimitiveKind::Int);
  EXPECT_EQ(elementsOf(target), (Elements{"Int 0", "Int 1", "Int 2", "Int 3", "Int 4"}));
  EXPECT_AT_REST(target);
}

TEST_F(Append, Add_WidensIntoTheDeclaredType) {
  const Handle bytes = list("ArrayList<Byte>", {integer("Int", 255), integer("Long", 1), integer("SByte", 2)});
  EXPECT_EQ(storageOf(bytes), "Byte");
  EXPECT_EQ(elementsOf(bytes), (Elements{"Byte 255", "Byte 1", "Byte 2"}));
  const Handle doubles = list("ArrayList<Double>", {integer("Int", 3), floating("Float", 0.5), boolean(true)});
  EXPECT_EQ(storageOf(doubles), "Double");
  EXPECT_EQ(elementsOf(doubles), (Elements{"Double 3", "Double 0.5", "Double 1"}));
  const Handle longs = list("ArrayList<Long>", {integer("ULong", -1)});
  EXPECT_EQ(elementsOf(longs), (Elements{"Long -1"}));
  EXPECT_NOTHING_RAISED();
}

TEST_F(Append, Add_FloatListNarrowsToSinglePrecision) {
  const Handle target = list("ArrayList<Float>", {floating("Double", 0.1)});
  EXPECT_EQ(storageOf(target), "Float");
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 0), static_cast<double>(0.1F));
  EXPECT_EQ(elementsOf(target), (Elements{"Float " + describeNumber(static_cast<double>(0.1F))}));
}

TEST_F(Append, Add_UntypedList_AdoptsTheFirstPrimitiveType) {
  for (const std::string& name : primitiveNames()) {
    SCOPED_TRACE(name);
    const Handle target = list("ArrayList", {box(name, 1)});
    EXPECT_EQ(storageOf(target), name);
    EXPECT_EQ(kindOf(target), primitiveKindForType(name));
    EXPECT_EQ(declaredTypeOf(target), "");
    vorn_collections_ArrayList_add(target, box(name, 0));
    EXPECT_EQ(storageOf(target), name);
    EXPECT_EQ(elementsOf(target), (Elements{describe(box(name, 1)), describe(box(name, 0))}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(Append, Add_UntypedList_AnotherKindMaterialises) {
  const Handle target = list("ArrayList", {integer("Int", 1), integer("Long", 2)});
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(kindOf(target), ListData::PrimitiveKind::None);
  EXPECT_EQ(getListData(target)->primitiveType.name, nullptr);
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Long 2"}));
  vorn_collections_ArrayList_add(target, integer("Int", 3));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Long 2", "Int 3"}));
  EXPECT_AT_REST(target);
}

TEST_F(Append, Add_UntypedList_SameKindUnderAnotherNameMaterialises) {
  const std::pair<const char*, const char*> pairs[] = {
      {"UInt", "Char"}, {"Char", "UInt"}, {"UShort", "CodeUnit"}, {"CodeUnit", "UShort"}};
  for (const auto& [first, second] : pairs) {
    const Handle target = list("ArrayList", {integer(first, 65), integer(second, 66)});
    EXPECT_EQ(storageOf(target), "objects");
    EXPECT_EQ(elementsOf(target), (Elements{std::string(first) + " 65", std::string(second) + " 66"}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(Append, Add_UntypedList_StringMaterialisesAndEarlierElementsBecomeOrdinaryObjects) {
  const Handle target = list("ArrayList", {integer("Int", 1), integer("Int", 2)});
  const Handle value = string("x");
  vorn_collections_ArrayList_add(target, value);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2", "String x"}));
  const Handle first = vorn_collections_ArrayList_operator_index(target, 0);
  EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 0), first.get());
  EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 2), value.get());
}

TEST_F(Append, Add_NullToUntypedListMaterialises) {
  const Handle target = list("ArrayList", {integer("Int", 1), nullptr, integer("Int", 2)});
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "null", "Int 2"}));
}

TEST_F(Append, Add_UntypedListThatStartsWithAnObjectNeverUnboxes) {
  const Handle target = list("ArrayList", {string("x"), integer("Int", 1), integer("Int", 2)});
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"String x", "Int 1", "Int 2"}));
}

TEST_F(Append, Add_ListOfObjectKeepsBoxes) {
  // A declared type without a kind never adopts one from a value.
  const Handle value = integer("Int", 1);
  const Handle target = list("ArrayList<Object>", {value});
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 0), value.get());
}

TEST_F(Append, Add_TypedListInBoxedStorage_KeepsTheHandle) {
  const Handle target = list("ArrayList<Double>", {floating("Double", 1.5)});
  EXPECT_FALSE(vorn_collections_ArrayList_operator_in(target, string("x")));
  const Handle value = integer("Int", 3);
  vorn_collections_ArrayList_add(target, value);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 1), value.get());
  EXPECT_EQ(declaredTypeOf(target), "Double");
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(target, 1), 3.0);
}

TEST_F(Append, Add_ListEmptiedByRemovals_AdoptsAgain) {
  const Handle target = list("ArrayList", {string("x")});
  vorn_collections_ArrayList_removeAt(target, 0);
  vorn_collections_ArrayList_add(target, integer("Short", 4));
  EXPECT_EQ(storageOf(target), "Short");
  EXPECT_EQ(elementsOf(target), (Elements{"Short 4"}));
  EXPECT_AT_REST(target);
}

TEST_F(Append, Add_UnboxedListEmptiedByRemovals_KeepsItsKind) {
  const Handle same = list("ArrayList", {integer("Int", 1)});
  vorn_collections_ArrayList_removeAt(same, 0);
  EXPECT_EQ(storageOf(same), "Int");
  vorn_collections_ArrayList_add(same, integer("Int", 2));
  EXPECT_EQ(storageOf(same), "Int");
  // The kind is still Int, so that another kind materialises the empty list.
  const Handle other = list("ArrayList", {integer("Int", 1)});
  vorn_collections_ArrayList_removeAt(other, 0);
  vorn_collections_ArrayList_add(other, integer("Long", 2));
  EXPECT_EQ(storageOf(other), "objects");
  EXPECT_EQ(elementsOf(other), (Elements{"Long 2"}));
  EXPECT_AT_REST(other);
}

TEST_F(Append, Add_ClearedList_AdoptsAgain) {
  const Handle untyped = list("ArrayList", {integer("Int", 1), string("x")});
  vorn_collections_ArrayList_clear(untyped);
  vorn_collections_ArrayList_add(untyped, floating("Double", 0.5));
  EXPECT_EQ(storageOf(untyped), "Double");
  const Handle typed = list("ArrayList<Int>", {integer("Int", 1)});
  EXPECT_EQ(vorn_collections_ArrayList_count(typed, nullptr), 0);
  EXPECT_EQ(storageOf(typed), "objects");
  vorn_collections_ArrayList_clear(typed);
  vorn_collections_ArrayList_add(typed, integer("Byte", 1));
  EXPECT_EQ(storageOf(typed), "Int");
}

TEST_F(Append, Add_StorageOfAnotherKindThanDeclared_TakesBoxesOfTheStoredType) {
  // A raw append has given a list of Byte unboxed Ints. A value must still pass the declared type, and is then kept
  // unboxed when its own type is the stored one.
  const Handle target = object("ArrayList<Byte>");
  vorn_collections_ArrayList_addInt(target, 300);
  ASSERT_EQ(storageOf(target), "Int");
  vorn_collections_ArrayList_add(target, integer("Int", 5));
  vorn_collections_ArrayList_addAt(target, 0, integer("Int", 6));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 6", "Int 300", "Int 5"}));
  const Snapshot before(target);
  vorn_collections_ArrayList_add(target, integer("Int", 300));
  EXPECT_RAISED(listTypeError("Byte", "vorn.Int"));
  EXPECT_UNTOUCHED(target, before);
  vorn_collections_ArrayList_add(target, integer("Byte", 7));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 6", "Int 300", "Int 5", "Byte 7"}));
  EXPECT_AT_REST(target);
}

TEST_F(Append, Add_ListOfObjectWithUnboxedElements_TakesBoxesOfTheStoredType) {
  const Handle target = object("ArrayList<Object>");
  vorn_collections_ArrayList_addInt(target, 1);
  vorn_collections_ArrayList_add(target, integer("Int", 2));
  vorn_collections_ArrayList_operator_index_eq(target, 0, integer("Int", 3));
  EXPECT_EQ(storageOf(target), "Int");
  vorn_collections_ArrayList_add(target, integer("Long", 4));
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 3", "Int 2", "Long 4"}));
  EXPECT_AT_REST(target);
}

TEST_F(Append, Add_LinkedList_NeverUnboxesAndKeepsHandles) {
  for (const char* type : {"LinkedList", "LinkedList<Int>", "LinkedListSync<Int>"}) {
    const Handle value = integer("Int", 1);
    const Handle target = list(type, {value, value});
    EXPECT_EQ(storageOf(target), "linked");
    EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 0), value.get());
    EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 1), value.get());
    EXPECT_AT_REST(target);
  }
}

TEST_F(Append, Add_CharacterBoxOutOfRange_IsRefusedByUnboxedStorageOnly) {
  // An untyped list accepts every value, so only the storage can refuse the impossible character.
  for (const auto& [name, bad, error] : {std::tuple("Char", 0xD800LL, kCharError),
                                         {"Char", 0x110000LL, kCharError},
                                         {"Char", -1LL, kCharError},
                                         {"CodeUnit", 0x10000LL, kCodeUnitError},
                                         {"CodeUnit", -1LL, kCodeUnitError}}) {
    SCOPED_TRACE(bad);
    for (const Handle& target : {list("ArrayList"), list("ArrayListSync", {integer(name, 65)})}) {
      const Snapshot before(target);
      vorn_collections_ArrayList_add(target, integer(name, bad));
      EXPECT_RAISED(error);
      EXPECT_UNTOUCHED(target, before);
    }
    const Handle boxed = list("ArrayList", {string("x"), integer(name, bad)});
    const Handle linked = list("LinkedList", {integer(name, bad)});
    EXPECT_NOTHING_RAISED();
    EXPECT_EQ(vorn_collections_ArrayList_getInt(boxed, 1), bad);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(linked, 0), bad);
  }
}

TEST_F(Append, Add_BoxesKeepLowBitsInUnboxedStorage) {
  // A box may hold more than its type's range; an untyped list's storage keeps the low bits.
  const Handle target = list("ArrayList", {integer("Byte", 300), integer("Byte", -1)});
  EXPECT_EQ(storageOf(target), "Byte");
  EXPECT_EQ(elementsOf(target), (Elements{"Byte 44", "Byte 255"}));
}

TEST_F(Append, Add_WithAnErrorPending_StillAppends) {
  const Handle target = list("ArrayList<Int>");
  const Handle value = integer("Int", 1);
  vorn_raise("Exception", "earlier");
  vorn_collections_ArrayList_add(target, value);
  EXPECT_RAISED("Exception: earlier");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1"}));
}

TEST_F(Append, Add_ListToItself_IsJustAnElement) {
  const Handle target = list("ArrayListSync");
  vorn_collections_ArrayList_add(target, target);
  EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 0), target.get());
  EXPECT_AT_REST(target);
}

}  // namespace
}  // namespace vorn::tests
