// Construction, reading and searching of immutable lists.
#include <cerrno>
#include <cmath>
#include <system_error>

#include "collections/core/port/comparison.h"
#include "tests/immutable/sequence_cases.h"

namespace vorn::tests {
namespace {

using ImmutableList = RuntimeTest;

// ---- Construction ---------------------------------------------------------------------------------------------------

TEST_F(ImmutableList, Ctor_Null_DoesNothing) {
  vorn_collections_ImmutableList_ctor(nullptr, nullptr);
  vorn_collections_ImmutableList_ctor(nullptr, integer("Int", 1));
}

TEST_F(ImmutableList, Ctor_NullSource_LeavesTheListEmpty) {
  const Handle list = immutableFrom(nullptr);
  EXPECT_EQ(vorn_collections_ImmutableList_size(list), 0);
  EXPECT_EQ(storageOf(list), "objects");
  EXPECT_VALID_LIST(list);
}

TEST_F(ImmutableList, Ctor_UnboxedSource_KeepsKindNameAndValues) {
  for (const std::string& element : primitiveNames()) {
    const Handle source = object("ArrayList<" + element + ">");
    for (const long long value : {1, 0, 1}) vorn_collections_ArrayList_add(source, box(element, value));
    const Handle list = immutableFrom(source);
    EXPECT_EQ(storageOf(list), element);
    EXPECT_EQ(kindOf(list), kindOf(source)) << element;
    EXPECT_EQ(declaredTypeOf(list), element);
    EXPECT_EQ(elementsOf(list), elementsOf(source));
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(ImmutableList, Ctor_UntypedUnboxedSource_DeclaresTheNameOfItsElements) {
  const Handle source = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveI64(source, 'a', "Char");
  const Handle list = immutableFrom(source);
  EXPECT_EQ(storageOf(list), "Char");
  EXPECT_EQ(declaredTypeOf(list), "Char");
}

TEST_F(ImmutableList, Ctor_LargeUnboxedSource_IsCopiedWhole) {
  const Handle source = object("ArrayListSync<Int>");
  for (int i = 0; i < 1000; ++i) vorn_collections_ArrayList_addInt(source, i);
  const Handle list = immutableFrom(source);
  vorn_collections_ArrayList_clear(source);
  ASSERT_EQ(vorn_collections_ImmutableList_size(list), 1000);
  for (int i = 0; i < 1000; i += 37) EXPECT_EQ(vorn_collections_ArrayList_getInt(list, i), i);
  EXPECT_VALID_LIST(list);
}

TEST_F(ImmutableList, Ctor_BoxedSources_ShareTheHandles) {
  const Handle word = string("word");
  for (const char* type :
       {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync", "ImmutableList", "ArrayList<String>"}) {
    const Handle source = list(type, {word, nullptr, word});
    const Handle copy = immutableFrom(source);
    EXPECT_EQ(storageOf(copy), "objects") << type;
    EXPECT_EQ(declaredTypeOf(copy), "") << type;
    ASSERT_EQ(vorn_collections_ImmutableList_size(copy), 3) << type;
    EXPECT_EQ(vorn_collections_ImmutableList_operator_index(copy, 0), word.get()) << type;
    EXPECT_EQ(vorn_collections_ImmutableList_operator_index(copy, 1), nullptr) << type;
    EXPECT_EQ(vorn_collections_ImmutableList_operator_index(copy, 2), word.get()) << type;
    EXPECT_VALID_LIST(copy);
    vorn_collections_ArrayList_clear(source);
    EXPECT_EQ(vorn_collections_ImmutableList_size(copy), 3) << type;
  }
}

TEST_F(ImmutableList, Ctor_EmptySources_GiveAnEmptyList) {
  for (const char* type : {"ArrayList", "LinkedListSync", "ImmutableList", "ArrayList<Int>"}) {
    EXPECT_EQ(vorn_collections_ImmutableList_size(immutableFrom(object(type))), 0) << type;
  }
  const Handle emptied = list("ArrayList<Int>", {integer("Int", 1)});
  vorn_collections_ArrayList_removeAt(emptied, 0);
  const Handle copy = immutableFrom(emptied);
  EXPECT_EQ(vorn_collections_ImmutableList_size(copy), 0);
  EXPECT_EQ(storageOf(copy), "Int");
  EXPECT_VALID_LIST(copy);
}

TEST_F(ImmutableList, Ctor_NoList_RaisesAndLeavesTheListEmpty) {
  for (const Handle& source : {integer("Int", 1), string("a"), text("a"), object("HashSet"), object("Map"),
                               tupleOf({integer("Int", 1)}), object("Object")}) {
    const Handle list = unboxedImmutable("Int", {1, 2});
    vorn_collections_ImmutableList_ctor(list, source);
    EXPECT_RAISED(kImmutableSourceError);
    EXPECT_EQ(vorn_collections_ImmutableList_size(list), 0) << vorn_type_name(source);
    EXPECT_EQ(storageOf(list), "objects");
    EXPECT_EQ(declaredTypeOf(list), "");
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(ImmutableList, Ctor_ResetsWhatWasThere) {
  for (const Handle& before : {unboxedImmutable("Int", {1, 2, 3}), boxedImmutable({string("a"), string("b")}),
                               object("ImmutableList<Long>")}) {
    vorn_collections_ImmutableList_ctor(before, nullptr);
    EXPECT_EQ(vorn_collections_ImmutableList_size(before), 0);
    EXPECT_EQ(storageOf(before), "objects");
    EXPECT_EQ(declaredTypeOf(before), "");
    EXPECT_VALID_LIST(before);
  }
  const Handle again = unboxedImmutable("Int", {1, 2, 3});
  vorn_collections_ImmutableList_ctor(again, list("LinkedList", {string("a")}));
  EXPECT_EQ(elementsOf(again), Elements{"String a"});
  EXPECT_VALID_LIST(again);
  vorn_collections_ImmutableList_ctor(again, list("ArrayList<Double>", {floating("Double", 0.5)}));
  EXPECT_EQ(elementsOf(again), Elements{"Double 0.5"});
  EXPECT_EQ(storageOf(again), "Double");
  EXPECT_VALID_LIST(again);
}

TEST_F(ImmutableList, Ctor_ItselfAsTheSource_EndsEmptyAndUnlocked) {
  for (const Handle& list : {unboxedImmutable("Int", {1, 2}), boxedImmutable({string("a")})}) {
    LentMutex mutex(list);
    vorn_collections_ImmutableList_ctor(list, list);
    EXPECT_EQ(vorn_collections_ImmutableList_size(list), 0);
    EXPECT_VALID_LIST(list);
  }
}

TEST_F(ImmutableList, Ctor_LinkedReceiver_StaysWithoutUnboxedElements) {
  const Handle target = object("LinkedList");
  vorn_collections_ImmutableList_ctor(target, list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2)}));
  EXPECT_EQ(storageOf(target), "linked");
  EXPECT_EQ(elementsOf(target), (Elements{"Int 1", "Int 2"}));
  EXPECT_VALID_LIST(target);
}

TEST_F(ImmutableList, Ctor_Locks_UnboxedSourceFirstThenTheNewList) {
  const Handle source = list("ArrayListSync<Int>", {integer("Int", 1)});
  const Handle target = unboxedImmutable("Int", {7});
  {
    const HeldMutex held(source);
    EXPECT_THROW(vorn_collections_ImmutableList_ctor(target, source), std::system_error);
  }
  // It was reset before the source was locked.
  EXPECT_EQ(vorn_collections_ImmutableList_size(target), 0);
  LentMutex mutex(target);
  vorn_collections_ImmutableList_ctor(target, source);
  EXPECT_EQ(elementsOf(target), Elements{"Int 1"});
}

TEST_F(ImmutableList, Ctor_Locks_AFailingLockOfTheNewListChangesNothing) {
  const Handle target = object("ArrayListSync<Int>");
  vorn_collections_ArrayList_addInt(target, 7);
  const Handle source = list("ArrayListSync<Int>", {integer("Int", 1)});
  {
    const HeldMutex held(target);
    EXPECT_THROW(vorn_collections_ImmutableList_ctor(target, source), std::system_error);
  }
  EXPECT_EQ(elementsOf(target), Elements{"Int 7"});
}

TEST_F(ImmutableList, Ctor_WithoutMemory_LeavesAnEmptyList) {
  const Handle large = object("ArrayListSync<Int>");
  for (int i = 0; i < 100; ++i) vorn_collections_ArrayList_addInt(large, i);
  const Handle words = object("ArrayListSync");
  for (int i = 0; i < 20; ++i) vorn_collections_ArrayList_add(words, string("word"));
  for (const Handle& source : {large, words}) {
    const Elements elements = elementsOf(source);
    const Handle target = object("ImmutableList");
    const int failures = sweepAllocationFailures([&] { vorn_collections_ImmutableList_ctor(target, source); },
                                                 [&] {
                                                   EXPECT_EQ(vorn_collections_ImmutableList_size(target), 0);
                                                   EXPECT_EQ(storageOf(target), "objects");
                                                   EXPECT_EQ(declaredTypeOf(target), "");
                                                   EXPECT_VALID_LIST(target);
                                                   EXPECT_EQ(elementsOf(source), elements);
                                                 });
    EXPECT_GE(failures, 1);
    EXPECT_EQ(elementsOf(target), elements);
  }
}

// ---- Reading --------------------------------------------------------------------------------------------------------

TEST_F(ImmutableList, Size_OfEveryStorage) {
  EXPECT_EQ(vorn_collections_ImmutableList_size(nullptr), 0);
  EXPECT_EQ(vorn_collections_ImmutableList_size(unboxedImmutable("Byte", {1, 2, 3})), 3);
  EXPECT_EQ(vorn_collections_ImmutableList_size(boxedImmutable({nullptr, nullptr})), 2);
  EXPECT_EQ(vorn_collections_ImmutableList_size(list("LinkedList", {nullptr})), 1);
}

TEST_F(ImmutableList, OperatorIndex_ChecksTheIndexAndBoxesAnew) {
  const Handle list = unboxedImmutable("Long", {10, 20});
  EXPECT_EQ(describe(vorn_collections_ImmutableList_operator_index(list, 0)), "Long 10");
  EXPECT_EQ(describe(vorn_collections_ImmutableList_operator_index(list, -1)), "Long 20");
  const Handle one = vorn_collections_ImmutableList_operator_index(list, 0);
  EXPECT_NE(vorn_collections_ImmutableList_operator_index(list, 0), one.get());
  for (const long long index : {2LL, -3LL, LLONG_MAX, LLONG_MIN}) {
    EXPECT_EQ(vorn_collections_ImmutableList_operator_index(list, index), nullptr);
    EXPECT_RAISED(kIndexError);
  }
  EXPECT_EQ(vorn_collections_ImmutableList_operator_index(nullptr, 0), nullptr);
}

TEST_F(ImmutableList, OperatorIndexEq_AlwaysRaises) {
  const Handle list = unboxedImmutable("Int", {1});
  const LentMutex mutex(list);
  for (void* receiver : {list.get(), static_cast<void*>(nullptr)}) {
    for (const long long index : {0LL, 5LL, -1LL}) {
      vorn_collections_ImmutableList_operator_index_eq(receiver, index, nullptr);
      EXPECT_RAISED(kImmutableReadOnlyError);
    }
  }
  EXPECT_EQ(elementsOf(list), Elements{"Int 1"});
}

TEST_F(ImmutableList, Locks_OfTheReadersAreTakenAndReleased) {
  const Handle list = boxedImmutable({string("a")});
  const Handle value = string("a");
  {
    LentMutex mutex(list);
    EXPECT_EQ(vorn_collections_ImmutableList_size(list), 1);
    EXPECT_EQ(vorn_collections_ImmutableList_indexOf(list, value, 0), 0);
    EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(list, value, -1), 0);
    EXPECT_NE(vorn_collections_ImmutableList_operator_index(list, 0), nullptr);
    Handle(vorn_collections_ImmutableList_sortNew(list));
    EXPECT_FALSE(mutex.isHeld());
  }
  const Handle synchronised = tests::list("ArrayListSync", {string("a")});
  const HeldMutex held(synchronised);
  EXPECT_THROW(vorn_collections_ImmutableList_size(synchronised), std::system_error);
  EXPECT_THROW(vorn_collections_ImmutableList_indexOf(synchronised, value, 0), std::system_error);
  EXPECT_THROW(vorn_collections_ImmutableList_lastIndexOf(synchronised, value, 0), std::system_error);
  EXPECT_THROW(vorn_collections_ImmutableList_operator_index(synchronised, 0), std::system_error);
  EXPECT_THROW(vorn_collections_ImmutableList_sortNew(synchronised), std::system_error);
}

// ---- Searching ------------------------------------------------------------------------------------------------------

TEST_F(ImmutableList, Searches_FindTheFirstAndTheLast) {
  const Handle unboxed = unboxedImmutable("Int", {5, 7, 5, 7});
  const Handle boxed = boxedImmutable({string("a"), string("b"), text("a"), nullptr});
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(unboxed, integer("Int", 7), 0), 1);
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(unboxed, integer("Int", 7), 2), 3);
  EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(unboxed, integer("Int", 5), -1), 2);
  EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(unboxed, integer("Int", 5), 1), 0);
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(unboxed, integer("Int", 9), 0), -1);
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(boxed, string("a"), 0), 0);
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(boxed, string("a"), 1), 2);
  EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(boxed, string("a"), -1), 2);
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(boxed, nullptr, 0), 3);
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(boxed, string("a"), 4), -1);
}

