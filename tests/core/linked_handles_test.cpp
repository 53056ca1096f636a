#include "collections/core/storage/linked_handles.h"

#include <new>

#include "collections/core/port/roots.h"
#include "tests/core/core_test_support.h"
#include "tests/support/heap_statistics.h"

namespace vorn::tests {
namespace {

class LinkedHandlesTest : public RuntimeTest {
 protected:
  // Appends boxes of 0 .. count - 1.
  void pushIntegers(int count) {
    for (int i = 0; i < count; ++i) list_.pushBack(integer("Int", i));
  }

  // The integers from front to back; fails when the chain read backward is another one or the count is wrong.
  std::vector<std::int64_t> integers() {
    std::vector<std::int64_t> forward;
    std::vector<std::int64_t> backward;
    for (auto* node = list_.sentinel.next; node != &list_.sentinel; node = node->next) forward.push_back(valueOf(node));
    for (auto* node = list_.sentinel.previous; node != &list_.sentinel; node = node->previous) {
      backward.insert(backward.begin(), valueOf(node));
    }
    EXPECT_EQ(forward, backward);
    EXPECT_EQ(list_.count, forward.size());
    return forward;
  }

  static std::int64_t valueOf(LinkedHandles::Links* node) {
    std::int64_t value = -1;
    EXPECT_NE(vorn_unbox_integer(static_cast<LinkedHandles::Node*>(node)->handle, &value), 0);
    return value;
  }

  LinkedHandles list_;
  collections::RootedRange root_{&list_, sizeof(list_)};
};

using Values = std::vector<std::int64_t>;

TEST_F(LinkedHandlesTest, StartsEmptyWithTheSentinelLinkedToItself) {
  EXPECT_EQ(list_.count, 0u);
  EXPECT_EQ(list_.sentinel.next, &list_.sentinel);
  EXPECT_EQ(list_.sentinel.previous, &list_.sentinel);
}

TEST_F(LinkedHandlesTest, PushBackHooksInBeforeTheSentinel) {
  pushIntegers(3);
  EXPECT_EQ(integers(), (Values{0, 1, 2}));
  EXPECT_EQ(valueOf(list_.sentinel.previous), 2);
}

TEST_F(LinkedHandlesTest, NodesSurviveCollections) {
  const int count = onStressHeap() ? 30 : 500;
  pushIntegers(count);
  vorn_heap_collect();
  for (int i = 0; i < count; ++i) integer("Long", -5);
  Values expected;
  for (int i = 0; i < count; ++i) expected.push_back(i);
  EXPECT_EQ(integers(), expected);
}

TEST_F(LinkedHandlesTest, NodeAtFindsEveryIndex) {
  for (const int count : {1, 2, 3, 4, 5, 8, 9}) {
    list_.reset();
    pushIntegers(count);
    for (int i = 0; i < count; ++i) EXPECT_EQ(valueOf(list_.nodeAt(static_cast<std::uint64_t>(i))), i) << count;
  }
}

// A link that must not be followed leads to this node, whose own links lead nowhere else, so that a walk over it gives
// a wrong node instead of a wild read.
struct Trap {
  LinkedHandles::Node node;

