// Which natives lock, what a failing or missing mutex does, and that every lock is released.
#include <vorn/collections/runtime_helpers.hpp>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "collections/array/array_validation.h"
#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArrayLocks : public RuntimeTest {};
class ArrayNativeLocks : public RuntimeTest, public ::testing::WithParamInterface<ArrayNative> {};

Handle otherCollection() { return list("ArrayList", {integer("Int", 1)}); }
Handle otherArray() { return intArray("Array<Int>", {1}); }

// The collection that a native takes besides the array: an array for copies, since a list would not be locked together
// with its target.
Handle partnerFor(const ArrayNative& native) {
  const std::string name = native.name;
  return name == "copyCtor_AsSource" || name.ends_with("AsSource") || name.ends_with("AsOther") ? otherArray()
                                                                                                : otherCollection();
}

TEST_P(ArrayNativeLocks, FailingMutex_IsASystemErrorAndLeavesTheArrayUnchanged) {
  if (!GetParam().locks) return;  // see LockFreeAccessors_NeverLock
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle array = sampleArray(slots.element, true, 3);
    const Handle value = sample(slots.element, 1);
    const Handle other = partnerFor(GetParam());
    const ArrayState before(array);
    {
      const HeldArrayMutex held(recordOf(array));
      try {
        GetParam().call(array, value, other);
        ADD_FAILURE() << "did not lock";
      } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EDEADLK);
      }
      EXPECT_TRUE(ArrayState(array) == before);
    }
    EXPECT_NOTHING_RAISED();
    EXPECT_ARRAY_UNTOUCHED(array, before);
    GetParam().call(array, value, other);  // and it works again
    takeErrors();
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_P(ArrayNativeLocks, SynchronisedArrayWithoutAMutex_EndsTheProcess) {
  if (!GetParam().locks) return;
  const Handle array = sampleArray("Int", true, 3);
  const Handle value = sample("Int", 1);
  const Handle other = partnerFor(GetParam());
  EXPECT_EXIT(
      {
        recordOf(array).mutex = nullptr;
        GetParam().call(array, value, other);
      },
      ::testing::KilledBySignal(SIGABRT), "");
}

TEST_P(ArrayNativeLocks, UnsynchronisedArray_NeverTouchesItsMutex) {
  for (const SlotCase& slots : kSlotCases) {
    const Handle array = sampleArray(slots.element, false, 3);
    const Handle other = partnerFor(GetParam());
    const HeldArrayMutex held(recordOf(array));
    EXPECT_NO_THROW(GetParam().call(array, sample(slots.element, 1), other));
    takeErrors();  // an element type may refuse a value
    EXPECT_EQ(collections::validateArrayData(recordOf(array)), "");
  }
}

TEST_P(ArrayNativeLocks, SynchronisedArrays_AreUnlockedAfterwards) {
  for (const SlotCase& slots : kSlotCases) {
    SCOPED_TRACE(slots.element);
    const Handle array = sampleArray(slots.element, true, 3);
    const Handle value = sample(slots.element, 1);
    const Handle other = intArray("ArraySync<Int>", {1});
    GetParam().call(array, value, other);
    EXPECT_ARRAY_AT_REST(array);
    EXPECT_ARRAY_AT_REST(other);
    GetParam().call(array, value, array);  // with itself
    EXPECT_ARRAY_AT_REST(array);
    vorn_collections_Array_ctor(array, 0);
    GetParam().call(array, value, other);
    takeErrors();  // there is no element
    EXPECT_ARRAY_AT_REST(array);
    EXPECT_ARRAY_AT_REST(other);
  }
}

TEST_P(ArrayNativeLocks, NullArray_NeedsNoLock) {
  const std::string name = GetParam().name;
  if (name == "copyCtor_AsSource" || name == "sliceAssign_AsSource") return;  // there a null source raises
  GetParam().call(nullptr, nullptr, Handle(otherArray()));
  EXPECT_NOTHING_RAISED();
}

