// How many allocations natives make, each of which may fail, and what an array keeps alive.
#include "tests/array/array_cases.h"
#include "tests/support/heap_statistics.h"
#include "tests/support/sequences.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

class ArrayAllocation : public RuntimeTest {};
// How many allocations the natives make: each fails as std::bad_alloc or as a null result.
TEST_F(ArrayAllocation, Failures_AreCounted) {
  const auto sweep = [](const Handle& array, auto operation) {
    const ArrayState before(array);
    return sweepAllocationFailures(operation, [&] { EXPECT_ARRAY_UNTOUCHED(array, before); });
  };
  const Handle ints = intArray("ArraySync<Int>", Integers(40, 7));
  EXPECT_EQ(sweep(ints, [&] { vorn_collections_Array_sort(ints); }), 0);
  EXPECT_EQ(sweep(ints, [&] { vorn_collections_Array_reverse(ints); }), 0);
  EXPECT_EQ(sweep(ints, [&] { vorn_collections_Array_setInt(ints, 0, 7); }), 0);
  EXPECT_EQ(sweep(ints, [&] { return vorn_collections_Array_operator_index(ints, 0); }), 1);
  EXPECT_EQ(sweep(ints, [&] { return vorn_collections_Array_sortNew(ints); }), 2) << "the object and its block";
  EXPECT_EQ(sweep(ints, [&] { return vorn_collections_Array_reverseNew(ints); }), 2);
  EXPECT_EQ(sweep(ints, [&] { return static_cast<void*>(arraySlice(ints, kOmitted, kOmitted)); }), 2);
  EXPECT_EQ(sweep(ints, [&] { return static_cast<void*>(arraySlice(ints, 0, 5)); }), 1) << "five slots need no block";
  const Handle tuple = tupleOf({integer("Int", 1)});
  const Handle seven = tupleOf({integer("Int", 7)});
  EXPECT_EQ(sweep(ints, [&] { return vorn_collections_Array_concat(ints, tuple); }), 3);
  EXPECT_EQ(sweep(ints, [&] { arraySliceAssign(ints, 0, 1, 1, seven); }), 1) << "the gathered values";
  const Handle objects = newArray("Array", 1);
  EXPECT_EQ(sweepAllocationFailures([&] { vorn_collections_Array_setInt(objects, 0, 7); },
                                    [&] { EXPECT_EQ(itemsOf(objects), Elements{"null"}); }),
            1);
}

TEST_F(ArrayAllocation, Ctor_FailureLeavesTheOldElements) {
  for (const bool synchronised : {false, true}) {
    for (const SlotCase& slots : kSlotCases) {
      const Handle array = sampleArray(slots.element, synchronised, 3);
      const ArrayState before(array);
      EXPECT_EQ(sweepAllocationFailures([&] { vorn_collections_Array_ctor(array, 500); },
                                        [&] { EXPECT_ARRAY_UNTOUCHED(array, before); }),
                1);
      EXPECT_EQ(vorn_collections_Array_size(array), 500);
    }
  }
}

TEST_F(ArrayAllocation, CopyCtor_FailureLeavesTheTargetAndItsSizeField) {
  for (const bool synchronised : {false, true}) {
    for (const SlotCase& slots : kSlotCases) {
      const Handle source = sampleArray(slots.element, synchronised, 200);
      const Handle target = sampleArray("Int", synchronised, 3);
      const ArrayState before(target);
      EXPECT_EQ(sweepAllocationFailures([&] { vorn_collections_Array_copyCtor(target, source); },
                                        [&] { EXPECT_ARRAY_UNTOUCHED(target, before); }),
                1);
      EXPECT_EQ(sizeField(target), 200);
      EXPECT_EQ(itemsOf(target), itemsOf(source));
    }
  }
}