TEST_F(ImmutableList, Searches_OfNullAreMinusOne) {
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(nullptr, nullptr, 0), -1);
  EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(nullptr, nullptr, 0), -1);
}

TEST_F(ImmutableList, Searches_ForAValueOfAnotherTypeKeepTheStorage) {
  const Handle list = unboxedImmutable("Int", {5});
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(list, integer("Long", 5), 0), -1);
  EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(list, string("5"), 0), -1);
  EXPECT_EQ(storageOf(list), "Int");
}

TEST_F(ImmutableList, Equality_ByContentWithinTheFamily) {
  EXPECT_NE(Vorn_deepEquals(unboxedImmutable("Int", {1, 2}), boxedImmutable({integer("Int", 1), integer("Long", 2)})),
            0);
  EXPECT_EQ(Vorn_deepEquals(unboxedImmutable("Int", {1}), list("ArrayList", {integer("Int", 1)})), 0);
}

// ---- Sorting --------------------------------------------------------------------------------------------------------

TEST_F(ImmutableList, SortNew_Null_IsNull) { EXPECT_EQ(vorn_collections_ImmutableList_sortNew(nullptr), nullptr); }

TEST_F(ImmutableList, SortNew_UnboxedElements_StayUnboxed) {
  const Handle list = unboxedImmutable("Short", {3, -1, 2, -1});
  const Handle sorted = vorn_collections_ImmutableList_sortNew(list);
  EXPECT_EQ(elementsOf(sorted), (Elements{"Short -1", "Short -1", "Short 2", "Short 3"}));
  EXPECT_EQ(storageOf(sorted), "Short");
  EXPECT_EQ(declaredTypeOf(sorted), "Short");
  EXPECT_EQ(elementsOf(list), (Elements{"Short 3", "Short -1", "Short 2", "Short -1"}));
  EXPECT_NE(sorted.get(), list.get());
  EXPECT_VALID_LIST(sorted);
  const Handle doubles =
      vorn_collections_ImmutableList_sortNew(unboxedFloatingImmutable("Double", {1.5, std::nan(""), -2.5}));
  EXPECT_EQ(vorn_collections_ArrayList_getDouble(doubles, 0), -2.5);
  EXPECT_TRUE(std::isnan(vorn_collections_ArrayList_getDouble(doubles, 2)));
}

