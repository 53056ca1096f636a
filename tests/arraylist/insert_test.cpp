// `addAt`: what inserting does to the storage. Positions and refusals stand in other files.
#include <tuple>

#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class Insert : public RuntimeTest {};

void addAt(void* target, long long index, void* value) { vorn_collections_ArrayList_addAt(target, index, value); }

TEST_F(Insert, AddAt_EmptyList_AdoptsTheValuesKindAsAnAppendDoes) {
  const Handle untyped = object("ArrayList");
  addAt(untyped, 0, integer("Short", 3));
  EXPECT_EQ(storageOf(untyped), "Short");
  EXPECT_EQ(elementsOf(untyped), (Elements{"Short 3"}));
  const Handle longs = object("ArrayList<Long>");
  addAt(longs, 0, integer("Int", 3));
  EXPECT_EQ(storageOf(longs), "Long");
  EXPECT_EQ(elementsOf(longs), (Elements{"Long 3"}));
  const Handle objects = object("ArrayList<Object>");
  addAt(objects, 0, integer("Int", 3));
  EXPECT_EQ(storageOf(objects), "objects");
  EXPECT_AT_REST(untyped);
  EXPECT_AT_REST(longs);
  EXPECT_AT_REST(objects);
}

TEST_F(Insert, AddAt_ListEmptiedByRemovals_AdoptsAgain) {
  const Handle target = list("ArrayList", {string("x")});
  vorn_collections_ArrayList_removeAt(target, 0);
  addAt(target, 0, integer("Int", 3));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 3"}));
}

TEST_F(Insert, AddAt_ConvertsToTheDeclaredType) {
  const Handle target = list("ArrayList<Double>", {floating("Double", 0.5), floating("Double", 1.5)});
  addAt(target, 1, integer("Int", 7));
  addAt(target, 3, boolean(true));
  EXPECT_EQ(storageOf(target), "Double");
  EXPECT_EQ(elementsOf(target), (Elements{"Double 0.5", "Double 7", "Double 1.5", "Double 1"}));
}

TEST_F(Insert, AddAt_ForeignValue_MaterialisesAndInserts) {
  for (const long long index : {0LL, 1LL, 2LL}) {
    const Handle target = list("ArrayListSync", {integer("Int", 1), integer("Int", 2)});
    const Handle value = string("x");
    addAt(target, index, value);
    Elements expected{"Int 1", "Int 2"};
    expected.insert(expected.begin() + index, "String x");
    EXPECT_EQ(storageOf(target), "objects");
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, index), value.get());
    EXPECT_AT_REST(target);
  }
}

TEST_F(Insert, AddAt_NullIntoUntypedUnboxedList_Materialises) {
  const Handle target = list("ArrayList", {integer("Int", 1)});
  addAt(target, 0, nullptr);
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_EQ(elementsOf(target), (Elements{"null", "Int 1"}));
}

TEST_F(Insert, AddAt_ObjectStorage_MovesTheRestUpAcrossGrowth) {
  const Handle target = list("ArrayList", {string("a"), string("b"), string("c"), string("d")});
  addAt(target, 1, string("e"));
  addAt(target, 5, string("f"));
  addAt(target, 0, string("g"));
  EXPECT_EQ(elementsOf(target),
            (Elements{"String g", "String a", "String e", "String b", "String c", "String d", "String f"}));
  EXPECT_AT_REST(target);
}

TEST_F(Insert, AddAt_CharacterBoxOutOfRange_IsRefusedAndLeavesTheListUnchanged) {
  for (const auto& [name, bad, error] :
       {std::tuple("Char", 0xDFFFLL, kCharError), {"CodeUnit", 0x10000LL, kCodeUnitError}}) {
    for (const Handle& target : {list("ArrayList"), list("ArrayListSync", {integer(name, 65), integer(name, 66)})}) {
      const Snapshot before(target);
      addAt(target, vorn_collections_ArrayList_size(target), integer(name, bad));
      EXPECT_RAISED(error);
      EXPECT_UNTOUCHED(target, before);
      addAt(target, 0, integer(name, bad));
      EXPECT_RAISED(error);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_F(Insert, AddAt_LinkedList_EveryPosition) {
  for (long long index = 0; index <= 5; ++index) {
    const Handle target = list("LinkedList", {item(0), item(1), item(2), item(3), item(4)});
    addAt(target, index, item(9));
    Elements expected{"Item 0", "Item 1", "Item 2", "Item 3", "Item 4"};
    expected.insert(expected.begin() + index, "Item 9");
    EXPECT_EQ(elementsOf(target), expected);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Insert, AddAt_ListIntoItself_IsJustAnElement) {
  const Handle target = list("LinkedListSync", {integer("Int", 1)});
  addAt(target, 0, target);
  EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, 0), target.get());
  EXPECT_AT_REST(target);
}

}  // namespace
}  // namespace vorn::tests
