// When the natives hold the lock of a synchronised array.
#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/array/array_cases.h"
#include "tests/array/runtime_hooks.h"
#include "tests/support/collections.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class ArrayHeldLocks : public RuntimeTest {
 protected:
  // Runs the call and tells which operations it made, each with whether the array was locked then, once per run of
  // equal ones: "raise locked", "object unlocked".
  template <class Call>
  static Elements operationsOf(void* array, Call call) {
    Elements operations;
    std::function<void(std::string_view)> hook = [&](std::string_view operation) {
      std::string entry = std::string(operation) + (isUnlockedArray(array) ? " unlocked" : " locked");
      if (operations.empty() || operations.back() != entry) operations.push_back(std::move(entry));
    };
    onRuntimeCall = &hook;
    call();
    onRuntimeCall = nullptr;
    takeErrors();
    EXPECT_ARRAY_AT_REST(array);
    return operations;
  }
};

using Operations = Elements;

TEST_F(ArrayHeldLocks, ErrorsOfElements_AreRaisedUnderTheLock) {
  const Handle ints = intArray("ArraySync<Int>", {1, 2});
  const Handle characters = intArray("ArraySync<Char>", {65});
  const Handle handles = newArray("ArraySync", 2);
  const Handle word = string("word");
  const Handle words = tupleOf({word, word});
  const Operations locked = {"raise locked"};
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_getInt(ints, 2); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_getDouble(ints, -3); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_setInt(ints, 2, 1); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_setDouble(ints, 2, 1); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_setBool(ints, 2, true); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_operator_index(ints, 2); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_operator_index_eq(ints, 0, word); }), locked);
  EXPECT_EQ(operationsOf(characters, [&] { vorn_collections_Array_setInt(characters, 0, 0xD800); }), locked);
  EXPECT_EQ(operationsOf(handles, [&] { vorn_collections_Array_getInt(handles, 0); }), locked);
  EXPECT_EQ(operationsOf(handles, [&] { vorn_collections_Array_getDouble(handles, 0); }), locked);
  EXPECT_EQ(operationsOf(handles, [&] { vorn_collections_Array_sumI64Fast(handles); }), locked);
  EXPECT_EQ(operationsOf(handles, [&] { vorn_collections_Array_sumF64Fast(handles); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { arraySliceAssign(ints, 0, 1, 1, words); }), locked);
  EXPECT_EQ(operationsOf(ints, [&] { arraySliceAssign(ints, 0, 2, 1, words); }), locked);
}

TEST_F(ArrayHeldLocks, ErrorsOfArguments_AreRaisedBeforeTheLock) {
  const Handle ints = intArray("ArraySync<Int>", {1, 2});
  const Handle word = string("word");
  const Operations unlocked = {"raise unlocked"};
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_ctor(ints, -1); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_copyCtor(ints, nullptr); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_copyCtor(ints, word); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { arraySlice(ints, 0, 1, 0); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { arraySliceAssign(ints, 0, 1, 0, ints); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { arraySliceAssign(ints, 0, 1, 1, word); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_concat(ints, word); }), unlocked);
}

TEST_F(ArrayHeldLocks, Boxes_AreMadeUnderTheLock) {
  const Handle ints = intArray("ArraySync<Int>", {1});
  const Handle doubles = doubleArray("ArraySync<Double>", {1});
  const Handle handles = newArray("ArraySync", 1);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_operator_index(ints, 0); }),
            Operations{"integer box locked"});
  EXPECT_EQ(operationsOf(doubles, [&] { vorn_collections_Array_operator_index(doubles, 0); }),
            Operations{"floating box locked"});
  EXPECT_EQ(operationsOf(handles, [&] { vorn_collections_Array_setInt(handles, 0, 1); }),
            Operations{"integer box locked"});
  EXPECT_EQ(operationsOf(handles, [&] { vorn_collections_Array_setDouble(handles, 0, 1); }),
            Operations{"floating box locked"});
}

