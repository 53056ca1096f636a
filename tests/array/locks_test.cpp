// What a missing mutex does, what needs none, and what is locked together. That every native takes and releases its lock is
// in tests/nets.
#include <vorn/collections/runtime_helpers.hpp>

#include <csignal>
#include <system_error>

#include "tests/array/array_cases.h"

namespace vorn::tests {
namespace {

class ArrayLocks : public RuntimeTest {};

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
