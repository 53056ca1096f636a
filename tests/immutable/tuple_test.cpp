// Construction and reading of tuples.
#include <system_error>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "tests/immutable/sequence_cases.h"
#include "tests/support/heap_statistics.h"
#include "tests/support/held_mutex.h"

namespace vorn::tests {
namespace {

using TupleNatives = RuntimeTest;

Handle tupleFrom(void* packed, const char* type = "Tuple") {
  Handle tuple = object(type);
  vorn_collections_Tuple_ctor(tuple, packed);
  return tuple;
}

TEST_F(TupleNatives, Ctor_Null_DoesNothing) {
  vorn_collections_Tuple_ctor(nullptr, nullptr);
  vorn_collections_Tuple_ctor(nullptr, integer("Int", 1));
}

TEST_F(TupleNatives, Ctor_NullOrNoList_RaisesAndLeavesTheTuple) {
  const Handle tuple = tupleOf({integer("Int", 7)});
  for (const Handle& packed : {Handle(nullptr), integer("Int", 1), string("a"), text("a"), object("HashSet"),
                               tupleOf({integer("Int", 1)}), object("Map")}) {
    vorn_collections_Tuple_ctor(tuple, packed);
    EXPECT_RAISED(kTupleSourceError);
    EXPECT_EQ(itemsOf(tuple), Elements{"Int 7"});
  }
}

TEST_F(TupleNatives, Ctor_EmptyList_GivesSizeZeroAndNoItems) {
  for (const char* type : {"ArrayList", "LinkedList", "ImmutableList", "ArrayList<Int>"}) {
    const Handle tuple = tupleFrom(object(type));
    EXPECT_EQ(vorn_collections_Tuple_size(tuple), 0) << type;
    EXPECT_EQ(Vorn_getField_ptr(tuple, "_0"), nullptr) << type;
  }
  const Handle emptied = list("ArrayList<Int>", {integer("Int", 1)});
  vorn_collections_ArrayList_removeAt(emptied, 0);
  EXPECT_EQ(vorn_collections_Tuple_size(tupleFrom(emptied)), 0);
}

TEST_F(TupleNatives, Ctor_EmptyUnboxedList_TakesNoBlockForItsElements) {
  const Handle emptied = list("ArrayList<Int>", {integer("Int", 1)});
  vorn_collections_ArrayList_removeAt(emptied, 0);
  const Handle first = object("Tuple");
  const Handle second = object("Tuple");
  EXPECT_EQ(allocationsOf([&] { vorn_collections_Tuple_ctor(first, emptied); }),
            allocationsOf([&] { vorn_collections_Tuple_ctor(second, object("ImmutableList")); }) - 1)
      << "of which one is the list";
}

TEST_F(TupleNatives, Ctor_Handles_AreStoredAsTheyAre) {
  const Handle word = string("word");
  for (const char* type : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync", "ImmutableList"}) {
    const Handle tuple = tupleFrom(list(type, {word, nullptr, word}), "Tuple<String,Object,String>");
    EXPECT_EQ(vorn_collections_Tuple_size(tuple), 3) << type;
    EXPECT_EQ(Vorn_getField_ptr(tuple, "_0"), word.get()) << type;
    EXPECT_EQ(Vorn_getField_ptr(tuple, "_1"), nullptr) << type;
    EXPECT_EQ(Vorn_getField_ptr(tuple, "_2"), word.get()) << type;
  }
}

TEST_F(TupleNatives, Ctor_UnboxedElements_AreBoxedUnderTheirType) {
  for (const std::string& element : primitiveNames()) {
    const Handle packed = object("ArrayListSync<" + element + ">");
    for (const long long value : {1, 0}) vorn_collections_ArrayList_add(packed, box(element, value));
    ASSERT_EQ(storageOf(packed), element);
    EXPECT_EQ(itemsOf(tupleFrom(packed)), elementsOf(packed)) << element;
  }
}

TEST_F(TupleNatives, Ctor_UnboxedElements_KeepTheirWholeRange) {
  const Handle longs = object("ArrayList<Long>");
  for (const long long value : {LLONG_MIN, LLONG_MAX}) vorn_collections_ArrayList_addPrimitiveI64(longs, value, "Long");
  EXPECT_EQ(itemsOf(tupleFrom(longs)), (Elements{"Long -9223372036854775808", "Long 9223372036854775807"}));
  const Handle doubles = list("ArrayList<Double>", {floating("Double", 0x1p100), floating("Double", -0.5)});
  EXPECT_EQ(itemsOf(tupleFrom(doubles)), (Elements{"Double 1.2676506002282294e+30", "Double -0.5"}));
}

TEST_F(TupleNatives, Ctor_UnboxedElements_TheDeclaredTypeNamesTheBoxes) {
  // An untyped list that adopted Char keeps characters, but declares no type.
  const Handle untyped = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveI64(untyped, 'a', "Char");
  EXPECT_EQ(elementsOf(untyped), Elements{"Char 97"});
  EXPECT_EQ(itemsOf(tupleFrom(untyped)), Elements{"Int 97"});
  const Handle floats = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveDouble(floats, 0.5, "Float");
  EXPECT_EQ(itemsOf(tupleFrom(floats)), Elements{"Double 0.5"});
  // A raw append of what does not fit the declared type is kept under its own.
  const Handle declared = object("ArrayList<Byte>");
  vorn_collections_ArrayList_addPrimitiveI64(declared, 300, "Int");
  ASSERT_EQ(storageOf(declared), "Int");
  EXPECT_EQ(itemsOf(tupleFrom(declared)), Elements{"Byte 300"});
}

TEST_F(TupleNatives, Ctor_ManyItems_UnderTheirDecimalNames) {
  const Handle packed = object("ArrayList<Int>");
  for (int i = 0; i < 120; ++i) vorn_collections_ArrayList_addInt(packed, i);
  const Handle tuple = tupleFrom(packed);
  for (const int i : {0, 9, 10, 99, 100, 119}) {
    EXPECT_EQ(describe(Vorn_getField_ptr(tuple, ("_" + std::to_string(i)).c_str())), "Int " + std::to_string(i));
  }
  EXPECT_EQ(itemsOf(tuple), elementsOf(packed));
}

TEST_F(TupleNatives, Ctor_LocksThePackedListWhileItIsCopiedOnly) {
  for (const Handle& packed : {list("ArrayListSync<Int>", {integer("Int", 1)}), list("LinkedListSync", {nullptr})}) {
    const Handle tuple = tupleOf({integer("Int", 7)});
    {
      const HeldMutex held(packed);
      EXPECT_THROW(vorn_collections_Tuple_ctor(tuple, packed), std::system_error);
    }
    EXPECT_EQ(itemsOf(tuple), Elements{"Int 7"});
    vorn_collections_Tuple_ctor(tuple, packed);
    EXPECT_FALSE(isRecordLocked(*getListData(packed)));
  }
}

TEST_F(TupleNatives, Ctor_WithoutMemory_TheSizeStays) {
  const Handle numbers = object("ArrayListSync<Int>");
  const Handle words = object("ArrayListSync");
  for (int i = 0; i < 12; ++i) {
    vorn_collections_ArrayList_addInt(numbers, i);
    vorn_collections_ArrayList_add(words, string("word"));
  }
  for (const Handle& packed : {numbers, words}) {
    const Handle tuple = object("Tuple");
    const int failures = sweepAllocationFailures([&] { vorn_collections_Tuple_ctor(tuple, packed); },
                                                 [&] {
                                                   EXPECT_EQ(vorn_collections_Tuple_size(tuple), 0);
                                                   EXPECT_FALSE(isRecordLocked(*getListData(packed)));
                                                 });
    EXPECT_GE(failures, 1);
    EXPECT_EQ(itemsOf(tuple), elementsOf(packed));
  }
}

TEST_F(TupleNatives, Size_IsTheField) {
  EXPECT_EQ(vorn_collections_Tuple_size(nullptr), 0);
  EXPECT_EQ(vorn_collections_Tuple_size(object("Tuple<Int,Int>")), 0);
  EXPECT_EQ(vorn_collections_Tuple_size(tupleOf({nullptr, nullptr})), 2);
}

TEST_F(TupleNatives, OperatorIndex_NegativeCountsFromTheEnd) {
  const Handle tuple = tupleOf({integer("Int", 1), string("b"), nullptr});
  EXPECT_EQ(describe(vorn_collections_Tuple_operator_index(tuple, 0)), "Int 1");
  EXPECT_EQ(describe(vorn_collections_Tuple_operator_index(tuple, 1)), "String b");
  EXPECT_EQ(vorn_collections_Tuple_operator_index(tuple, 2), nullptr);
  EXPECT_EQ(vorn_collections_Tuple_operator_index(tuple, -1), nullptr);
  EXPECT_EQ(describe(vorn_collections_Tuple_operator_index(tuple, -3)), "Int 1");
}

TEST_F(TupleNatives, OperatorIndex_OutsideTheSizeRaises) {
  const Handle tuple = tupleOf({integer("Int", 1), integer("Int", 2)});
  for (const long long index : {2LL, -3LL, 100LL, LLONG_MAX, LLONG_MIN}) {
    EXPECT_EQ(vorn_collections_Tuple_operator_index(tuple, index), nullptr);
    EXPECT_RAISED(kIndexError);
  }
  EXPECT_EQ(vorn_collections_Tuple_operator_index(object("Tuple"), 0), nullptr);
  EXPECT_RAISED(kIndexError);
  EXPECT_EQ(vorn_collections_Tuple_operator_index(nullptr, 0), nullptr);
}

TEST_F(TupleNatives, OperatorIndex_LooksAtTheSizeAlone) {
  const Handle tuple = tupleOf({integer("Int", 1), integer("Int", 2)});
  vorn_field_set_integer(tuple, "size", 1);
  EXPECT_EQ(vorn_collections_Tuple_operator_index(tuple, 1), nullptr);
  EXPECT_RAISED(kIndexError);
  EXPECT_EQ(describe(vorn_collections_Tuple_operator_index(tuple, -1)), "Int 1");
  vorn_field_set_integer(tuple, "size", 1000);
  EXPECT_EQ(vorn_collections_Tuple_operator_index(tuple, 999), nullptr);
  vorn_field_set_integer(tuple, "size", -5);
  EXPECT_EQ(vorn_collections_Tuple_operator_index(tuple, LLONG_MIN), nullptr);
  EXPECT_RAISED(kIndexError);
}

TEST_F(TupleNatives, OperatorIndexEq_AlwaysRaises) {
  const Handle tuple = tupleOf({integer("Int", 1)});
  for (void* receiver : {tuple.get(), static_cast<void*>(nullptr)}) {
    for (const long long index : {0LL, 5LL}) {
      vorn_collections_Tuple_operator_index_eq(receiver, index, string("x"));
      EXPECT_RAISED(kTupleReadOnlyError);
    }
  }
  EXPECT_EQ(itemsOf(tuple), Elements{"Int 1"});
}

}  // namespace
}  // namespace vorn::tests
