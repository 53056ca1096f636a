// Locks of the whole-list operations: which ones lock, that every lock is released, and that two lists never wait for
// each other.
#include <cerrno>
#include <system_error>

#include "collections/arraylist/snapshots.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/lists.h"
#include "tests/support/threads.h"
#include "tests/support/watchdog.h"

namespace vorn::tests {
namespace {

// Each is called with the list and another list.
const std::vector<NativeCase>& bulkNatives() {
  static const std::vector<NativeCase> cases = {
      {"addAll", true, [](void* list, void* other) { vorn_collections_ArrayList_addAll(list, other); }},
      {"addAllAt", true, [](void* list, void* other) { vorn_collections_ArrayList_addAllAt(list, 1, other); }},
      {"slice", true, [](void* list, void*) { slice(list, 0, 1); }},
      {"sliceAssign_SameCount", true, [](void* list, void* other) { sliceAssign(list, 0, 1, 1, other); }},
      {"sliceAssign_OtherCount", true, [](void* list, void* other) { sliceAssign(list, 0, 2, 1, other); }},
      {"concat", true, [](void* list, void* other) { vorn_collections_ArrayList_concat(list, other); }},
      {"concat_AsOther", true, [](void* list, void* other) { vorn_collections_ArrayList_concat(other, list); }},
      {"addAll_AsSource", true, [](void* list, void* other) { vorn_collections_ArrayList_addAll(other, list); }},
      {"sliceAssign_AsSource", true, [](void* list, void* other) { sliceAssign(other, 0, 1, 1, list); }},
      {"repeat", true, [](void* list, void*) { vorn_collections_ArrayList_repeat(list, 2); }},
      {"reverse", true, [](void* list, void*) { vorn_collections_ArrayList_reverse(list); }},
      {"reverseNew", true, [](void* list, void*) { vorn_collections_ArrayList_reverseNew(list); }},
      {"shuffle", true, [](void* list, void*) { vorn_collections_ArrayList_shuffle(list); }},
      {"sort", true, [](void* list, void*) { vorn_collections_ArrayList_sort(list); }},
      {"sortNew", true, [](void* list, void*) { vorn_collections_ArrayList_sortNew(list); }},
      {"sortI64Fast", true, [](void* list, void*) { vorn_collections_ArrayList_sortI64Fast(list); }},
      {"sortF64Fast", true, [](void* list, void*) { vorn_collections_ArrayList_sortF64Fast(list); }},
      {"sumInt", true, [](void* list, void*) { vorn_collections_ArrayList_sumInt(list); }},
      {"sumI64Fast", true, [](void* list, void*) { vorn_collections_ArrayList_sumI64Fast(list); }},
      {"sumF64Fast", true, [](void* list, void*) { vorn_collections_ArrayList_sumF64Fast(list); }},
      {"snapshotListObjectValues", true, [](void* list, void*) { snapshotListObjectValues(*getListData(list)); }},
  };
  return cases;
}

// One list of each storage, with numbers in it.
std::vector<Handle> numberLists(bool synchronised) {
  return {intList(className(false, synchronised, "Int"), {3, 1, 2}),
          rawDoubles(className(false, synchronised, "Double"), "Double", {3.5, 1.5, 2.5}),
          list(className(false, synchronised), {integer("Int", 3), integer("Long", 1), integer("Int", 2)}),
          intList(className(true, synchronised), {3, 1, 2})};
}

class BulkLock : public RuntimeTest {};
class BulkNativeLock : public RuntimeTest, public ::testing::WithParamInterface<NativeCase> {};

TEST_P(BulkNativeLock, FailingMutex_IsASystemErrorAndLeavesBothListsUnchanged) {
  const Handle other = list("ArrayList", {integer("Int", 5)});
  for (const Handle& target : numberLists(true)) {
    const Snapshot before(target);
    const Snapshot otherBefore(other);
    {
      const HeldMutex held(target);
      try {
        GetParam().call(target, other);
        ADD_FAILURE() << GetParam().name << " did not lock";
      } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EDEADLK);
      }
      EXPECT_EQ(Snapshot(target), before);
    }
    EXPECT_NOTHING_RAISED();
    EXPECT_UNTOUCHED(target, before);
    EXPECT_UNTOUCHED(other, otherBefore);
  }
}

TEST_P(BulkNativeLock, UnsynchronisedList_NeverTouchesItsMutex) {
  for (const Handle& target : numberLists(false)) {
    const Handle other = list("ArrayList", {integer("Int", 5)});
    const HeldMutex held(target);
    GetParam().call(target, other);
    takeErrors();  // an element type may refuse a value
    EXPECT_VALID_LIST(target);
    EXPECT_VALID_LIST(other);
  }
}

