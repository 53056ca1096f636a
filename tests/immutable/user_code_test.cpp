// Immutable lists whose elements have equality and ordering of their own.
#include "tests/immutable/sequence_cases.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using ImmutableListUserCode = RuntimeTest;

TEST_F(ImmutableListUserCode, Searches_HoldTheLockAndEndOnAnError) {
  const Handle list = boxedImmutable({hooked(1), hooked(2), hooked(3)});
  LentMutex mutex(list);
  int asked = 0;
  userHooks.equals = [&](void*, void*) {
    ++asked;
    EXPECT_TRUE(mutex.isHeld());
    vorn_raise("Exception", "no equality");
    return true;
  };
  EXPECT_EQ(vorn_collections_ImmutableList_indexOf(list, hooked(3), 0), -1);
  EXPECT_RAISED("Exception: no equality");
  EXPECT_EQ(vorn_collections_ImmutableList_lastIndexOf(list, hooked(3), -1), -1);
  EXPECT_RAISED("Exception: no equality");
  EXPECT_EQ(asked, 2);
}

TEST_F(ImmutableListUserCode, SortNew_RunsTheOrderingWithoutTheLock) {
  const Handle list = boxedImmutable({hooked(3), hooked(1), hooked(2)});
  LentMutex mutex(list);
  userHooks.compare = [&](void* self, void* other, bool*) {
    EXPECT_FALSE(mutex.isHeld());
    return idOf(self) < idOf(other) ? -1 : (idOf(self) > idOf(other) ? 1 : 0);
  };
  const Handle sorted = vorn_collections_ImmutableList_sortNew(list);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(idOf(vorn_collections_ImmutableList_operator_index(sorted, i)), i + 1);
}

TEST_F(ImmutableListUserCode, SortNew_OrderingThatRaisesOrEmptiesTheSource_KeepsAllElements) {
  const Handle list = boxedImmutable({hooked(3), hooked(1), hooked(2)});
  userHooks.compare = [&](void*, void*, bool*) {
    vorn_collections_ArrayList_clear(list);
    vorn_heap_collect();
    vorn_raise("Exception", "no order");
    return 1;
  };
  const Handle sorted = vorn_collections_ImmutableList_sortNew(list);
  EXPECT_RAISED("Exception: no order");
  ASSERT_EQ(vorn_collections_ImmutableList_size(sorted), 3);
  std::int64_t sum = 0;
  for (int i = 0; i < 3; ++i) sum += idOf(vorn_collections_ImmutableList_operator_index(sorted, i));
  EXPECT_EQ(sum, 6);
}

}  // namespace
}  // namespace vorn::tests
