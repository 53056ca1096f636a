// What reading other collections costs, and what it gives when they change meanwhile.
#include <vorn/collections/hash_set.h>

#include "tests/array/array_cases.h"
#include "tests/array/runtime_hooks.h"
#include "tests/support/heap_statistics.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class ArraySourceCosts : public RuntimeTest {};

TEST_F(ArraySourceCosts, LinkedLists_AreWalkedOnce) {
  const long long count = onStressHeap() ? 60 : 500;
  const Handle source = intList("LinkedListSync", Integers(static_cast<std::size_t>(count), 7));
  const Handle array = newArray("Array<Int>", count);
  const std::uint64_t before = linkedSteps;
  vorn_collections_Array_copyCtor(array, source);
  arraySliceAssign(array, kOmitted, kOmitted, -1, source);
  const Handle both = vorn_collections_Array_concat(array, source);
  EXPECT_EQ(linkedSteps - before, 0U);
  EXPECT_EQ(integersOf(both), Integers(static_cast<std::size_t>(2 * count), 7));
}

TEST_F(ArraySourceCosts, StepsAreCounted) {
  const Handle source = intList("LinkedList", Integers(10, 7));
  const std::uint64_t before = linkedSteps;
  vorn_collections_ArrayList_getInt(source, 3);
  EXPECT_EQ(linkedSteps - before, 3U);
}

TEST_F(ArraySourceCosts, UnboxedElements_MakeNoBox) {
  const Handle wide = newArray("Array<Long>", 200);
  for (const Handle& source :
       {intList("ArrayListSync<Int>", Integers(200, 7)), intArray("Array<Int>", Integers(200, 7)),
        intArray("ArraySync<Byte>", Integers(200, 7)), unboxedImmutable("Short", std::vector<std::int64_t>(200, 7))}) {
    EXPECT_EQ(allocationsOf([&] { arraySliceAssign(wide, kOmitted, kOmitted, 1, source); }), 0U);
    EXPECT_EQ(allocationsOf([&] { vorn_collections_Array_concat(wide, source); }), 2U) << "the object and its block";
    EXPECT_EQ(integersOf(wide), Integers(200, 7));
  }
  const Handle copy = newArray("Array<Double>", 200);
  const Handle ints = intList("ArrayList<Int>", Integers(200, 7));
  EXPECT_EQ(allocationsOf([&] { vorn_collections_Array_copyCtor(copy, ints); }), 0U);
  EXPECT_EQ(doublesOf(copy), Doubles(200, 7.0));
}

// ---- Sources that change --------------------------------------------------------------------------------------------

// Runs work() and, when the mutex is unlocked for the first time, change().
void changingAfterUnlock(const pthread_mutex_t* mutex, const std::function<void()>& change,
                         const std::function<void()>& work) {
  bool changed = false;
  std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* unlocked) {
    if (changed || unlocked != mutex) return;
    changed = true;
    change();
  };
  afterUnlock = &hook;
  work();
  afterUnlock = nullptr;
  EXPECT_TRUE(changed);
}

TEST_F(ArraySourceCosts, ListThatShrinksMeanwhile_IsTakenAsItWas) {
  for (const char* type : {"ArrayListSync", "LinkedListSync", "ArrayListSync<Int>"}) {
    const Handle array = newArray("Array<Int>", 3);
    const auto whileCleared = [&](const std::function<void(void*)>& work) {
      const Handle source = intList(type, {4, 5, 6});
      changingAfterUnlock(
          getListData(source)->mutex, [&] { vorn_collections_ArrayList_clear(source); }, [&] { work(source); });
      EXPECT_NOTHING_RAISED();
    };
    whileCleared([&](void* source) { arraySliceAssign(array, kOmitted, kOmitted, 1, source); });
    EXPECT_EQ(integersOf(array), (Integers{4, 5, 6})) << type;
    Handle result;
    whileCleared([&](void* source) { result = vorn_collections_Array_concat(array, source); });
    EXPECT_EQ(integersOf(result), (Integers{4, 5, 6, 4, 5, 6})) << type;
    vorn_collections_Array_ctor(array, 1);
    whileCleared([&](void* source) { vorn_collections_Array_copyCtor(array, source); });
    EXPECT_EQ(integersOf(array), (Integers{4, 5, 6})) << type;
  }
}

// The size is read under one lock and the slots are copied under another.
TEST_F(ArraySourceCosts, ArrayThatChangesBetweenTheLocksOfACopy_GivesItsSlotsAndTheSizeBefore) {
  const Handle source = intArray("ArraySync<Int>", {4, 5, 6});
  const Handle target = newArray("Array<Int>", 1);
  changingAfterUnlock(
      recordOf(source).mutex, [&] { resizeArrayStorage(recordOf(source), 2); },
      [&] { vorn_collections_Array_copyCtor(target, source); });
  EXPECT_EQ(integersOf(target), (Integers{0, 0}));
  EXPECT_EQ(sizeField(target), 3);
  EXPECT_ARRAY_AT_REST(source);
  EXPECT_ARRAY_AT_REST(target);
}

// ---- No objects -----------------------------------------------------------------------------------------------------

TEST_F(ArraySourceCosts, WithoutAResultObject_NativesGiveNull) {
  const Handle array = intArray("ArraySync<Int>", {3, 1, 2});
  const Handle tuple = tupleOf({integer("Int", 1)});
  const Handle misfit = tupleOf({nullptr});
  const ArrayState before(array);
  noObjects = true;
  EXPECT_EQ(vorn_collections_Array_sortNew(array), nullptr);
  EXPECT_EQ(vorn_collections_Array_reverseNew(array), nullptr);
  EXPECT_EQ(arraySlice(array, 0, 2).get(), nullptr);
  EXPECT_EQ(vorn_collections_Array_concat(array, tuple), nullptr);
  EXPECT_EQ(vorn_collections_Array_concat(array, misfit), nullptr);
  noObjects = false;
  EXPECT_NOTHING_RAISED();
  EXPECT_ARRAY_UNTOUCHED(array, before);
}

}  // namespace
}  // namespace vorn::tests
