// New lists are locked while natives fill them: a native's locks do not depend on who can know the list yet.
#include <vorn/collections/immutable_list.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>

#include "collections/arraylist/creation.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/arraylist/library_hooks.h"

namespace vorn::tests {
namespace {

class ResultLocks : public RuntimeTest {
 protected:
  // Expects that the call locks the list that it gives.
  template <class Call>
  static void expectLocked(const std::string& what, Call call) {
    std::set<pthread_mutex_t*> unlocked;
    std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) { unlocked.insert(mutex); };
    afterUnlock = &hook;
    const Handle result(call());
    afterUnlock = nullptr;
    ASSERT_NE(result, nullptr) << what;
    EXPECT_EQ(unlocked.count(getListData(result)->mutex), 1U) << what;
    EXPECT_AT_REST(result);
  }
};

TEST_F(ResultLocks, OfCopies) {
  for (const bool linked : {false, true}) {
    const Handle handles = list(className(linked, true), {integer("Int", 3), string("x"), integer("Int", 2)});
    const Handle numbers = intList(className(linked, true, "Int"), {3, 1, 2});
    for (const Handle& source : {handles, numbers}) {
      SCOPED_TRACE(storageOf(source));
      const Handle other = list("ArrayList", {integer("Int", 1)});
      expectLocked("slice", [&] { return slice(source, 0, 2); });
      expectLocked("repeat", [&] { return vorn_collections_ArrayList_repeat(source, 2); });
      expectLocked("reverseNew", [&] { return vorn_collections_ArrayList_reverseNew(source); });
      expectLocked("sortNew", [&] { return vorn_collections_ArrayList_sortNew(source); });
      expectLocked("concat", [&] { return vorn_collections_ArrayList_concat(source, other); });
      expectLocked("concat of nothing", [&] { return vorn_collections_ArrayList_concat(source, nullptr); });
    }
  }
}

// Each operand's elements enter under a lock of their own.
TEST_F(ResultLocks, OfConcat_AreTakenOnceForEachOperand) {
  const Handle first = intList("ArrayListSync<Int>", {3, 1});
  for (const Handle& second : {intList("ArrayList<Int>", {2}), Handle()}) {
    std::vector<pthread_mutex_t*> unlocked;
    std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) { unlocked.push_back(mutex); };
    afterUnlock = &hook;
    const Handle result(vorn_collections_ArrayList_concat(first, second));
    afterUnlock = nullptr;
    EXPECT_EQ(std::count(unlocked.begin(), unlocked.end(), getListData(result)->mutex), 2);
  }
}

// The second operand is asked for its size before the first is copied, and locked for either.
TEST_F(ResultLocks, OfTheSecondOperandOfConcat_AreTakenForItsSizeAndForItsElements) {
  const Handle first = intList("ArrayListSync<Int>", {3, 1});
  const Handle second = intList("ArrayListSync<Int>", {2});
  std::vector<pthread_mutex_t*> unlocked;
  std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) { unlocked.push_back(mutex); };
  afterUnlock = &hook;
  const Handle result(vorn_collections_ArrayList_concat(first, second));
  afterUnlock = nullptr;
  EXPECT_EQ(std::count(unlocked.begin(), unlocked.end(), getListData(second)->mutex), 2);
}

TEST_F(ResultLocks, OfImmutableLists) {
  for (const bool linked : {false, true}) {
    const Handle handles = list(className(linked, true), {integer("Int", 3), string("x"), integer("Int", 2)});
    const Handle numbers = intList(className(linked, true, "Int"), {3, 1, 2});
    for (const Handle& source : {handles, numbers}) {
      SCOPED_TRACE(storageOf(source));
      expectLocked("sortNew", [&] { return vorn_collections_ImmutableList_sortNew(source); });
    }
  }
}

// A constructor locks the list once to empty it and once more to fill it.
TEST_F(ResultLocks, OfConstructedImmutableLists_AreTakenOnceForEachChange) {
  for (const Handle& source : {intList("ArrayList<Int>", {3, 1}), intList("LinkedList", {3, 1}), Handle()}) {
    const Handle target = object("ArrayListSync");
    std::vector<pthread_mutex_t*> unlocked;
    std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) { unlocked.push_back(mutex); };
    afterUnlock = &hook;
    vorn_collections_ImmutableList_ctor(target, source);
    afterUnlock = nullptr;
    EXPECT_EQ(std::count(unlocked.begin(), unlocked.end(), getListData(target)->mutex), source == nullptr ? 1 : 2);
    EXPECT_AT_REST(target);
  }
}

// Room is made for what the second operand held when the first was copied; it may have grown when its turn comes.
TEST_F(ResultLocks, OfConcat_SecondOperandGrowsBetweenThem_AllOfItIsCopied) {
  const Handle first = intList("ArrayList<Int>", {1});
  const Handle second = intList("ArrayListSync<Int>", {2});
  bool grown = false;
  std::function<void(pthread_mutex_t*)> hook = [&](pthread_mutex_t* mutex) {
    if (grown || mutex != getListData(second)->mutex) return;
    grown = true;
    for (int i = 0; i < 100; ++i) vorn_collections_ArrayList_addInt(second, i);
  };
  afterUnlock = &hook;
  const Handle result(vorn_collections_ArrayList_concat(first, second));
  afterUnlock = nullptr;
  EXPECT_AT_REST(result);
  Elements expected = elementsOf(second);
  expected.insert(expected.begin(), "Int 1");
  EXPECT_EQ(expected.size(), 102U);
  EXPECT_EQ(elementsOf(result), expected);
}

TEST_F(ResultLocks, OfLiteralsAndBuffers) {
  void* values[] = {nullptr, nullptr};
  expectLocked("literal", [&] { return createArrayListLiteralFromValues(true, values, 2); });
  expectLocked("empty", [] { return createArrayListPrimitiveEmpty("Int", true); });
  expectLocked("buffer", [] {
    void* result = nullptr;
    createArrayListPrimitiveDataBuffer(true, 3, "Int", &result);
    return result;
  });
}

}  // namespace
}  // namespace vorn::tests