INSTANTIATE_TEST_SUITE_P(Natives, ArrayNativeLocks, ::testing::ValuesIn(arrayNatives()),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_F(ArrayLocks, LockFreeAccessors_NeverLock) {
  const Handle longs = newArray("ArraySync<Long>", 2);
  const Handle doubles = newArray("ArraySync<Double>", 2);
  for (const Handle& array : {longs, doubles}) {
    pthread_mutex_t* const mutex = recordOf(array).mutex;
    recordOf(array).mutex = nullptr;  // a lock would end the process
    EXPECT_EQ(vorn_collections_Array_rawSize(array), 0);
    EXPECT_EQ(vorn_collections_Array_rawDataPtr(array), nullptr);
    EXPECT_EQ(vorn_collections_Array_i64DataPtr(array) != nullptr, array.get() == longs.get());
    EXPECT_EQ(vorn_collections_Array_f64DataPtr(array) != nullptr, array.get() == doubles.get());
    recordOf(array).mutex = mutex;
    EXPECT_ARRAY_AT_REST(array);
  }
}

TEST_F(ArrayLocks, ByteConversions_Lock) {
  std::vector<unsigned char> bytes = {7};
  std::string error = "untouched";
  for (const char* element : {"Byte", "Int"}) {
    const Handle array = newArray(arrayType(element, true), 2);
    {
      const HeldArrayMutex held(recordOf(array));
      EXPECT_THROW(Vorn_readByteArrayData(array, bytes, error), std::system_error);
      EXPECT_THROW(Vorn_writeByteArrayData(array, bytes.data(), 1, error), std::system_error);
    }
    Vorn_readByteArrayData(array, bytes, error);
    EXPECT_ARRAY_AT_REST(array);
    Vorn_writeByteArrayData(array, bytes.data(), 99, error);
    EXPECT_ARRAY_AT_REST(array);
  }
  const Handle array = newArray("ArraySync<Byte>", 1);
  EXPECT_EXIT(
      {
        recordOf(array).mutex = nullptr;
        Vorn_readByteArrayData(array, bytes, error);
      },
      ::testing::KilledBySignal(SIGABRT), "");
}

// The source's lock first, then the target's; nothing else is locked meanwhile.
TEST_F(ArrayLocks, CopyCtor_FailingTargetMutex_ReleasesTheSource) {
  const Handle source = intArray("ArraySync<Int>", {1, 2});
  const Handle target = intArray("ArraySync<Long>", {7});
  const ArrayState before(target);
  {
    const HeldArrayMutex held(recordOf(target));
    EXPECT_THROW(vorn_collections_Array_copyCtor(target, source), std::system_error);
    EXPECT_TRUE(isUnlockedArray(source));
  }
  EXPECT_ARRAY_UNTOUCHED(target, before);
}

TEST_F(ArrayLocks, GatheredSources_AreUnlockedWhenTheReceiverIsLocked) {
  const Handle source = intArray("ArraySync<Int>", {1, 2});
  const Handle target = intArray("ArraySync<Int>", {7, 8});
  const HeldArrayMutex held(recordOf(target));
  EXPECT_THROW(vorn_collections_Array_concat(target, source), std::system_error);
  EXPECT_TRUE(isUnlockedArray(source));
  EXPECT_THROW(arraySliceAssign(target, 0, 2, 1, source), std::system_error);
  EXPECT_TRUE(isUnlockedArray(source));
}

TEST_F(ArrayLocks, Constructors_CheckTheSizeWithoutTheLock) {
  const Handle array = newArray("ArraySync<Int>", 2);
  const HeldArrayMutex held(recordOf(array));
  vorn_collections_Array_ctor(array, -1);
  EXPECT_RAISED(kArraySizeError);
  vorn_collections_Array_slice(array, 0, 1, 0, nullptr, nullptr);
  EXPECT_RAISED(kStepError);
  arraySliceAssign(array, 0, 1, 1, nullptr);
  EXPECT_RAISED(kSourceError);
  vorn_collections_Array_concat(array, Handle(string("x")));
  EXPECT_RAISED(kArrayConcatError);
}

TEST_F(ArrayLocks, Equality_TakesNoLockOfItsOwn) {
  const Handle array = intArray("ArraySync<Int>", {1});
  const HeldArrayMutex held(recordOf(array));
  EXPECT_TRUE(vorn_collections_Array_operator_eq(array, array)) << "one object is equal to itself unread";
}

}  // namespace
}  // namespace vorn::tests