TEST_F(ArrayAllocation, CopyCtorOfAList_FailureLeavesTheArrayAsItWas) {
  const Handle source = intList("ArrayListSync<Int>", Integers(50, 3));
  const Handle ints = sampleArray("Int", true, 3);
  const Handle objects = sampleArray("Object", true, 3);
  for (const Handle& target : {ints, objects}) {
    const ArrayState before(target);
    const int failures = sweepAllocationFailures([&] { vorn_collections_Array_copyCtor(target, source); },
                                                 [&] { EXPECT_ARRAY_UNTOUCHED(target, before); });
    EXPECT_EQ(failures, target == ints ? 1 : 52) << "the block of slots, and for handles the boxes and their vector";
    EXPECT_EQ(integersOf(target), Integers(50, 3));
  }
}

TEST_F(ArrayAllocation, SliceAssignOfBoxes_FailureChangesNoSlot) {
  const Handle source = intList("ArrayList<Int>", {7, 8});
  const Handle target = sampleArray("Object", true, 3);
  const ArrayState before(target);
  EXPECT_EQ(sweepAllocationFailures([&] { arraySliceAssign(target, 0, 2, 1, source); },
                                    [&] { EXPECT_ARRAY_UNTOUCHED(target, before); }),
            3);
  EXPECT_EQ(itemsOf(target), (Elements{"Int 7", "Int 8", "String s3"}));
}

TEST_F(ArrayAllocation, SortOfHandles_FailureLeavesTheOrder) {
  const Handle array = newArray("ArraySync", 20);
  for (long long i = 0; i < 20; ++i) vorn_collections_Array_operator_index_eq(array, i, ranked((i * 7) % 20));
  const ArrayState before(array);
  EXPECT_GE(sweepAllocationFailures([&] { vorn_collections_Array_sort(array); },
                                    [&] { EXPECT_ARRAY_UNTOUCHED(array, before); }),
            1);
}

// ---- Liveness -------------------------------------------------------------------------------------------------------

constexpr std::uint64_t kBig = 100000;

Handle bigText() { return string(std::string(kBig, 'x')); }

class ArrayLiveness : public RuntimeTest {
 protected:
  void SetUp() override {
    if (!onStressHeap()) GTEST_SKIP() << "only the stress heap frees at once what no root reaches";
  }
};

TEST_F(ArrayLiveness, Handles_AreKeptUntilTheyAreReplaced) {
  for (const long long size : {3, 50}) {
    for (const bool synchronised : {false, true}) {
      const Handle array = newArray(arrayType("String", synchronised), size);
      const std::uint64_t before = liveBytes();
      vorn_collections_Array_operator_index_eq(array, size - 1, bigText());
      EXPECT_GE(liveBytes(), before + kBig);
      vorn_collections_Array_operator_index_eq(array, size - 1, nullptr);
      EXPECT_LT(liveBytes(), before + kBig);
      vorn_collections_Array_operator_index_eq(array, size - 1, bigText());
      vorn_collections_Array_ctor(array, size);
      EXPECT_LT(liveBytes(), before + kBig);
      vorn_collections_Array_operator_index_eq(array, size - 1, bigText());
      vorn_collections_Array_copyCtor(array, newArray("Array<Int>", 1));
      EXPECT_LT(liveBytes(), before + kBig);
    }
  }
}

TEST_F(ArrayLiveness, Results_KeepTheirHandlesWithoutTheReceiver) {
  for (int native = 0; native < 5; ++native) {
    SCOPED_TRACE(native);
    Handle result;
    {
      const Handle array = arrayOf("Array", {bigText(), bigText(), bigText(), bigText(), bigText(), bigText()});
      if (native == 0) result = vorn_collections_Array_sortNew(array);
      if (native == 1) result = vorn_collections_Array_reverseNew(array);
      if (native == 2) result = arraySlice(array, kOmitted, kOmitted);
      if (native == 3) result = vorn_collections_Array_concat(array, tupleOf({}));
      if (native == 4) {
        result = object("Array");
        vorn_collections_Array_copyCtor(result, array);
      }
    }
    EXPECT_GE(liveBytes(), 6 * kBig);
    EXPECT_EQ(itemsOf(result), Elements(6, "String " + std::string(kBig, 'x')));
  }
}

}  // namespace
}  // namespace vorn::tests
