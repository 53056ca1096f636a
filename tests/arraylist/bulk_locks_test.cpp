// Locks of the whole-list operations: that they are released after errors of all sorts, and that two lists never wait for
// each other. That every native takes and releases them is in tests/nets.
#include <system_error>

#include "collections/arraylist/snapshots.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/lists.h"
#include "tests/support/threads.h"
#include "tests/support/watchdog.h"

namespace vorn::tests {
namespace {

class BulkLock : public RuntimeTest {};

TEST_F(BulkLock, SnapshotOfValues_LocksTheList) {
  const Handle target = intList("ArrayListSync<Int>", {3, 1, 2});
  {
    const HeldMutex held(target);
    EXPECT_THROW(snapshotListObjectValues(*getListData(target)), std::system_error);
  }
  snapshotListObjectValues(*getListData(target));
  EXPECT_AT_REST(target);
}

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