TEST_F(ArrayHeldLocks, SizeFieldOfACopy_IsSetUnderTheLock) {
  const Handle target = newArray("ArraySync<Int>", 1);
  const Handle source = intArray("ArraySync<Int>", {1, 2});
  std::vector<long long> sizes;
  std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) {
    if (mutex == recordOf(target).mutex) sizes.push_back(sizeField(target));
  };
  afterUnlock = &hook;
  vorn_collections_Array_copyCtor(target, source);
  afterUnlock = nullptr;
  EXPECT_EQ(sizes, std::vector<long long>{2});
}

TEST_F(ArrayHeldLocks, NewArrays_AreMadeBeforeTheLock) {
  const Handle ints = intArray("ArraySync<Int>", {1, 2});
  const Handle source = tupleOf({integer("Int", 1)});
  const Operations unlocked = {"object unlocked"};
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_sortNew(ints); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_reverseNew(ints); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { arraySlice(ints, 0, 1); }), unlocked);
  EXPECT_EQ(operationsOf(ints, [&] { vorn_collections_Array_concat(ints, source); }), unlocked);
}

// A new array is locked while it is filled, although nobody else can know it yet.
TEST_F(ArrayHeldLocks, NewArrays_AreFilledUnderTheirLock) {
  const Handle ints = intArray("ArraySync<Int>", {2, 1});
  const Handle source = tupleOf({integer("Int", 1)});
  const std::function<void*()> calls[] = {
      [&] { return vorn_collections_Array_sortNew(ints); }, [&] { return vorn_collections_Array_reverseNew(ints); },
      [&] { return arraySlice(ints, 0, 1); }, [&] { return vorn_collections_Array_concat(ints, source); }};
  // Those that copy first lock the copy once more for what they do with it.
  const int expected[] = {2, 2, 1, 1};
  for (std::size_t call = 0; call < std::size(calls); ++call) {
    std::vector<pthread_mutex_t*> unlocked;
    std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) { unlocked.push_back(mutex); };
    afterUnlock = &hook;
    const Handle result(calls[call]());
    afterUnlock = nullptr;
    EXPECT_EQ(std::count(unlocked.begin(), unlocked.end(), recordOf(result).mutex), expected[call]) << call;
  }
}

TEST_F(ArrayHeldLocks, UnboxedSlots_TakeUnboxedElementsWithoutABox) {
  const Handle target = intArray("ArraySync<Int>", {1, 2});
  const Handle source = intArray("ArraySync<Int>", {3, 4});
  EXPECT_EQ(operationsOf(target, [&] { vorn_collections_Array_concat(target, source); }),
            Operations{"object unlocked"});
  EXPECT_EQ(operationsOf(target, [&] { arraySliceAssign(target, 0, 2, 1, source); }), Operations{});
}

// The source is copied as it is, and boxes are made for the receiver when the source is free again.
TEST_F(ArrayHeldLocks, OtherCollections_AreFreeWhileTheReceiverIsLocked) {
  const Handle target = newArray("ArraySync", 2);
  const Handle source = intArray("ArraySync<Int>", {3, 4});
  const auto concatenate = [&] { vorn_collections_Array_concat(target, source); };
  const auto assign = [&] { arraySliceAssign(target, 0, 2, 1, source); };
  EXPECT_EQ(operationsOf(target, concatenate), (Operations{"object unlocked", "integer box locked"}));
  EXPECT_EQ(operationsOf(source, concatenate), (Operations{"object unlocked", "integer box unlocked"}));
  EXPECT_EQ(operationsOf(target, assign), Operations{"integer box locked"});
  EXPECT_EQ(operationsOf(source, assign), Operations{"integer box unlocked"});
}

TEST_F(ArrayHeldLocks, Texts_AreMadeAndRefusedUnderTheLock) {
  for (const auto conversion : {Vorn_stringFromCharArray, Vorn_stringFromCodeUnitArray}) {
    const Handle good = intArray("ArraySync<Int>", {65});
    const Handle bad = intArray("ArraySync<Int>", {0});
    EXPECT_EQ(operationsOf(good, [&] { conversion(good); }), Operations{"string locked"});
    EXPECT_EQ(operationsOf(bad, [&] { conversion(bad); }), (Operations{"raise locked", "string locked"}));
  }
}

}  // namespace
}  // namespace vorn::tests