TEST_F(ImmutableList, SortNew_Handles_ByTheElementOrder) {
  const Handle list = boxedImmutable({integer("Int", 2), floating("Double", 0.5), integer("Long", 1)});
  const Handle sorted = vorn_collections_ImmutableList_sortNew(list);
  EXPECT_EQ(elementsOf(sorted), (Elements{"Double 0.5", "Long 1", "Int 2"}));
  EXPECT_EQ(vorn_collections_ImmutableList_operator_index(sorted, 2),
            vorn_collections_ImmutableList_operator_index(list, 0));
  EXPECT_EQ(elementsOf(list), (Elements{"Int 2", "Double 0.5", "Long 1"}));
  EXPECT_VALID_LIST(sorted);
  const int count = onStressHeap() ? 60 : 500;
  const Handle source = object("ArrayList");
  for (int i = 0; i < count; ++i)
    vorn_collections_ArrayList_add(source, string(std::to_string(1000 + i * 7919 % count)));
  const Handle words = vorn_collections_ImmutableList_sortNew(immutableFrom(source));
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(describe(vorn_collections_ImmutableList_operator_index(words, i)), "String " + std::to_string(1000 + i));
  }
}

TEST_F(ImmutableList, SortNew_KeepsTheClass) {
  for (const char* type : {"ImmutableList", "ImmutableList<Int>", "ImmutableList<app.Unknown>"}) {
    const Handle sorted = vorn_collections_ImmutableList_sortNew(list(type));
    EXPECT_STREQ(vorn_type_name(sorted), vorn_type_name(object(type)));
    EXPECT_EQ(vorn_collections_ImmutableList_size(sorted), 0);
  }
  const Handle typed = vorn_collections_ImmutableList_sortNew(list("ImmutableList<Int>", {integer("Int", 1)}));
  EXPECT_EQ(declaredTypeOf(typed), "Int");
}

TEST_F(ImmutableList, SortNew_WithoutMemory_LeavesTheSourceAlone) {
  const Handle large = object("ArrayList<Int>");
  for (int i = 100; i > 0; --i) vorn_collections_ArrayList_addInt(large, i);
  const Handle words = object("ArrayList");
  for (int i = 20; i > 0; --i) vorn_collections_ArrayList_add(words, string(std::to_string(i)));
  for (const Handle& source : {large, words}) {
    const Handle list = immutableFrom(source);
    const Elements elements = elementsOf(list);
    LentMutex mutex(list);
    const int failures = sweepAllocationFailures([&] { Handle(vorn_collections_ImmutableList_sortNew(list)); },
                                                 [&] {
                                                   EXPECT_EQ(elementsOf(list), elements);
                                                   EXPECT_FALSE(mutex.isHeld());
                                                 });
    EXPECT_GE(failures, 2);
  }
}

}  // namespace
}  // namespace vorn::tests
