// Synchronised arrays under several threads at once. All collected memory that the threads cause to be allocated is
// allocated under the array's lock, so that these tests hold under an exact collector as well.
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <chrono>

#include "tests/array/array_cases.h"
#include "tests/support/threads.h"
#include "tests/support/watchdog.h"

namespace vorn::tests {
namespace {

constexpr int kThreads = 4;

class ArrayThreads : public RuntimeTest {
 protected:
  static int rounds() { return onStressHeap() ? 50 : 2000; }
};

TEST_F(ArrayThreads, WritesSortsAndReversals_LoseNothing) {
  const long long size = 64;
  const Handle array = newArray("ArraySync<Int>", size);
  for (long long i = 0; i < size; ++i) vorn_collections_Array_setInt(array, i, i);
  const Handle wanted = integer("Int", 7);
  runTogether(kThreads, [&](int number) {
    for (int i = 0; i < rounds(); ++i) {
      if (number % 2 == 0) {
        vorn_collections_Array_sort(array);
      } else {
        vorn_collections_Array_reverse(array);
      }
      EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), size * (size - 1) / 2);
      EXPECT_EQ(vorn_collections_Array_count(array, wanted), 1);
      const long long element = vorn_collections_Array_getInt(array, i % size);
      EXPECT_TRUE(element >= 0 && element < size);
    }
  });
  vorn_collections_Array_sort(array);
  for (long long i = 0; i < size; ++i) EXPECT_EQ(vorn_collections_Array_getInt(array, i), i);
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArrayThreads, EachThreadsSlots_HoldItsLastValue) {
  const Handle array = newArray("ArraySync<Long>", kThreads);
  runTogether(kThreads, [&](int number) {
    for (long long i = 1; i <= rounds(); ++i) {
      const long long value = (i << 32) | number;
      vorn_collections_Array_setInt(array, number, value);
      EXPECT_EQ(vorn_collections_Array_getInt(array, number - kThreads), value);
    }
  });
  for (int number = 0; number < kThreads; ++number) {
    EXPECT_EQ(vorn_collections_Array_getInt(array, number), (static_cast<long long>(rounds()) << 32) | number);
  }
}

// Each write of bytes is seen whole or not at all.
TEST_F(ArrayThreads, ByteWrites_AreNeverSeenHalfDone) {
  const Handle array = newArray("ArraySync<Byte>", 500);
  runTogether(kThreads, [&](int number) {
    std::vector<unsigned char> bytes(500, static_cast<unsigned char>(number));
    std::string error;
    for (int i = 0; i < rounds(); ++i) {
      if (number % 2 == 0) {
        EXPECT_TRUE(Vorn_writeByteArrayData(array, bytes.data(), bytes.size(), error));
      } else {
        EXPECT_TRUE(Vorn_readByteArrayData(array, bytes, error));
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), bytes[0]), 500);
      }
    }
  });
  EXPECT_ARRAY_AT_REST(array);
}

TEST_F(ArrayThreads, Construction_IsNeverSeenHalfDone) {
  const Handle array = newArray("ArraySync<Int>", 3);
  runTogether(kThreads, [&](int number) {
    for (int i = 0; i < rounds() / 4; ++i) {
      if (number == 0) vorn_collections_Array_ctor(array, i % 2 == 0 ? 3 : 100);
      const long long size = vorn_collections_Array_size(array);
      EXPECT_TRUE(size == 3 || size == 100);
      EXPECT_EQ(vorn_collections_Array_sumI64Fast(array), 0);
      EXPECT_EQ(vorn_collections_Array_getInt(array, -1), 0);
    }
  });
  EXPECT_ARRAY_AT_REST(array);
}

// ---- Two arrays -----------------------------------------------------------------------------------------------------

// The source is locked before the target, and both are while the slots are copied.
TEST_F(ArrayThreads, CopyCtor_HoldsTheSourceWhileItWaitsForTheTarget) {
  const Handle source = intArray("ArraySync<Int>", {1, 2});
  const Handle target = intArray("ArraySync<Int>", {7});
  const Watchdog watchdog;
  pthread_mutex_lock(recordOf(target).mutex);
  Beside copying([&] { vorn_collections_Array_copyCtor(target, source); });
  while (isUnlockedArray(source)) std::this_thread::yield();  // the size is read under the lock as well, but briefly
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(isUnlockedArray(source));
  EXPECT_EQ(arrayLogicalSize(recordOf(target)), 1U);
  pthread_mutex_unlock(recordOf(target).mutex);
  copying.join();
  EXPECT_EQ(integersOf(target), (Integers{1, 2}));
  EXPECT_ARRAY_AT_REST(source);
  EXPECT_ARRAY_AT_REST(target);
}

// Both threads run operation(mine, theirs) with the arrays swapped. Short arrays: what counts is how often they meet.
template <class Operation>
void crossOver(Operation operation) {
  if (onStressHeap()) GTEST_SKIP() << "threads that allocate at the same time need scanned stacks";
  const Handle first = intArray("ArraySync<Int>", {1, 2, 3});
  const Handle second = intArray("ArraySync<Int>", {4, 5, 6});
  const Watchdog watchdog;
  const auto work = [&](void* mine, void* theirs) {
    for (int i = 0; i < 20'000; ++i) operation(mine, theirs);
  };
  runTogether({[&] { work(first, second); }, [&] { work(second, first); }});
  EXPECT_ARRAY_AT_REST(first);
  EXPECT_ARRAY_AT_REST(second);
}

TEST_F(ArrayThreads, TwoArraysConcatenatedWithEachOther_NeverDeadlock) {
  crossOver([](void* mine, void* theirs) {
    const Handle result = vorn_collections_Array_concat(mine, theirs);
    EXPECT_EQ(vorn_collections_Array_sumI64Fast(result), 21);
  });
}

TEST_F(ArrayThreads, TwoArraysSliceAssignedToEachOther_NeverDeadlock) {
  crossOver([](void* mine, void* theirs) { arraySliceAssign(mine, kOmitted, kOmitted, 1, theirs); });
}

TEST_F(ArrayThreads, TwoArraysComparedWithEachOther_NeverDeadlock) {
  crossOver([](void* mine, void* theirs) { EXPECT_FALSE(vorn_collections_Array_operator_eq(mine, theirs)); });
}

}  // namespace
}  // namespace vorn::tests
