// Tuples, immutable lists and hash sets as sources of whole-list operations.
#include <vorn/collections/hash_set.h>

#include "tests/arraylist/bulk_cases.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

using SequenceSources = RuntimeTest;

TEST_F(SequenceSources, AddAll_ImmutableListsOfEveryStorage) {
  const Handle target = object("ArrayList");
  vorn_collections_ArrayList_addAll(target, unboxedImmutable("Int", {1, 2}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
  EXPECT_EQ(storageOf(target), "Int");
  vorn_collections_ArrayList_addAll(target, boxedImmutable({string("a"), nullptr}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2", "String a", "null"}));
  vorn_collections_ArrayList_addAll(target, object("ImmutableList"));
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 4);
  EXPECT_VALID_LIST(target);
}

TEST_F(SequenceSources, AddAll_Tuples) {
  const Handle target = object("LinkedListSync");
  vorn_collections_ArrayList_addAll(target,
                                    tupleOf({integer("Int", 1), string("a"), nullptr}, "Tuple<Int,String,Int>"));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "String a", "null"}));
  vorn_collections_ArrayList_addAll(target, tupleOf({}));
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 3);
  EXPECT_VALID_LIST(target);
}

TEST_F(SequenceSources, AddAll_TuplesOfNumbersStayUnboxed) {
  const Handle target = object("ArrayList<Int>");
  vorn_collections_ArrayList_addAll(target, tupleOf({integer("Int", 1), integer("Byte", 2)}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
  EXPECT_EQ(storageOf(target), "Int");
}

TEST_F(SequenceSources, AddAll_ARefusedItemLeavesTheListUnchanged) {
  const Handle target = intList("ArrayList<Int>", {7});
  for (const Handle& source : {tupleOf({integer("Int", 1), string("a")}), boxedImmutable({string("a")})}) {
    vorn_collections_ArrayList_addAll(target, source);
    EXPECT_RAISED(listTypeError("Int", "vorn.String"));
    EXPECT_EQ(elementsOf(target), Elements{"Int 7"});
  }
}

TEST_F(SequenceSources, AddAllAt_KeepsTheOrder) {
  const Handle target = intList("ArrayList<Int>", {1, 5});
  vorn_collections_ArrayList_addAllAt(target, 1, tupleOf({integer("Int", 2), integer("Int", 3)}));
  vorn_collections_ArrayList_addAllAt(target, 3, unboxedImmutable("Int", {4}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2", "Int 3", "Int 4", "Int 5"}));
  EXPECT_EQ(storageOf(target), "Int");
}

TEST_F(SequenceSources, AddAllAt_AnEmptySourceNeverChecksTheIndex) {
  const Handle target = intList("ArrayList<Int>", {1});
  for (const Handle& source : {tupleOf({}), object("ImmutableList"), object("HashSet")}) {
    vorn_collections_ArrayList_addAllAt(target, 99, source);
    EXPECT_NOTHING_RAISED();
  }
  vorn_collections_ArrayList_addAllAt(target, -1, tupleOf({nullptr}));
  EXPECT_RAISED(kIndexError);
}

TEST_F(SequenceSources, AddAll_HashSetsInTheirOrder) {
  const Handle set = object("HashSetSync");
  for (const long long value : {3, 1, 2}) vorn_collections_HashSet_add(set, integer("Int", value));
  const Handle target = object("ArrayList");
  vorn_collections_ArrayList_addAll(target, set);
  EXPECT_EQ(elementsOf(target), elementsOf(Handle(vorn_collections_HashSet_items(set))));
  EXPECT_EQ(vorn_collections_ArrayList_size(target), 3);
}

TEST_F(SequenceSources, AddAll_AMapIsNone) {
  const Handle target = intList("ArrayList<Int>", {1});
  vorn_collections_ArrayList_addAll(target, object("Map"));
  EXPECT_RAISED(kAddAllError);
  vorn_collections_ArrayList_addAllAt(target, 0, object("SortedMap"));
  EXPECT_RAISED(kAddAllError);
}

TEST_F(SequenceSources, AddAll_ATupleWhoseSizeIsNegativeIsNone) {
  const Handle tuple = tupleOf({integer("Int", 1)});
  vorn_field_set_integer(tuple, "size", -1);
  const Handle target = object("ArrayList");
  vorn_collections_ArrayList_addAll(target, tuple);
  EXPECT_RAISED(kAddAllError);
}

TEST_F(SequenceSources, SliceAssign_ImmutableListsAndTuples) {
  const Handle target = intList("ArrayList<Int>", {1, 2, 3, 4});
  sliceAssign(target, 1, 3, 1, tupleOf({integer("Int", 20), integer("Int", 30)}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 20", "Int 30", "Int 4"}));
  EXPECT_EQ(storageOf(target), "Int");
  sliceAssign(target, kOmitted, kOmitted, 2, unboxedImmutable("Int", {-1, -3}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int -1", "Int 20", "Int -3", "Int 4"}));
  sliceAssign(target, 1, 3, 1, boxedImmutable({string("a")}));
  EXPECT_EQ(elementsOf(target), (Elements{"Int -1", "String a", "Int 4"}));
  EXPECT_EQ(storageOf(target), "objects");
  sliceAssign(target, 0, 2, 1, tupleOf({}));
  EXPECT_EQ(elementsOf(target), Elements{"Int 4"});
}

TEST_F(SequenceSources, SliceAssign_SetsAndMapsAreNone) {
  const Handle target = intList("ArrayList<Int>", {1, 2});
  for (const char* type : {"HashSet", "HashSetSync", "Map", "SortedMapSync"}) {
    sliceAssign(target, 0, 1, 1, object(type));
    EXPECT_RAISED(kSourceError);
  }
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
}

TEST_F(SequenceSources, Concat_AnImmutableList) {
  const Handle target = intList("ArrayList<Int>", {1});
  const Handle result = vorn_collections_ArrayList_concat(target, unboxedImmutable("Int", {2}));
  EXPECT_EQ(elementsOf(result), (Elements{"Int 1", "Int 2"}));
  EXPECT_EQ(storageOf(result), "Int");
}

TEST_F(SequenceSources, Slice_OfAnImmutableListIsAnArrayList) {
  const Handle part = slice(unboxedImmutable("Int", {1, 2, 3}), 1, kOmitted);
  EXPECT_EQ(familyOf(part), "ArrayList");
  EXPECT_EQ(elementsOf(part), (Elements{"Int 2", "Int 3"}));
}

TEST_F(SequenceSources, AllocationFailures_LeaveTheListUnchanged) {
  for (const Handle& source : {tupleOf({integer("Int", 1), string("a")}), boxedImmutable({string("a"), nullptr})}) {
    const Handle target = intList("ArrayListSync", {7, 8, 9});
    EXPECT_GE(sweepFailuresOnList(target, [&] { vorn_collections_ArrayList_addAll(target, source); }), 1);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 5);
  }
}

}  // namespace
}  // namespace vorn::tests