  Trap() {
    node.next = node.previous = &node;
    node.handle = nullptr;
  }
};

TEST_F(LinkedHandlesTest, NodeAtBelowHalfWalksForward) {
  pushIntegers(5);
  auto* const first = list_.sentinel.next;
  auto* const second = first->next;
  auto* const last = list_.sentinel.previous;
  Trap trap;
  list_.sentinel.previous = &trap.node;
  EXPECT_EQ(list_.nodeAt(0), first);
  EXPECT_EQ(list_.nodeAt(1), second);
  list_.sentinel.previous = last;
}

TEST_F(LinkedHandlesTest, NodeAtFromHalfOnWalksBackward) {
  pushIntegers(5);
  LinkedHandles::Links* nodes[5];
  nodes[0] = list_.sentinel.next;
  for (int i = 1; i < 5; ++i) nodes[i] = nodes[i - 1]->next;
  Trap trap;
  list_.sentinel.next = &trap.node;
  for (const std::uint64_t index : {2, 3, 4}) EXPECT_EQ(list_.nodeAt(index), nodes[index]) << index;
  list_.sentinel.next = nodes[0];
}

TEST_F(LinkedHandlesTest, InsertionPointUpToHalfWalksForward) {
  for (const std::uint64_t count : {4, 5}) {
    list_.reset();
    pushIntegers(static_cast<int>(count));
    LinkedHandles::Links* const nodes[] = {list_.sentinel.next, list_.sentinel.next->next,
                                           list_.sentinel.next->next->next};
    auto* const last = list_.sentinel.previous;
    Trap trap;
    list_.sentinel.previous = &trap.node;
    for (std::uint64_t index = 0; index <= count / 2; ++index) EXPECT_EQ(list_.insertionPoint(index), nodes[index]);
    list_.sentinel.previous = last;
  }
}

TEST_F(LinkedHandlesTest, InsertionPointBeyondHalfWalksBackward) {
  for (const std::uint64_t count : {4, 5}) {
    list_.reset();
    pushIntegers(static_cast<int>(count));
    auto* const first = list_.sentinel.next;
    auto* const last = list_.sentinel.previous;
    Trap trap;
    list_.sentinel.next = &trap.node;
    EXPECT_EQ(list_.insertionPoint(count), &list_.sentinel);
    EXPECT_EQ(list_.insertionPoint(count - 1), last);
    if (count == 5) {
      EXPECT_EQ(list_.insertionPoint(3), last->previous);
    }
    list_.sentinel.next = first;
  }
}

// The insertions go by that: a walk in the wrong direction would end beyond the trap, in whose place nothing is linked.
TEST_F(LinkedHandlesTest, InsertAtWalksFromTheNearerEnd) {
  pushIntegers(5);
  auto* const first = list_.sentinel.next;
  Trap trap;
  list_.sentinel.next = &trap.node;
  list_.insertAt(4, integer("Int", 35));
  list_.sentinel.next = first;
  EXPECT_EQ(integers(), (Values{0, 1, 2, 3, 35, 4}));
  auto* const last = list_.sentinel.previous;
  list_.sentinel.previous = &trap.node;
  list_.insertAt(2, integer("Int", 15));
  list_.sentinel.previous = last;
  EXPECT_EQ(integers(), (Values{0, 1, 15, 2, 3, 35, 4}));
}

TEST_F(LinkedHandlesTest, InsertAtPutsTheHandleBeforeTheIndex) {
  list_.insertAt(0, integer("Int", 50));
  list_.insertAt(0, integer("Int", 10));
  list_.insertAt(2, integer("Int", 60));
  list_.insertAt(1, integer("Int", 20));
  list_.insertAt(3, integer("Int", 55));
  list_.insertAt(2, integer("Int", 30));
  EXPECT_EQ(integers(), (Values{10, 20, 30, 50, 55, 60}));
  for (std::uint64_t at = 0; at <= 6; ++at) {
    const std::uint64_t before = list_.count;
    list_.insertAt(at, integer("Int", -1));
    EXPECT_EQ(list_.count, before + 1);
    EXPECT_EQ(valueOf(list_.nodeAt(at)), -1);
    list_.unhook(list_.nodeAt(at));
    EXPECT_EQ(integers(), (Values{10, 20, 30, 50, 55, 60}));
  }
}

TEST_F(LinkedHandlesTest, InsertBeforeANode) {
  pushIntegers(2);
  list_.insertBefore(list_.nodeAt(1), integer("Int", 7));
  list_.insertBefore(list_.sentinel.next, integer("Int", 8));
  EXPECT_EQ(integers(), (Values{8, 0, 7, 1}));
}

TEST_F(LinkedHandlesTest, NullHandlesAreKept) {
  list_.pushBack(nullptr);
  list_.pushBack(nullptr);
  EXPECT_EQ(list_.count, 2u);
  EXPECT_EQ(list_.nodeAt(0)->handle, nullptr);
  EXPECT_EQ(list_.nodeAt(1)->handle, nullptr);
}

TEST_F(LinkedHandlesTest, UnhookTakesANodeOut) {
  pushIntegers(5);
  list_.unhook(list_.nodeAt(2));
  EXPECT_EQ(integers(), (Values{0, 1, 3, 4}));
  list_.unhook(list_.nodeAt(0));
  list_.unhook(list_.nodeAt(2));
  EXPECT_EQ(integers(), (Values{1, 3}));
  list_.unhook(list_.nodeAt(0));
  list_.unhook(list_.nodeAt(0));
  EXPECT_EQ(list_.count, 0u);
  EXPECT_EQ(list_.sentinel.next, &list_.sentinel);
  EXPECT_EQ(list_.sentinel.previous, &list_.sentinel);
}

TEST_F(LinkedHandlesTest, ResetEmptiesAndLeavesAReusableList) {
  pushIntegers(4);
  list_.reset();
  EXPECT_EQ(integers(), Values{});
  pushIntegers(2);
  EXPECT_EQ(integers(), (Values{0, 1}));
}

TEST_F(LinkedHandlesTest, ChangesDiffersAfterEveryChangeOfTheNodes) {
  std::uint64_t last = list_.changes;
  const auto expectChanged = [&](const char* what) {
    EXPECT_NE(list_.changes, last) << what;
    last = list_.changes;
  };
  pushIntegers(1);
  expectChanged("pushBack");
  list_.insertAt(0, nullptr);
  expectChanged("insertAt");
  list_.insertBefore(&list_.sentinel, nullptr);
  expectChanged("insertBefore");
  list_.unhook(list_.nodeAt(1));
  expectChanged("unhook");
  list_.reset();
  expectChanged("reset");
  pushIntegers(2);
  expectChanged("pushBack");
  EXPECT_EQ(list_.nodeAt(0), list_.sentinel.next);
  EXPECT_EQ(list_.changes, last) << "looking changes nothing";
}

TEST_F(LinkedHandlesTest, PushBackAllocatesBlocksOfNodes) {
  const Handle value = integer("Int", 1);
  void* const handle = value;
  EXPECT_EQ(allocationsOf([&] {
              for (int i = 0; i < 3 + 7 + 15 + 31; ++i) list_.pushBack(handle);
            }),
            4U);
  EXPECT_EQ(allocationsOf([&] { list_.pushBack(handle); }), 1U);
}

TEST_F(LinkedHandlesTest, PushBackInPlaceNeverAllocates) {
  const Handle value = integer("Int", 1);
  void* const handle = value;
  EXPECT_FALSE(list_.pushBackInPlace(handle)) << "no block yet";
  EXPECT_EQ(list_.count, 0U);
  pushIntegers(2);
  EXPECT_EQ(allocationsOf([&] { EXPECT_TRUE(list_.pushBackInPlace(handle)); }), 0U);
  const std::uint64_t changes = list_.changes;
  EXPECT_FALSE(list_.pushBackInPlace(handle)) << "the block is used up";
  EXPECT_EQ(list_.changes, changes);
  EXPECT_EQ(integers(), (Values{0, 1, 1}));
}

TEST_F(LinkedHandlesTest, UnhookedNodesAreUsedAgainAndHoldNothing) {
  pushIntegers(10);
  auto* const node = list_.nodeAt(4);
  list_.unhook(node);
  EXPECT_EQ(node->handle, nullptr);
  list_.unhook(list_.nodeAt(0));
  const Handle value = integer("Int", 7);
  void* const handle = value;
  EXPECT_EQ(allocationsOf([&] {
              list_.pushBack(handle);
              list_.pushBack(handle);
            }),
            0U);
  EXPECT_EQ(integers(), (Values{1, 2, 3, 5, 6, 7, 8, 9, 7, 7}));
}

TEST_F(LinkedHandlesTest, QueuesNeedNoMoreMemoryInTheLongRun) {
  pushIntegers(40);
  const Handle value = integer("Int", 7);
  void* const handle = value;
  EXPECT_EQ(allocationsOf([&] {
              for (int i = 0; i < 1000; ++i) {
                list_.unhook(list_.sentinel.next);
                list_.pushBack(handle);
              }
            }),
            0U);
}

TEST_F(LinkedHandlesTest, AListThatRemovalsEmptiedKeepsOneBlock) {
  pushIntegers(40);
  ASSERT_NE(list_.newest->older, nullptr);
  while (list_.count != 0) list_.unhook(list_.sentinel.next);
  ASSERT_NE(list_.newest, nullptr);
  EXPECT_EQ(list_.newest->older, nullptr);
  EXPECT_EQ(list_.newest->used, 0U);
  pushIntegers(3);
  EXPECT_EQ(integers(), (Values{0, 1, 2}));
  list_.reset();
  EXPECT_EQ(list_.newest, nullptr);
}

TEST_F(LinkedHandlesTest, FailedNodeAllocationThrowsAndChangesNothing) {
  pushIntegers(3);
  Handle extra = integer("Int", 9);
  const std::uint64_t changes = list_.changes;
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(list_.pushBack(extra), std::bad_alloc);
  EXPECT_NE(vorn_heap_failure_happened(), 0);
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(list_.insertAt(1, extra), std::bad_alloc);
  vorn_heap_fail_allocation(0);
  EXPECT_THROW(list_.insertBefore(list_.sentinel.next, extra), std::bad_alloc);
  EXPECT_EQ(integers(), (Values{0, 1, 2}));
  EXPECT_EQ(list_.changes, changes);
  list_.pushBack(extra);
  EXPECT_EQ(integers(), (Values{0, 1, 2, 9}));
}

}  // namespace
}  // namespace vorn::tests