TEST_P(BulkNativeLock, SynchronisedLists_AreUnlockedAfterwards) {
  for (const Handle& target : numberLists(true)) {
    const Handle other = list("LinkedListSync", {integer("Int", 5)});
    GetParam().call(target, other);
    EXPECT_AT_REST(target);
    EXPECT_AT_REST(other);
    GetParam().call(target, target);
    EXPECT_AT_REST(target);
    vorn_collections_ArrayList_clear(target);
    GetParam().call(target, other);
    takeErrors();  // the empty list has no index 1
    EXPECT_AT_REST(target);
    EXPECT_AT_REST(other);
  }
}

INSTANTIATE_TEST_SUITE_P(Natives, BulkNativeLock, ::testing::ValuesIn(bulkNatives()),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_F(BulkLock, IsReleasedAfterEveryRaise) {
  const Handle typed = intList("ArrayListSync<Int>", {1, 2});
  const Handle bad = list("LinkedListSync", {string("x"), nullptr});
  const auto expectReleased = [&](const std::string& error) {
    EXPECT_RAISED(error);
    EXPECT_AT_REST(typed);
    EXPECT_AT_REST(bad);
  };
  vorn_collections_ArrayList_addAll(typed, bad);
  expectReleased(listTypeError("Int", "vorn.String"));
  vorn_collections_ArrayList_addAllAt(typed, 9, bad);
  expectReleased(kIndexError);
  sliceAssign(typed, 0, 2, 1, bad);
  expectReleased(listTypeError("Int", "vorn.String"));
  sliceAssign(typed, 2, 1, 1, bad);
  expectReleased(kRangeError);
  sliceAssign(typed, 0, 1, 2, bad);
  expectReleased(kExtendedError);
  const Handle holed = list("ArrayListSync", {nullptr});
  for (int native = 0; native < 3; ++native) {
    if (native == 0) vorn_collections_ArrayList_sumInt(holed);
    if (native == 1) vorn_collections_ArrayList_sumI64Fast(holed);
    if (native == 2) vorn_collections_ArrayList_sumF64Fast(holed);
    expectReleased(kSumError);
    EXPECT_AT_REST(holed);
  }
}

// ---- Two lists from two threads -------------------------------------------------------------------------------------

// Each thread runs operation(mine, theirs) 100,000 times with the lists swapped. Short lists: what counts is how often
// the threads meet.
template <class Operation>
void crossOver(Operation operation) {
  const Handle first = intList("ArrayListSync<Int>", {1, 2, 3});
  const Handle second = intList("LinkedListSync<Int>", {4, 5});
  const Handle one = integer("Int", 1);
  {
    const Watchdog watchdog;
    const auto work = [&](void* mine, void* theirs) {
      for (int i = 0; i < 100'000; ++i) {
        vorn_collections_ArrayList_add(mine, one);
        operation(mine, theirs);
        if (vorn_collections_ArrayList_size(mine) > 12) vorn_collections_ArrayList_clear(mine);
        // A source is seen at one moment, even if it is cleared meanwhile.
        EXPECT_EQ(takeErrors(), Elements{});
      }
    };
    runTogether({[&] { work(first, second); }, [&] { work(second, first); }});
  }
  EXPECT_AT_REST(first);
  EXPECT_AT_REST(second);
}

// The threads allocate outside any common lock, which the exact stress heap does not allow for.
#define SKIP_ON_STRESS_HEAP() \
  if (onStressHeap()) GTEST_SKIP() << "threads that allocate at the same time need scanned stacks"

TEST_F(BulkLock, TwoListsAddedToEachOther_NeverDeadlock) {
  SKIP_ON_STRESS_HEAP();
  crossOver([](void* mine, void* theirs) { vorn_collections_ArrayList_addAll(mine, theirs); });
}

TEST_F(BulkLock, TwoListsConcatenatedWithEachOther_NeverDeadlock) {
  SKIP_ON_STRESS_HEAP();
  crossOver([](void* mine, void* theirs) {
    const Handle result = vorn_collections_ArrayList_concat(mine, theirs);
    EXPECT_VALID_LIST(result);
  });
}

TEST_F(BulkLock, TwoListsSliceAssignedToEachOther_NeverDeadlock) {
  SKIP_ON_STRESS_HEAP();
  crossOver([](void* mine, void* theirs) { sliceAssign(mine, 0, 0, 1, theirs); });
}

TEST_F(BulkLock, OneListAddedToItselfByTwoThreads_NeverDeadlocks) {
  SKIP_ON_STRESS_HEAP();
  crossOver([](void* mine, void*) { vorn_collections_ArrayList_addAll(mine, mine); });
}

}  // namespace
}  // namespace vorn::tests
